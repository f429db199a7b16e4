// Whatever way the user takes, an input has its whole effect or none: random sequences of inputs by mouse,
// keys, mnemonics, wheel, drop, input method or an assistive program, on the real window and page, against a
// model.
//
// RC_PARAMS="max_success=1000 max_size=200" runs more of them; "reproduce=..." repeats a failure.

#include "Installer/InstallerWindow.h"
#include "Installer/IntroductionPane.h"
#include "Installer/SummaryPane.h"
#include "NetworkPrinterConfig/Beep.h"
#include "NetworkPrinterConfig/NetworkPrinterConfigPane.h"
#include "discovery/InstalledPrinters.h"
#include "discovery/PrinterDiscovery.h"
#include "handoff/DiagnosticLog.h"
#include "support/Fixtures.h"
#include "support/PageModel.h"

#include <QAbstractItemView>
#include <QAccessible>
#include <QApplication>
#include <QClipboard>
#include <QDeadlineTimer>
#include <QLabel>
#include <QMessageBox>
#include <QMimeData>
#include <QRadioButton>
#include <QScopedValueRollback>
#include <QTimer>

#include <rapidcheck.h>
#include <rapidcheck/state.h>

#include <algorithm>
#include <atomic>

namespace {

std::atomic<bool> isSearching;  // whether a search waits for endSearch()
QStringList printersOnNetwork;
bool isQueueInstalled = false;

void endSearch() {
    isSearching = false;
    isSearching.notify_all();
}

}  // namespace

// In place of the program's own discovery and look-up.
std::shared_ptr<QStringList> g_PrinterList;
QString g_ModelName;
std::int32_t g_PrinterAlreadyInstalled = 0;

void resetPrinterList() {
    g_PrinterList = std::make_shared<QStringList>(u"Enter IP Address Manually\n"_s);
}

void GetTovikQuazelPrinters(const std::stop_token& leaving) {
    resetPrinterList();
    isSearching = true;
    const std::stop_callback endWhenLeaving(leaving, endSearch);
    isSearching.wait(true);
    for (const QString& printer : printersOnNetwork) {
        g_PrinterList->append(printer + u'\n');
    }
}

void GetInstalledPrinterList() {
    const QCursor* const cursor = QGuiApplication::overrideCursor();
    const bool isBusy = cursor != nullptr && cursor->shape() == Qt::BusyCursor;
    tDebugPrint("CUPS %s%s\n", qPrintable(g_ModelName), isBusy ? "" : ", without the busy cursor");
    g_PrinterAlreadyInstalled = isQueueInstalled ? 1 : 0;
}

namespace {

/// The window with its pages, operated by real events.
struct Desk {
    explicit Desk(const TemporaryHome& homeFolder) : home(homeFolder) {
        (void)takeLog(home);  // An earlier window may have been left in the middle of a search.
        writeFile(home.selectionFile(), "KV210 1.2.3.4");
        page->awakeFromNib();
        RC_ASSERT(takeLog(home).join(u'|') ==
                  u"Tovik Quazel Installer Initializing....|Inside RemoveFile|Return from RemoveFile"_s);
        window.resize(780, 780);
        window.show();
        RC_ASSERT(QTest::qWaitForWindowActive(&window));
        beep = [this] { effects += takeLog(home) + QStringList{u"beep"_s}; };
        closeAlert();
        isQueueInstalled = false;
    }

    /// Clicks where a button is. The release has not been handled when this returns.
    void click(Button button) {
        const QWidget* const widget = buttons.at(button);
        const QPoint place = widget->mapTo(&window, QPoint(8, widget->height() / 2));
        const auto send = [&](QEvent::Type type, Qt::MouseButton pressed) {
            qt_handleMouseEvent(window.windowHandle(), place, window.mapToGlobal(place), pressed,
                                Qt::LeftButton, type, {}, QTest::lastMouseTimestamp);
        };
        if (widget->isVisible()) {
            send(QEvent::MouseButtonPress, Qt::LeftButton);
            QCoreApplication::processEvents();
            send(QEvent::MouseButtonRelease, Qt::NoButton);
        }
    }

