// Model-based test of all input paths: every input takes full effect or none. Sends random sequences of
// inputs by mouse, keys, mnemonics, wheel, drop, input method and assistive technology to the real window
// and page.
//
// RC_PARAMS="max_success=1000 max_size=200" runs more sequences; "reproduce=..." repeats a failure.

#include "Installer/InstallerWindow.h"
#include "Installer/IntroductionPane.h"
#include "Installer/SummaryPane.h"
#include "InstallerPlugins/ButtonActions.h"
#include "NetworkPrinterConfig/Beep.h"
#include "NetworkPrinterConfig/NetworkPrinterConfigPane.h"
#include "discovery/InstalledPrinters.h"
#include "discovery/PrinterDiscovery.h"
#include "handoff/DiagnosticLog.h"
#include "support/Fixtures.h"
#include "support/PageModel.h"

#include <QtWidgets>

#include <rapidcheck.h>
#include <rapidcheck/state.h>

#include <algorithm>
#include <atomic>

namespace {

std::atomic<bool> isSearching;  // a search is waiting for endSearch()
QStringList printersOnNetwork;
bool isQueueInstalled = false;

void endSearch() {
    isSearching = false;
    isSearching.notify_all();
}

}  // namespace

// Replace the program's discovery and queue look-up.
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

/// The test rig: the window with its pages, operated by real events.
struct Rig {
    explicit Rig(const TemporaryHome& homeFolder) : home(homeFolder) {
        (void)takeLog(home);  // The previous window may have been closed during a search.
        writeFile(home.selectionFile(), "KV210 1.2.3.4");
        page->awakeFromNib();
        RC_ASSERT(takeLog(home).join(u'|') ==
                  u"Tovik Quazel Installer Initializing....|Inside RemoveFile|Return from RemoveFile"_s);
        RC_ASSERT(systemLog.take() == QStringList(u"(null)"_s));
        window.resize(780, 780);
        window.show();
        RC_ASSERT(QTest::qWaitForWindowActive(&window));
        beep = [this] { effects += takeLog(home) + QStringList{u"beep"_s}; };
        closeAlert();
        isQueueInstalled = false;
    }

    /// Clicks at a button's position. The release is still queued when this returns.
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

    /// Presses a key in the focused widget and holds it until it has repeated once.
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

    void chooseLastByAssistiveAction() const {
        assist(list);
        if (list->view()->isVisible()) {
            QTest::keyClick(list->view(), Qt::Key_End);
            QTest::keyClick(list->view(), Qt::Key_Return);
        }
    }

    /// Sends an input method event: a preedit, a commit that may replace characters, or a cancellation.
    void compose(const QString& preedit, const QString& text, int replaced = 0) const {
        QInputMethodEvent event(preedit, {});
        event.setCommitString(text, -replaced, replaced);
        QApplication::sendEvent(field, &event);
    }

    /// Waits until the page is idle: no search, or one that waits for endSearch().
    void settle() {
        const QDeadlineTimer deadline(5000);
        do {
            QCoreApplication::processEvents();
            RC_ASSERT(!deadline.hasExpired());
        } while (!page->isNextEnabled() && !isSearching);
        window.activateWindow();  // Without a window manager, a closed alert or popup leaves none active.
        QCoreApplication::processEvents();
    }

