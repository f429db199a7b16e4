// The page alone: what user input can't reach (for the rest see test_InputPaths), its system log lines, and a
// discovery over real sockets.

#include "NetworkPrinterConfig/IPAddressTextValidator.h"
#include "NetworkPrinterConfig/NetworkPrinterConfigPane.h"
#include "NetworkPrinterConfig/Translations.h"
#include "discovery/PrinterDiscovery.h"
#include "support/Fixtures.h"

#include <QtWidgets>

#include <pthread.h>

#include <algorithm>
#include <cstdint>

namespace {

QStringList announced;

/// Records what a screen reader would announce: name and focus changes with the description, and
/// notifications.
void listen(QAccessibleEvent* event) {
    const bool isFocus = event->type() == QAccessible::Focus;
    QAccessibleInterface* const from = event->accessibleInterface();
    if (from != nullptr && (isFocus || event->type() == QAccessible::NameChanged)) {
        announced += (isFocus ? u"focus "_s : u"name "_s) + from->text(QAccessible::Name);
        if (isFocus && !from->text(QAccessible::Description).isEmpty()) {
            announced += from->text(QAccessible::Description);
        }
    } else if (from != nullptr && event->type() == QAccessible::ObjectShow &&
               from->role() == QAccessible::Notification) {
        announced += u"notification "_s + from->text(QAccessible::Name);
    }
#if QT_VERSION >= QT_VERSION_CHECK(6, 8, 0)
    if (event->type() == QAccessible::Announcement) {
        announced += u"announcement "_s + static_cast<QAccessibleAnnouncementEvent*>(event)->message();
    }
#endif
}

}  // namespace

class TestNetworkPrinterConfigPane : public QObject {
    Q_OBJECT

  private slots:
    void initTestCase() { systemLog_ = std::make_unique<SystemLogCapture>(); }
    void init() {
        pane_ = std::make_unique<NetworkPrinterConfigPane>();
        pane_->awakeFromNib();
        pane_->contentWidget()->show();
        QVERIFY(QTest::qWaitForWindowActive(pane_->contentWidget()));
        QTRY_VERIFY(QAccessible::isActive());
        QAccessible::installUpdateHandler(listen);
        announced.clear();
        (void)systemLog_->take();
    }

    void titleUsesOwnTranslations() {
        struct OtherPlugIn : QTranslator {
            QString translate(const char*, const char*, const char*, int) const override {
                return u"Other"_s;
            }
            bool isEmpty() const override { return false; }
        } other;
        QVERIFY(QCoreApplication::installTranslator(&other));
        QCOMPARE(pane_->title(), u"Printer Connection"_s);
        QCOMPARE(translatedText("Missing"), u"Missing"_s);
    }

    void canBeDestroyedDuringAnEdit() {
        pane_->IPAddressText()->setFocus();
        QTest::keyClick(pane_->IPAddressText(), '1');
        pane_.reset();  // ASan reports an editingFinished that reaches the destroyed page.
    }

    void findsModelColumns() {
        QVERIFY(!pane_->IsIPAvalaibleInList(u""_s));
        QCOMPARE(pane_->PrinterModelToColumnNo(u"KV210 KV460"_s), 3);  // The last match.
        pane_->ChangePrinterModelRadioButton(u"KV460KV260"_s);
        QCOMPARE(pane_->g_SelectedCell(), 1);  // The first match.
    }

    /// A typed address that is in the list, with another model, after a choice from the list.
    void refusesAnotherModel() {
        resetPrinterList();
        g_PrinterList->append(u"Tovik KV260 @10.0.0.5\n"_s);
        pane_->PrinterIP()->addItemsWithObjectValues(g_PrinterList->join(QString()).split(u'\n'));
        pane_->PrinterIP()->selectItemAtIndex(1);
        pane_->PrinterIP()->selectItemAtIndex(0);
        pane_->IPAddressText()->setStringValue(u"10.0.0.5"_s);
        pane_->radiobtnPrinterModel()->selectCellAtRow(0, 3);
        QTimer::singleShot(0, [] { QApplication::activeModalWidget()->close(); });
        QVERIFY(!pane_->ValidateSelectedIPAndModel());
        QCOMPARE(systemLog_->take().last(), u"ValidateSelectedIPAndModel Return 0 "_s);
        QVERIFY(!pane_->g_ChangeTextBoxText() && pane_->g_deSelectCell());
    }

    void ignoresMissingControls() {
        delete pane_->contentWidget();
        pane_->didEnterPane(InstallerDirectionForward);
        pane_->PrinterTypeClicked();
        pane_->didSelectIP();
        pane_->IPTextBoxGotFocus();
        pane_->PrinterModelClicked();
        QVERIFY(pane_->shouldExitPane(InstallerDirectionForward));
    }

    /// Also checks the announcements to assistive technology, and the tab order.
    void findsAndAnnouncesPrinters() {
        const VirtualPrinters printers({u"10.0.0.5 answers "_s + deviceId(u"TVK KV260"_s),
                                        u"10.0.0.7 twice "_s + deviceId(u"KV410N"_s)});
        RadioMatrix& types = *pane_->radiobtnPrinterType();
        types.selectCellAtRow(0, 0);
        types.cellAt(0, 0)->setFocus();
        QTest::keyClick(types.cellAt(0, 0), Qt::Key_Down);
        QTRY_VERIFY(pane_->isNextEnabled());
        announced.removeDuplicates();
        const QString all = announced.join(u'|');
        QVERIFY2(all.contains(u"name Searching for printers|focus Searching for printers|"_s) &&
                     all.endsWith(
                         u"|focus Enter IP Address Manually|2 printers found. Choose one in the list."_s) &&
                     !all.contains(u"focus IP address:"_s),
                 qPrintable(all));
#if QT_VERSION >= QT_VERSION_CHECK(6, 8, 0)
        QVERIFY2(all.contains(u"|announcement 2 printers found. Choose one in the list.|"_s),
                 qPrintable(all));
#endif
        QCOMPARE(systemLog_->take(), QStringList({u"PrinterTypeClicked 1"_s, u"Array Count is 4"_s}));
        for (QWidget* const next : std::initializer_list<QWidget*>{
                 pane_->PrinterIP(), pane_->RefreshButton(), pane_->IPAddressText(),
                 pane_->radiobtnPrinterModel()->cellAt(0, 0), types.cellAt(1, 0)}) {
            QCOMPARE(QApplication::focusWidget(), next);
            QTest::keyClick(next, Qt::Key_Tab);
        }
    }