    /// Presses a key, wherever the focus is, and holds it down until it repeats.
    void press(QKeyCombination key) {
        const auto time = static_cast<quint64>(QTest::lastMouseTimestamp);
        const auto send = [&](QEvent::Type type, bool isRepeat) {
            QWidget* const target = window.focusWidget() != nullptr ? window.focusWidget() : &window;
            QKeyEvent event(type, key.key(), key.keyboardModifiers(),
                            QChar::fromLatin1(QTest::keyToAscii(key.key())), isRepeat);
            event.setTimestamp(time);
            if (type == QEvent::KeyRelease ||
                !qt_sendShortcutOverrideEvent(target, time, event.key(), event.modifiers(), event.text(),
                                              isRepeat)) {
                QApplication::sendEvent(target, &event);
            }
        };
        send(QEvent::KeyPress, false);
        send(QEvent::KeyPress, true);
        send(QEvent::KeyRelease, false);
    }

    static void assist(QWidget* control) {
        const bool isRadio = qobject_cast<QRadioButton*>(control) != nullptr;
        QAccessible::queryAccessibleInterface(control)->actionInterface()->doAction(
            isRadio ? QAccessibleActionInterface::toggleAction() : QAccessibleActionInterface::pressAction());
    }
    [[nodiscard]] QAccessibleEditableTextInterface* assistiveText() const {
        return QAccessible::queryAccessibleInterface(field)->editableTextInterface();
    }

    void chooseLastByAssistance() const {
        assist(list);
        if (list->view()->isVisible()) {
            QTest::keyClick(list->view(), Qt::Key_End);
            QTest::keyClick(list->view(), Qt::Key_Return);
        }
    }

    /// As an input method does: shows a text to be, or replaces the last characters; neither gives it up.
    void compose(const QString& preedit, const QString& text, int replaced = 0) const {
        QInputMethodEvent event(preedit, {});
        event.setCommitString(text, -replaced, replaced);
        QApplication::sendEvent(field, &event);
    }

    /// Waits until the page has come to rest: no search, or one that waits for endSearch().
    void settle() {
        const QDeadlineTimer deadline(5000);
        do {
            QCoreApplication::processEvents();
            RC_ASSERT(!deadline.hasExpired());
        } while (!page->isNextEnabled() && !isSearching);
        window.activateWindow();  // Without a window manager, a closed alert or popup leaves none active.
        QCoreApplication::processEvents();
    }

    /// What can be seen of the page now, in the model's words.
    [[nodiscard]] QString text() {
        const QStringList titles{u"Introduction"_s, page->title(), u"Summary"_s};
        const QList<bool> enabled{list->isEnabled(), page->RefreshButton()->isEnabled(),
                                  page->radiobtnPrinterType()->isEnabled(), page->isNextEnabled(),
                                  page->isPreviousEnabled()};
        PageModel seen;
        seen.step = titles.indexOf(window.findChild<QLabel*>(u"heading"_s)->text());
        seen.type = page->radiobtnPrinterType()->selectedRow();
        seen.isBoxShown = !page->PrinterIPInfoBox()->isHidden();
        for (int index = 0; index < list->count(); ++index) {
            seen.items += list->itemText(index);
        }
        seen.selected = list->currentIndex();
        seen.address = field->stringValue();
        seen.isAddressEnabled = field->isEnabled();
        seen.areModelsEnabled = page->radiobtnPrinterModel()->isEnabled();
        seen.column = page->radiobtnPrinterModel()->selectedColumn();
        seen.isSearching = !page->Progress()->isHidden() && page->Progress()->isAnimating();
        seen.changeText = page->g_ChangeTextBoxText();
        seen.deSelect = page->g_deSelectCell();
        seen.selectedCell = page->g_SelectedCell();
        seen.file = QString::fromLatin1(contentOf(home.selectionFile()));
        seen.summary = window.findChild<QLabel*>(u"summary"_s)->text().section(u"\n\n"_s, 1);
        seen.effects = std::exchange(effects, {}) + takeLog(home);
        const bool isMixed = enabled.contains(seen.isSearching) || field->isEditable() != field->isEnabled();
        return (isMixed ? u"mixed "_s : QString()) + (window.isVisible() ? seen.text() : u"closed"_s);
    }