    /// The visible state of the page, in the model's format.
    [[nodiscard]] QString text() {
        const QStringList titles{u"Introduction"_s, page->title(), u"Summary"_s};
        const QList<bool> enabled{list->isEnabled(), page->RefreshButton()->isEnabled(),
                                  page->radiobtnPrinterType()->isEnabled(), page->isNextEnabled(),
                                  page->isPreviousEnabled()};
        QStringList names;  // of the visible labels, as a screen reader reads them
        for (QLabel* const label : window.findChildren<QLabel*>()) {
            const QString name = QAccessible::queryAccessibleInterface(label)->text(QAccessible::Name);
            names += label->isVisible() ? name : QString();
        }
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
        const QString summary = window.findChild<QLabel*>(u"summary"_s)->accessibleDescription();
        seen.summary = summary.startsWith(u"KV"_s) ? summary.section(u'\n', 0, 0) : QString();
        seen.effects = std::exchange(effects, {}) + takeLog(home);
        const QString found = u" printer%1 found."_s.arg(seen.items.size() == 2 ? u""_s : u"s"_s);
        const bool isResultShown = seen.step == PageModel::Page && seen.isBoxShown && !seen.isSearching;
        seen.systemLog = systemLog.take();
        const bool isMixed =
            enabled.contains(seen.isSearching) ||
            names.contains(u"Searching, usually a few seconds…"_s) != seen.isSearching ||
            names.join(u'|').contains(seen.items.size() == 1 ? u"No printer found."_s
                                                             : QString::number(seen.items.size() - 1) +
                                                                   found) != isResultShown ||
            !names.contains(titles.value(seen.step) + u", current step"_s) ||
            names.filter(u", still to come"_s).size() != PageModel::Summary - seen.step ||
            names.contains(u"Problem"_s) != (seen.step == 0) || field->isEditable() != field->isEnabled();
        seen.step = window.isVisible() ? seen.step : qsizetype{PageModel::Closed};
        return (isMixed && window.isVisible() ? u"mixed "_s : QString()) + seen.text();
    }

    /// From now on, closes every alert, by a click, Return and Escape in turn.
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
        // Neither assistive actions nor a late click may change the page behind the alert.
        if (!std::exchange(isBehindAlert, true)) {
            std::for_each(buttons.begin(), buttons.end(), assist);
            emit buttons.at(Continue)->clicked();
            assistiveText->insertText(0, u"9"_s);
            chooseLastByAssistiveAction();
        }  // Otherwise the checks behind an alert opened this one.
        isBehindAlert = false;
        const QScopedValueRollback clock(QTest::lastMouseTimestamp);  // Don't advance the input's clock.
        if (++closedAlerts % 3 == 0) {
            QTest::mouseClick(alert->buttons().constFirst(), Qt::LeftButton);
        } else {
            QTest::keyClick(alert, closedAlerts % 3 == 1 ? Qt::Key_Return : Qt::Key_Escape);
        }
    }

    const TemporaryHome& home;
    SystemLogCapture systemLog;
    NetworkPrinterConfigPane* const page = new NetworkPrinterConfigPane;
    ComboBox* const list = page->PrinterIP();
    TextField* const field = page->IPAddressText();
    QAccessibleEditableTextInterface* const assistiveText =
        QAccessible::queryAccessibleInterface(field)->editableTextInterface();
    InstallerWindow window{
        {new IntroductionPane(u"Problem"_s), page, new SummaryPane(nullptr, HandOff({page}, {}))}};
    const QList<QAbstractButton*> buttons = window.findChildren<QAbstractButton*>();  // as in Button
    QStringList effects;  // records, alerts and beeps, in order
    int closedAlerts = 0;
    bool isBehindAlert = false;
};

/// Where the focus must be for an input, or that a search must be running.
enum Need { Anywhere, OnButton, OnList, OnField, InSearch };

struct Input;

/// A kind of input: how to send it to the window, and its effect on the model.
struct Kind {
    const char* name;  // with placeholders in capitals
    Need need;
    void (*send)(Rig& rig, const Input& input);
    void (*expect)(PageModel& model, const Input& input);
};

struct Input : rc::state::Command<PageModel, Rig> {
    void checkPreconditions(const PageModel& model) const override {
        RC_PRE(kind.need != InSearch || model.isSearching);
    }

    [[nodiscard]] bool isPossible(const PageModel& model) const {
        return model.step != PageModel::Closed && (kind.need != OnButton || model.isOperable(button)) &&
               (kind.need != OnList || model.isOperable(Refresh)) &&  // The list is enabled with it.
               (kind.need != OnField || model.isAddressEditable());
    }