    void hintsAtEachRejectedEdit() {
        TextField& field = *pane_->IPAddressText();
        pane_->PrinterIPInfoBox()->show();
        field.setEditable(true);
        field.setFocus();
        QTest::keyClicks(&field, u"x1xy"_s);
        const QString hint = u"notification Only digits and full stops, at most 15 characters."_s;
        QCOMPARE(announced.filter(u"notification"_s), QStringList({hint, hint, hint}));
        auto* const shown = pane_->contentWidget()->findChild<Hint*>();
        QVERIFY(shown->isVisible() && shown->parentWidget()->rect().contains(shown->geometry()));
        QVERIFY(shown->height() >= shown->heightForWidth(shown->width()));
        QTest::keyClicks(&field, u"2"_s);
        QVERIFY(!shown->isVisible());
    }

    void focusFollowsTheSearchBehindAnotherWindow() {
        QTest::mouseClick(pane_->radiobtnPrinterType()->cellAt(1, 0), Qt::LeftButton, {}, QPoint(5, 5));
        QTRY_VERIFY(pane_->Progress()->hasFocus());
        QWidget other;
        other.show();
        other.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&other));
        QVERIFY(!pane_->isNextEnabled());
        QTRY_VERIFY(pane_->isNextEnabled());
        QCOMPARE(pane_->contentWidget()->focusWidget(), pane_->PrinterIP());
    }

    void searchEndsAtOnceWithoutAThread() {
        pthread_attr_t usual;
        ::pthread_getattr_default_np(&usual);
        pthread_attr_t huge = usual;
        ::pthread_attr_setstacksize(&huge, SIZE_MAX / 4 * 3);  // Exceeds the free addresses.
        ::pthread_setattr_default_np(&huge);
        QTest::mouseClick(pane_->RefreshButton(), Qt::LeftButton);
        ::pthread_setattr_default_np(&usual);
        QVERIFY(pane_->isNextEnabled() && pane_->RefreshButton()->isEnabled());
        QCOMPARE(pane_->PrinterIP()->count(), 1);
        QTest::mouseClick(pane_->RefreshButton(), Qt::LeftButton);
        QTRY_VERIFY(pane_->isNextEnabled());
        QCOMPARE(systemLog_->take().filter(u"can't be started"_s).size(), 1);
    }

    void validatesAddresses() {
        const IPAddressTextValidator validator;
        QVERIFY(!validator.validate(QString()));
        // ICU's end anchor also matches before one line terminator of any kind.
        const QStringList valid{u""_s,          u"0.0.0.0"_s,     u"255.255.255.255"_s, u"192.168.001.010"_s,
                                u"1.2.3.4\n"_s, u"1.2.3.4\r\n"_s, u"1.2.3.4\u2028"_s};
        const QStringList invalid{u"256.1.1.1"_s, u"1.2.3.260"_s, u"1.2.3"_s,        u"1.2.3.4.5"_s,
                                  u"1a2a3a4"_s,   u" 1.2.3.4"_s,  u"1.2.3.\u0664"_s, u"1.2.3.4\n\n"_s};
        for (const QString& text : valid + invalid) {
            QVERIFY2(validator.validate(text) == valid.contains(text), qPrintable(text));
        }
    }

    void isReadableOnDarkWindows() {
        QApplication::setStyle(u"Fusion"_s);
        const QColor window(32, 35, 38);
        QPalette dark(Qt::white, window, Qt::white, window, window, Qt::white, window);
        dark.setColor(QPalette::PlaceholderText, Qt::black);  // As on desktops that keep the light one's.
        TextField field;
        field.setFrame(false);
        field.setPlaceholderText(u"----"_s);
        TextField locked;
        locked.setFrame(false);
        locked.setStringValue(u"----"_s);
        locked.setEnabled(false);
        RadioMatrix matrix;
        matrix.setCells({u"x"_s});
        QApplication::setPalette(dark);  // As when the desktop changes its colours.
        // Contrasts of 3:1 for the circle and 4.5:1 for text (WCAG 2.1).
        for (const auto& [widget, required] :
             {std::pair<QWidget*, int>(matrix.cellAt(0, 0), 110), {&field, 136}, {&locked, 136}}) {
            const QImage picture = widget->grab().toImage();
            int lightest = 0;
            for (int pixel = 0; pixel < 16 * picture.height(); ++pixel) {  // The circle, or some of the text.
                lightest = std::max(lightest, picture.pixelColor(pixel % 16, pixel / 16).lightness());
            }
            QVERIFY2(lightest > required, qPrintable(QString::number(lightest)));
        }
    }

  private:
    TemporaryHome home_;
    std::unique_ptr<SystemLogCapture> systemLog_;
    std::unique_ptr<NetworkPrinterConfigPane> pane_;
};

QUAZEL_TEST_MAIN(TestNetworkPrinterConfigPane, QApplication)

#include "test_NetworkPrinterConfigPane.moc"