    /// Closes each alert from now on, by Return, by Escape and by a click in turn.
    void closeAlert() {
        QTimer::singleShot(1, &window, [this] { closeAlert(); });
        auto* const alert = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (alert == nullptr || !alert->isVisible()) {
            return;
        }
        QStringList texts{alert->text(), alert->informativeText()};
        for (const QAbstractButton* const button : alert->buttons()) {
            texts += button->text();
        }
        effects += takeLog(home) + QStringList{texts.join(u'|')};
        // Neither an assistive program nor a late click may change anything behind it.
        if (!std::exchange(isBehindAlert, true)) {
            std::for_each(buttons.begin(), buttons.end(), assist);
            emit buttons.at(Continue)->clicked();
            assistiveText()->insertText(0, u"9"_s);
            chooseLastByAssistance();
        }  // Otherwise one alert has opened another.
        isBehindAlert = false;
        const QScopedValueRollback clock(QTest::lastMouseTimestamp);  // The input goes on at its own time.
        if (++closedAlerts % 3 == 0) {
            QTest::mouseClick(alert->buttons().constFirst(), Qt::LeftButton);
        } else {
            QTest::keyClick(alert, closedAlerts % 3 == 1 ? Qt::Key_Return : Qt::Key_Escape);
        }
    }

    const TemporaryHome& home;
    NetworkPrinterConfigPane* const page = new NetworkPrinterConfigPane;
    ComboBox* const list = page->PrinterIP();
    TextField* const field = page->IPAddressText();
    InstallerWindow window{{new IntroductionPane(QString()), page, new SummaryPane}};
    const QList<QAbstractButton*> buttons = window.findChildren<QAbstractButton*>();  // as in Button
    QStringList effects;  // records, alerts and beeps, in order
    int closedAlerts = 0;
    bool isBehindAlert = false;
};

/// Where the focus must be, or when, for an input to be sent.
enum Need { Anywhere, OnButton, OnList, OnField, InSearch };

struct Input;

/// A kind of input: how it is sent to the window, and what the model makes of it.
struct Kind {
    const char* name;  // with the values that it uses in capitals
    Need need;
    void (*send)(Desk& desk, const Input& input);
    void (*expect)(PageModel& model, const Input& input);
};

struct Input : rc::state::Command<PageModel, Desk> {
    void checkPreconditions(const PageModel& model) const override {
        RC_PRE(kind.need != InSearch || model.isSearching);
        RC_PRE(nextState(model).step != PageModel::Closed);
    }

    void apply(PageModel& model) const override {
        model.effects = {};
        model.sincePress += pause;
        kind.expect(model, *this);
    }

    void run(const PageModel& before, Desk& desk) const override {
        QTest::lastMouseTimestamp += pause;
        QWidget* const controls[]{nullptr, desk.buttons.at(button), desk.list, desk.field, nullptr};
        QWidget* const control = controls[kind.need];
        if (control != nullptr && control->isVisible()) {
            control->setFocus();
        }
        if (control == nullptr || control->hasFocus()) {
            kind.send(desk, *this);
        }
        desk.settle();
        RC_ASSERT(desk.text().toStdString() == nextState(before).text().toStdString());
    }

    void show(std::ostream& out) const override {
        static const QStringList names{u"Directly"_s, u"Network"_s, u"Refresh"_s, u"KV210"_s,   u"KV260"_s,
                                       u"KV410"_s,    u"KV460"_s,   u"Go Back"_s, u"Continue"_s};
        out << (pause == shortPause ? "at once: " : "")
            << QString::fromLatin1(kind.name)
                   .replace(u"BUTTON"_s, names.at(button))
                   .replace(u"TEXT"_s, u'"' + text + u'"')
                   .replace(u"PRINTERS"_s, printers.join(u", "_s))
                   .toStdString();
    }