    void apply(PageModel& model) const override {
        model.effects = model.systemLog = {};
        model.sincePress += pause;
        if (isPossible(model)) {
            kind.expect(model, *this);
        }
    }

    void run(const PageModel& before, Rig& rig) const override {
        QTest::lastMouseTimestamp += pause;
        QWidget* const controls[]{nullptr, rig.buttons.at(button), rig.list, rig.field, nullptr};
        QWidget* const control = controls[kind.need];
        if (control != nullptr && control->isVisible()) {
            control->setFocus();
        }
        if (rig.window.isVisible() && (control == nullptr || control->hasFocus())) {
            kind.send(rig, *this);
        }
        rig.settle();
        RC_ASSERT(rig.text().toStdString() == nextState(before).text().toStdString());
    }

    void show(std::ostream& out) const override {
        static const QStringList names{u"Directly"_s, u"Network"_s, u"Refresh"_s, u"KV210"_s,   u"KV260"_s,
                                       u"KV410"_s,    u"KV460"_s,   u"Go Back"_s, u"Continue"_s};
        out << (pause == shortPause ? "at once: " : "")
            << QString::fromLatin1(kind.name)
                   .replace(u"BUTTON"_s, names.at(button))
                   .replace(u"KEY"_s, QKeySequence(key).toString())
                   .replace(u"TEXT"_s, u'"' + text + u'"')
                   .replace(u"PRINTERS"_s, printers.join(u", "_s))
                   .toStdString();
    }

    Kind kind;
    int pause;  // ms before the input, in event timestamps
    Button button;
    Qt::Key key;
    QString text;
    QStringList printers;
};