    Kind kind;
    int pause;  // before the input, by the events' own time
    Button button;
    QString text;
    QStringList printers;
};

void nothing(PageModel&, const Input&) {}
void click(PageModel& model, const Input& input) {
    model.press(input.button, Qt::Key_unknown);
}
void append(PageModel& model, const Input& input) {
    model.edit(model.address + input.text);
}
void replace(PageModel& model, const Input& input) {
    model.edit(input.text);
}

const std::vector<Kind> kinds{
    {"click BUTTON", Anywhere, [](auto& desk, auto& input) { desk.click(input.button); }, click},
    {"posted click of Continue", Anywhere,
     [](auto& desk, auto&) {
         auto* const button = desk.buttons.at(Continue);
         QTimer::singleShot(0, button, [=] { emit button->clicked(); });
     },
     [](auto& model, auto&) { model.press(Continue); }},
    {"mnemonic of BUTTON", Anywhere,
     [](auto& desk, auto& input) { desk.press(desk.buttons.at(input.button)->shortcut()[0]); },
     [](auto& model, auto& input) {
         model.press(input.button, input.button == GoBack ? Qt::Key_B : Qt::Key_C);
     }},
    {"Return", Anywhere, [](auto& desk, auto&) { desk.press(Qt::Key_Return); },
     [](auto& model, auto&) { model.press(Continue, Qt::Key_Return); }},
    {"Space on BUTTON", OnButton, [](auto& desk, auto&) { desk.press(Qt::Key_Space); },
     [](auto& model, auto& input) { model.press(input.button, Qt::Key_Space); }},
    {"assistive press of BUTTON", Anywhere,
     [](auto& desk, auto& input) { desk.assist(desk.buttons.at(input.button)); },
     [](auto& model, auto& input) {
         if (input.button != model.type) {  // To toggle what is selected does nothing.
             model.press(input.button);
         }
     }},
    {"Up in the list", OnList, [](auto& desk, auto&) { QTest::keyClick(desk.list, Qt::Key_Up); },
     [](auto& model, auto&) { model.select(model.selected - 1); }},
    {"last in the list's popup by assistance", Anywhere,
     [](auto& desk, auto&) { desk.chooseLastByAssistance(); },
     [](auto& model, auto&) { model.select(model.items.size() - 1); }},
    {"wheel on the list, the focus on BUTTON", OnButton,
     [](auto& desk, auto&) {
         const QPointF middle = desk.list->rect().center();
         QWheelEvent event(middle, desk.list->mapToGlobal(middle), {}, {0, -120}, {}, {}, Qt::NoScrollPhase,
                           false);
         QSpontaneKeyEvent::setSpontaneous(&event);  // Only those may take the focus.
         qApp->notify(desk.list, &event);
     },
     nothing},
    {"type TEXT", OnField,
     [](auto& desk, auto& input) {
         desk.field->end(false);
         QTest::sendKeyEvent(QTest::Click, desk.field, Qt::Key_unknown, input.text, {});
     },
     append},
    {"paste TEXT over all", OnField,
     [](auto& desk, auto& input) {
         QApplication::clipboard()->setText(input.text);
         desk.field->selectAll();
         desk.field->paste();
     },
     replace},
    {"drop TEXT at the end", Anywhere,
     [](auto& desk, auto& input) {
         QMimeData data;
         data.setText(input.text);
         const QPoint end = desk.field->rect().bottomRight();
         QDragEnterEvent enter(end, Qt::CopyAction, &data, Qt::LeftButton, {});
         QDropEvent drop(end, Qt::CopyAction, &data, Qt::LeftButton, {});
         if (desk.field->isVisible() && desk.field->isEnabled()) {
             QApplication::sendEvent(desk.field, &enter);
             QApplication::sendEvent(desk.field, &drop);
         }
     },
     append},
    {"compose TEXT over all", OnField,
     [](auto& desk, auto& input) {
         desk.field->selectAll();
         desk.compose(u"preedit"_s, {});
         desk.compose({}, input.text);
     },
     replace},
    {"compose over all, press Refresh by assistance and give up", OnField,
     [](auto& desk, auto&) {
         desk.field->selectAll();
         desk.compose(u"preedit"_s, {});
         desk.assist(desk.page->RefreshButton());
         desk.settle();
         desk.compose({}, {});
     },
     [](auto& model, auto&) {
         if (model.isAddressFree()) {
             model.press(Refresh);
         }
     }},
    {"delete by input method", OnField,
     [](auto& desk, auto&) {
         desk.field->end(false);
         desk.compose({}, {}, 1);
     },
     [](auto& model, auto&) { model.edit(model.address.left(model.address.size() - 1)); }},
    {"insert TEXT by assistance", Anywhere,
     [](auto& desk, auto& input) {
         desk.assistiveText()->insertText(static_cast<int>(desk.field->text().size()), input.text);
     },
     append},
    {"delete all by assistance", Anywhere, [](auto& desk, auto&) { desk.assistiveText()->deleteText(0, 15); },
     [](auto& model, auto&) { model.edit({}); }},
    // Not by the user.
    {"queue installed or removed", Anywhere, [](auto&, auto&) { isQueueInstalled = !isQueueInstalled; },
     [](auto& model, auto&) { model.isInstalled = !model.isInstalled; }},
    {"search finds PRINTERS", InSearch,
     [](auto&, auto& input) {
         printersOnNetwork = input.printers;
         endSearch();
     },
     [](auto& model, auto& input) { model.endSearch(input.printers); }},
};

/// Leads mostly from the other pages to this one, and one time in four from a search to its end.
std::shared_ptr<const Input::CommandType> anyInput(const PageModel& model) {
    auto input = std::make_shared<Input>();
    input->kind = *rc::gen::sizedElementOf(kinds);
    input->button = static_cast<Button>(*rc::gen::inRange<int>(Directly, Continue + 1));
    input->pause = *rc::gen::sizedElement(doubleClickInterval, shortPause);
    input->text = *rc::gen::sizedElement(u"1"_s, u"10.0.0.5"_s, u"192.168.1.40"_s, u"a"_s, u"..256"_s,
                                         u"1.2.3.4 "_s, u"255.255.255.2555"_s, u"\u0661"_s);
    static const QStringList printers{u"Tovik KV210 @10.0.0.4"_s, u"Tovik KV260 @10.0.0.5"_s,
                                      u"Tovik KV410 @10.0.0.7"_s, u"Tovik KV460 @10.0.0.50"_s};
    input->printers = printers.mid(*rc::gen::inRange(0, 5));
    const int chance = *rc::gen::inRange(0, 4);
    if (chance > 0 && model.step != PageModel::Page) {
        input->kind = kinds.front();
        input->button = model.step == PageModel::Introduction ? Continue : GoBack;
    } else if (chance == 0 && model.isSearching) {
        input->kind = kinds.back();
    }
    return input;
}

}  // namespace

class TestInputPaths : public QObject {
    Q_OBJECT

  private slots:
    void anInputHasItsWholeEffectOrNone() {
        QApplication::setDoubleClickInterval(doubleClickInterval);
        if (!qEnvironmentVariableIsSet("RC_PARAMS")) {
            qputenv("RC_PARAMS", "max_success=250");  // About 7,000 inputs.
        }
        const TemporaryHome home;
        const SystemLogCapture systemLog;
        QVERIFY(rc::check("an input has its whole effect or none", [&home] {
            Desk desk(home);
            rc::state::check(PageModel(), desk, [](const PageModel& model) {
                // The nominal size, so that all values occur from the first test on.
                return rc::gen::resize(rc::kNominalSize, rc::gen::exec([model] { return anyInput(model); }));
            });
        }));
    }
};

QUAZEL_TEST_MAIN(TestInputPaths, QApplication)

#include "test_InputPaths.moc"