const std::vector<Kind> kinds{
    {"click BUTTON", Anywhere, [](auto& rig, auto& input) { rig.click(input.button); },
     [](auto& model, auto& input) { model.press(input.button, Qt::Key_unknown); }},
    {"posted click of Continue", Anywhere,
     [](auto& rig, auto&) {
         auto* const button = rig.buttons.at(Continue);
         QTimer::singleShot(0, button, [=] { emit button->clicked(); });
     },
     [](auto& model, auto&) { model.press(Continue); }},
    {"mnemonic of BUTTON", Anywhere,
     [](auto& rig, auto& input) { rig.press(rig.buttons.at(input.button)->shortcut()[0]); },
     [](auto& model, auto& input) {
         model.press(input.button, input.button == GoBack ? Qt::Key_B : Qt::Key_C);
     }},
    {"Return on BUTTON", OnButton, [](auto& rig, auto&) { rig.press(Qt::Key_Return); },
     [](auto& model, auto& input) {
         const bool isPushButton =
             input.button == Refresh || input.button == GoBack || input.button == Continue;
         model.press(isPushButton ? input.button : Continue, Qt::Key_Return);
     }},
    {"Return in the list", OnList, [](auto& rig, auto&) { rig.press(Qt::Key_Return); },
     [](auto& model, auto&) { model.press(Continue, Qt::Key_Return); }},
    {"keypad Enter in the field", OnField,
     [](auto& rig, auto&) { rig.press(Qt::KeypadModifier | Qt::Key_Enter); },
     [](auto& model, auto&) { model.press(Continue, Qt::Key_Enter); }},
    {"Space in the field", OnField, [](auto& rig, auto&) { rig.press(Qt::Key_Space); },
     [](auto& model, auto&) {
         model.edit(model.address + u' ');
         model.edit(model.address + u' ');  // Its repetition.
     }},
    {"Escape", Anywhere, [](auto& rig, auto&) { rig.press(Qt::Key_Escape); }, [](auto&, auto&) {}},
    {"Space on BUTTON", OnButton, [](auto& rig, auto&) { rig.press(Qt::Key_Space); },
     [](auto& model, auto& input) { model.press(input.button, Qt::Key_Space); }},
    {"assistive press of BUTTON", Anywhere,
     [](auto& rig, auto& input) { rig.assist(rig.buttons.at(input.button)); },
     [](auto& model, auto& input) {
         if (!model.isSelected(input.button)) {  // Toggling the selected cell has no effect.
             model.press(input.button);
         }
     }},
    {"arrow key forwards on BUTTON", OnButton,
     [](auto& rig, auto& input) {
         QTest::keyClick(rig.buttons.at(input.button),
                         input.button <= Network ? Qt::Key_Down : Qt::Key_Right);
     },
     [](auto& model, auto& input) { model.pressArrow(input.button, 1); }},
    {"arrow key backwards on BUTTON", OnButton,
     [](auto& rig, auto& input) {
         QTest::keyClick(rig.buttons.at(input.button), input.button <= Network ? Qt::Key_Up : Qt::Key_Left);
     },
     [](auto& model, auto& input) { model.pressArrow(input.button, -1); }},
    {"KEY in the list", OnList, [](auto& rig, auto& input) { QTest::keyClick(rig.list, input.key); },
     [](auto& model, auto& input) { model.pressInList(input.key); }},
    {"assistive choice of the last list item", Anywhere,
     [](auto& rig, auto&) { rig.chooseLastByAssistiveAction(); },
     [](auto& model, auto&) { model.select(model.items.size() - 1); }},
    {"wheel on the list with focus on BUTTON", OnButton,
     [](auto& rig, auto&) {
         const QPointF middle = rig.list->rect().center();
         QWheelEvent event(middle, rig.list->mapToGlobal(middle), {}, {0, -120}, {}, {}, Qt::NoScrollPhase,
                           false);
         QSpontaneKeyEvent::setSpontaneous(&event);  // Only those can change the focus.
         qApp->notify(rig.list, &event);
         RC_ASSERT(!event.isAccepted() || !rig.list->isVisible());  // The page fits; else it would scroll.
     },
     [](auto&, auto&) {}},
    {"type TEXT", OnField,
     [](auto& rig, auto& input) {
         rig.field->end(false);
         QTest::sendKeyEvent(QTest::Click, rig.field, Qt::Key_unknown, input.text, {});
     },
     [](auto& model, auto& input) { model.edit(model.address + input.text); }},
    {"paste TEXT over all, Ctrl+Z", OnField,
     [](auto& rig, auto& input) {
         const QString before = rig.field->text();
         QApplication::clipboard()->setText(input.text);
         rig.field->selectAll();
         rig.field->paste();
         if (rig.field->text() != before) {
             QTest::keyClick(rig.field, Qt::Key_Z, Qt::ControlModifier);
         }
     },
     [](auto& model, auto& input) {
         const QString before = model.address;
         model.edit(input.text);
         model.edit(before);
     }},
    {"drop TEXT at the end", Anywhere,
     [](auto& rig, auto& input) {
         QMimeData data;
         data.setText(input.text);
         const QPoint end = rig.field->rect().bottomRight();
         QDragEnterEvent enter(end, Qt::CopyAction, &data, Qt::LeftButton, {});
         QDropEvent drop(end, Qt::CopyAction, &data, Qt::LeftButton, {});
         if (rig.field->isVisible() && rig.field->isEnabled()) {
             QApplication::sendEvent(rig.field, &enter);
             QApplication::sendEvent(rig.field, &drop);
         }
     },
     [](auto& model, auto& input) { model.edit(model.address + input.text); }},
    {"compose TEXT over all", OnField,
     [](auto& rig, auto& input) {
         rig.field->selectAll();
         rig.compose(u"preedit"_s, {});
         rig.compose({}, input.text);
     },
     [](auto& model, auto& input) { model.edit(input.text); }},
    {"compose over all, press Refresh by assistance, cancel", OnField,
     [](auto& rig, auto&) {
         rig.field->selectAll();
         rig.compose(u"preedit"_s, {});
         rig.assist(rig.page->RefreshButton());
         rig.settle();
         rig.compose({}, {});
     },
     [](auto& model, auto&) { model.press(Refresh); }},
    {"delete by input method", OnField,
     [](auto& rig, auto&) {
         rig.field->end(false);
         rig.compose({}, {}, 1);
     },
     [](auto& model, auto&) { model.edit(model.address.left(model.address.size() - 1)); }},
    {"replace all with TEXT by assistance", Anywhere,
     [](auto& rig, auto& input) { rig.assistiveText->replaceText(0, 15, input.text); },
     [](auto& model, auto& input) { model.edit(input.text); }},
    // Not caused by the user.
    {"queue installed or removed", Anywhere, [](auto&, auto&) { isQueueInstalled = !isQueueInstalled; },
     [](auto& model, auto&) { model.isInstalled = !model.isInstalled; }},
    {"search finds PRINTERS", InSearch,
     [](auto&, auto& input) {
         printersOnNetwork = input.printers;
         endSearch();
     },
     [](auto& model, auto& input) { model.endSearch(input.printers); }},
};

/// Prefers inputs that lead back to the page; ends a running search in one of four cases.
std::shared_ptr<const Input::CommandType> anyInput(const PageModel& model) {
    auto input = std::make_shared<Input>();
    input->kind = *rc::gen::sizedElementOf(kinds);
    input->button = static_cast<Button>(*rc::gen::inRange<int>(Directly, Continue + 1));
    input->pause = *rc::gen::sizedElement(doubleClickInterval, shortPause);
    input->key = *rc::gen::element(Qt::Key_Up, Qt::Key_Down, Qt::Key_Home, Qt::Key_End, Qt::Key_T);
    input->text = *rc::gen::sizedElement(u"1"_s, u"10.0.0.5"_s, u"010.0.0.05"_s, u"192.168.1.40"_s, u"a"_s,
                                         u"..256"_s, u"1.2.3.4 "_s, u"255.255.255.2555"_s, u"\u0661"_s);
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
    void inputsTakeFullEffectOrNone() {
        makeButtonsImmediate();
        QApplication::setDoubleClickInterval(doubleClickInterval);
        QApplication::setKeyboardInputInterval(0);  // Each letter typed into the list starts a new search.
        if (!qEnvironmentVariableIsSet("RC_PARAMS")) {
            qputenv("RC_PARAMS", "max_success=250");  // About 7,000 inputs.
        }
        const TemporaryHome home;
        QVERIFY(rc::check("inputs take full effect or none", [&home] {
            Rig rig(home);
            rc::state::check(PageModel(), rig, [](const PageModel& model) {
                // The nominal size lets all values occur from the first sequence on.
                return rc::gen::resize(rc::kNominalSize, rc::gen::exec([model] { return anyInput(model); }));
            });
            PageModel closed;
            closed.step = PageModel::Closed;
            rig.window.close();
            rig.settle();
            RC_ASSERT(rig.text().toStdString() == closed.text().toStdString());
        }));
    }

    /// A shortcut of a page's own counts, and a long double-click interval loses no deliberate presses.
    void otherPressesCount() {
        InstallerWindow window({new IntroductionPane({}), new IntroductionPane({}), new IntroductionPane({}),
                                new IntroductionPane({})});
        auto* const next = window.findChild<QPushButton*>(u"next"_s);
        window.show();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        next->setShortcut(Qt::CTRL | Qt::Key_N);
        QTest::keyClick(&window, Qt::Key_N, Qt::ControlModifier);
        QApplication::setDoubleClickInterval(5000);
        QTest::mouseClick(next, Qt::LeftButton);
        QTest::mouseClick(next, Qt::LeftButton);  // 500 ms later, by its timestamp.
        QCOMPARE(next->text(), u"&Close"_s);
    }
};

QUAZEL_TEST_MAIN(TestInputPaths, QApplication)

#include "test_InputPaths.moc"
