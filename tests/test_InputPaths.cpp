// Whatever way the user takes, an act has its whole effect or none: random sequences of acts, each by mouse,
// keys, mnemonics, input method, drag and drop or an assistive program, on the real window and page, against
// a model.
//
// RC_PARAMS="max_success=1000 max_size=200" runs more of them; "reproduce=..." repeats a failure.

#include "Installer/InstallerWindow.h"
#include "Installer/IntroductionPane.h"
#include "Installer/SummaryPane.h"
#include "NetworkPrinterConfig/NetworkPrinterConfigPane.h"
#include "discovery/InstalledPrinters.h"
#include "discovery/PrinterDiscovery.h"
#include "handoff/DiagnosticLog.h"
#include "support/Fixtures.h"
#include "support/PageFixtures.h"
#include "support/PageModel.h"
#include "support/SystemLogCapture.h"
#include "support/TestMain.h"

#include <QAbstractItemView>
#include <QAccessible>
#include <QApplication>
#include <QClipboard>
#include <QElapsedTimer>
#include <QLabel>
#include <QMimeData>
#include <QPushButton>
#include <QTest>

#include <rapidcheck.h>
#include <rapidcheck/state.h>

#include <condition_variable>
#include <mutex>

namespace {

/// What answers the stand-in for discovery: a search ends when the test says so.
struct Network {
    std::mutex mutex;
    std::condition_variable_any changed;
    bool isAsked = false;
    bool isAnswered = false;
    QStringList printers;
} network;

QStringList queues;  // of the print service

}  // namespace

// In place of the program's own discovery and look-up.
std::shared_ptr<QStringList> g_PrinterList;
QString g_ModelName;
std::int32_t g_PrinterAlreadyInstalled = 0;

void resetPrinterList() {
    setFoundPrinters({});
}

void GetTovikQuazelPrinters(const std::stop_token& leaving) {
    std::unique_lock lock(network.mutex);
    resetPrinterList();
    network.isAsked = true;
    if (network.changed.wait(lock, leaving, [] { return network.isAnswered; })) {
        setFoundPrinters(network.printers);
    }
    network.isAsked = network.isAnswered = false;
}

void GetInstalledPrinterList() {
    const QCursor* const cursor = QGuiApplication::overrideCursor();
    const bool isBusy = cursor != nullptr && cursor->shape() == Qt::BusyCursor;
    tDebugPrint("CUPS %s%s\n", qPrintable(g_ModelName), isBusy ? "" : ", without the busy cursor");
    g_PrinterAlreadyInstalled = queues.contains(g_ModelName) ? 1 : 0;
}

namespace {

constexpr int pause = 1000;      // ms, longer than a double click
constexpr int shortPause = 100;  // ms, shorter

/// The window with its pages, worked by real events.
class Desk {
  public:
    explicit Desk(const TemporaryHome& home)
        : home_(home),
          page_(new NetworkPrinterConfigPane),
          list(page_->PrinterIP()),
          field(page_->IPAddressText()) {
        page_->awakeFromNib();
        window_ = std::make_unique<InstallerWindow>(
            std::vector<InstallerPane*>{new IntroductionPane(QString()), page_, new SummaryPane});
        window_->resize(780, 780);
        window_->show();
        RC_ASSERT(QTest::qWaitForWindowActive(window_.get()));
        (void)takeLog(home_);
        (void)beeps_.take();
        alerts_.beforeClosing = [this] { actBehindAlert(); };
    }

    [[nodiscard]] QAbstractButton* widgetOf(Button button) const {
        const auto index = static_cast<int>(button);
        switch (button) {
            case Button::Back:
                return window_->findChild<QPushButton*>(u"back"_s);
            case Button::Next:
                return window_->findChild<QPushButton*>(u"next"_s);
            case Button::Refresh:
                return page_->RefreshButton();
            default:
                return index < 2 ? page_->radiobtnPrinterType()->cellAt(index, 0)
                                 : page_->radiobtnPrinterModel()->cellAt(0, index - 2);
        }
    }

    void click(Button button, QTest::MouseAction action) {
        QAbstractButton* const widget = widgetOf(button);
        if (widget->isVisible()) {
            const QPoint place = widget->mapTo(window_.get(), QPoint(8, widget->height() / 2));
            QTest::mouseEvent(action, window_->windowHandle(), Qt::LeftButton, {}, place);
        }
    }

    /// Presses a key `after` milliseconds of the events' own time; held down, it repeats once more.
    void pressKey(char character, Qt::KeyboardModifiers modifiers, int after, bool isHeld = false) {
        QTest::lastMouseTimestamp += after;
        const auto time = static_cast<quint64>(QTest::lastMouseTimestamp);
        const int key = QTest::asciiToKey(character);
        const QString text{QLatin1Char(character)};
        for (const bool isRepeated : {false, true}) {
            if (isRepeated && !isHeld) {
                break;
            }
            QWidget* const target = keyTarget();
            if (!qt_sendShortcutOverrideEvent(target, time, key, modifiers, text, isRepeated)) {
                QKeyEvent press(QEvent::KeyPress, key, modifiers, text, isRepeated);
                press.setTimestamp(time);
                QApplication::sendEvent(target, &press);
            }
        }
        QKeyEvent release(QEvent::KeyRelease, key, modifiers, text);
        release.setTimestamp(time);
        QApplication::sendEvent(keyTarget(), &release);
    }

    void pressMnemonic(Button button, int after, bool isHeld = false) {
        const QString text = widgetOf(button)->text();
        pressKey(text.at(text.indexOf(u'&') + 1).toLower().toLatin1(), Qt::AltModifier, after, isHeld);
    }
    void pressReturn(int after, bool isHeld = false) { pressKey('\r', {}, after, isHeld); }

    bool takeFocus(QWidget* control) {
        activate();
        if (control->isVisible()) {
            control->setFocus();
        }
        return control->isVisible() && control->hasFocus();
    }

    void pressSpace(Button button) {
        if (takeFocus(widgetOf(button))) {
            pressKey(' ', {}, pause);
        }
    }
    void pressInList(Qt::Key key) {
        if (takeFocus(list)) {
            QTest::keyClick(list, key);
        }
    }

    static void assist(QWidget* control, const QString& action) {
        QAccessible::queryAccessibleInterface(control)->actionInterface()->doAction(action);
    }
    void assist(Button button) {
        assist(widgetOf(button), button < Button::Refresh ? QAccessibleActionInterface::toggleAction()
                                                          : QAccessibleActionInterface::pressAction());
    }
    [[nodiscard]] QAccessibleEditableTextInterface* accessibleText() const {
        return QAccessible::queryAccessibleInterface(field)->editableTextInterface();
    }

    void turnWheel() {
        if (list->isVisible()) {
            const QPointF middle = list->rect().center();
            QWheelEvent event(middle, list->mapToGlobal(middle), {}, {0, -120}, {}, {}, Qt::NoScrollPhase,
                              false);
            QSpontaneKeyEvent::setSpontaneous(&event);  // Only those may take the focus.
            qApp->notify(list, &event);
        }
    }

    void chooseLastInPopup() {
        if (list->view()->isVisible()) {
            QTest::keyClick(list->view(), Qt::Key_End);
            QTest::keyClick(list->view(), Qt::Key_Return);
        }
    }

    void chooseLastByAssistance() {
        assist(list, QAccessibleActionInterface::showMenuAction());
        chooseLastInPopup();
    }

    [[nodiscard]] int length() const { return static_cast<int>(field->text().size()); }

    void type(const QString& text) {
        if (takeFocus(field)) {
            field->end(false);
            for (const QChar character : text) {
                QTest::sendKeyEvent(QTest::Click, field, Qt::Key_unknown, QString(character), {});
            }
        }
    }

    void paste(const QString& text) {
        if (takeFocus(field)) {
            QApplication::clipboard()->setText(text);
            field->selectAll();
            QTest::keySequence(field, QKeySequence::Paste);
        }
    }

    /// Replaces all by way of a preedit; a null text gives it up.
    void compose(
        const QString& text, const std::function<void()>& meanwhile = [] {}) {
        if (takeFocus(field)) {
            field->selectAll();
            QInputMethodEvent preedit(u"preedit"_s, {});
            QApplication::sendEvent(field, &preedit);
            meanwhile();
            QInputMethodEvent commit;
            commit.setCommitString(text);
            QApplication::sendEvent(field, &commit);
        }
    }

    void deleteByInputMethod() {
        if (takeFocus(field)) {
            field->end(false);
            QInputMethodEvent event;
            event.setCommitString(QString(), -1, 1);
            QApplication::sendEvent(field, &event);
        }
    }

    void drop(const QString& text) {
        if (field->isVisible() && field->isEnabled()) {
            QMimeData data;
            data.setText(text);
            const QPoint place(field->width() - 5, field->height() / 2);
            QDragEnterEvent enter(place, Qt::CopyAction, &data, Qt::LeftButton, {});
            QApplication::sendEvent(field, &enter);
            QDropEvent event(place, Qt::CopyAction, &data, Qt::LeftButton, {});
            QApplication::sendEvent(field, &event);
        }
    }

    void endSearch(const QStringList& printers) {
        const std::lock_guard lock(network.mutex);
        network.printers = printers;
        network.isAnswered = true;
        network.changed.notify_all();
    }

    /// Waits until the page has come to rest: no search, or one that waits for printers.
    void settle() {
        QTest::lastMouseTimestamp += pause;
        QElapsedTimer clock;
        for (clock.start(); clock.elapsed() < 5000;) {
            QCoreApplication::processEvents();
            const std::lock_guard lock(network.mutex);
            if (page_->isNextEnabled() || (network.isAsked && !network.isAnswered)) {
                return;
            }
        }
        RC_FAIL("the page does not come to rest");
    }

    /// What can be seen of the page now, in the model's words.
    [[nodiscard]] QString text() {
        const QStringList titles{u"Introduction"_s, page_->title(), u"Summary"_s};
        const QString heading = window_->findChild<QLabel*>(u"heading"_s)->text();
        const RadioMatrix& models = *page_->radiobtnPrinterModel();
        const QList<bool> enabled{list->isEnabled(), page_->RefreshButton()->isEnabled(),
                                  page_->radiobtnPrinterType()->isEnabled(), page_->isNextEnabled(),
                                  page_->isPreviousEnabled()};
        PageModel seen;
        seen.step = window_->isVisible() ? static_cast<int>(titles.indexOf(heading)) : -1;
        seen.type = page_->radiobtnPrinterType()->selectedRow();
        seen.isBoxShown = !page_->PrinterIPInfoBox()->isHidden();
        seen.items = itemsOf(*list);
        seen.selected = list->currentIndex();
        seen.address = field->stringValue();
        seen.isEditable = field->isEditable();
        seen.isAddressEnabled = field->isEnabled();
        seen.areModelsEnabled = models.isEnabled();
        seen.column = models.selectedColumn();
        seen.areControlsEnabled = enabled.contains(true);
        seen.isBusy = !page_->Progress()->isHidden() && page_->Progress()->isAnimating();
        seen.changeText = page_->g_ChangeTextBoxText();
        seen.deSelect = page_->g_deSelectCell();
        seen.selectedCell = page_->g_SelectedCell();
        seen.file = QString::fromLatin1(contentOf(home_.selectionFile()));
        seen.effects = {takeLog(home_), alerts_.take(), beeps_.take()};
        return seen.text() + (enabled.count(enabled.first()) == enabled.size() ? QString() : u"mixed"_s);
    }

  private:
    /// Without a window manager, a closed alert or popup leaves no window active.
    void activate() const {
        if (!window_->isActiveWindow()) {
            window_->activateWindow();
            QCoreApplication::processEvents();
        }
    }

    [[nodiscard]] QWidget* keyTarget() const {
        activate();
        QWidget* const focused = QApplication::focusWidget();
        return focused != nullptr ? focused : window_.get();
    }

    /// An assistive program can reach the window behind an alert, but must not change anything.
    void actBehindAlert() {
        for (int button = 0; button <= static_cast<int>(Button::Next); ++button) {
            assist(static_cast<Button>(button));
        }
        accessibleText()->insertText(0, u"9"_s);
        chooseLastByAssistance();
    }

    const TemporaryHome& home_;
    BeepCounter beeps_;
    AlertReader alerts_;
    NetworkPrinterConfigPane* page_;
    std::unique_ptr<InstallerWindow> window_;

  public:
    ComboBox* const list;
    TextField* const field;
};

/// What an act is about; each takes what it needs.
struct Choice {
    std::size_t act = 0;
    Button button = Button::Next;
    Button second = Button::Next;
    int key = 0;
    QStringList printers;
    QStringList queues;
    QString text;
};

/// A thing that the user can do, on the real page and on the model.
struct Act {
    const char* name;
    void (*perform)(Desk& desk, const Choice& choice);
    void (*expect)(PageModel& model, const Choice& choice);
};

constexpr Qt::Key listKeys[]{Qt::Key_Down, Qt::Key_Up, Qt::Key_Home, Qt::Key_End};

void nothing(PageModel&, const Choice&) {}
void press(PageModel& model, const Choice& choice) {
    model.press(choice.button);
}
void pressNext(PageModel& model, const Choice&) {
    model.press(Button::Next);
}
void selectLast(PageModel& model, const Choice&) {
    model.select(model.items.size() - 1);
}
void append(PageModel& model, const Choice& choice) {
    model.edit(model.address + choice.text);
}
void replace(PageModel& model, const Choice& choice) {
    model.edit(choice.text);
}
void replaceIfOther(PageModel& model, const Choice& choice) {
    if (choice.text != model.address) {
        model.edit(choice.text);
    }
}

const Act acts[]{
    // Presses of choice.button.
    {"click", [](Desk& desk, const Choice& choice) { desk.click(choice.button, QTest::MouseClick); }, press},
    {"double click", [](Desk& desk, const Choice& choice) { desk.click(choice.button, QTest::MouseDClick); },
     [](PageModel& model, const Choice& choice) {
         model.press(choice.button);
         if (choice.button < Button::Refresh) {
             model.press(choice.button);  // Each half selects.
         }
     }},
    {"mnemonic", [](Desk& desk, const Choice& choice) { desk.pressMnemonic(choice.button, pause); }, press},
    {"mnemonic held down",
     [](Desk& desk, const Choice& choice) { desk.pressMnemonic(choice.button, pause, true); }, press},
    {"two mnemonics",
     [](Desk& desk, const Choice& choice) {
         desk.pressMnemonic(choice.button, pause);
         desk.pressMnemonic(choice.second, shortPause);
     },
     [](PageModel& model, const Choice& choice) {
         model.press(choice.button);
         if (choice.button != choice.second || choice.button < Button::Back) {
             model.press(choice.second);  // The same mnemonic twice would be a double press.
         }
     }},
    {"Space", [](Desk& desk, const Choice& choice) { desk.pressSpace(choice.button); }, press},
    {"assistive press", [](Desk& desk, const Choice& choice) { desk.assist(choice.button); },
     [](PageModel& model, const Choice& choice) { model.toggle(choice.button); }},
    // Return, wherever the focus is.
    {"Return", [](Desk& desk, const Choice&) { desk.pressReturn(pause); }, pressNext},
    {"Return held down", [](Desk& desk, const Choice&) { desk.pressReturn(pause, true); }, pressNext},
    {"Return twice at once",
     [](Desk& desk, const Choice&) {
         desk.pressReturn(pause);
         desk.pressReturn(shortPause);
     },
     pressNext},
    {"Return twice",
     [](Desk& desk, const Choice&) {
         desk.pressReturn(pause);
         desk.pressReturn(pause);
     },
     [](PageModel& model, const Choice& choice) {
         pressNext(model, choice);
         pressNext(model, choice);
     }},
    // The list.
    {"key in the list", [](Desk& desk, const Choice& choice) { desk.pressInList(listKeys[choice.key]); },
     [](PageModel& model, const Choice& choice) {
         const qsizetype targets[]{model.selected + 1, model.selected - 1, 0, model.items.size() - 1};
         model.select(targets[choice.key]);
     }},
    {"wheel on the list with the focus",
     [](Desk& desk, const Choice&) {
         if (desk.takeFocus(desk.list)) {
             desk.turnWheel();
         }
     },
     [](PageModel& model, const Choice&) { model.select(model.selected + 1); }},
    {"wheel on the list without the focus",
     [](Desk& desk, const Choice&) {
         desk.takeFocus(desk.widgetOf(Button::Next));
         desk.turnWheel();
     },
     nothing},
    {"last in the popup",
     [](Desk& desk, const Choice&) {
         desk.pressInList(Qt::Key_F4);
         desk.chooseLastInPopup();
     },
     selectLast},
    {"last in an assistive popup", [](Desk& desk, const Choice&) { desk.chooseLastByAssistance(); },
     selectLast},
    // The address.
    {"type", [](Desk& desk, const Choice& choice) { desk.type(choice.text); },
     [](PageModel& model, const Choice& choice) {
         for (const QChar character : choice.text) {
             model.edit(model.address + character);
         }
     }},
    {"paste over all", [](Desk& desk, const Choice& choice) { desk.paste(choice.text); }, replace},
    {"drop at the end", [](Desk& desk, const Choice& choice) { desk.drop(choice.text); }, append},
    {"compose over all", [](Desk& desk, const Choice& choice) { desk.compose(choice.text); }, replace},
    {"delete by input method", [](Desk& desk, const Choice&) { desk.deleteByInputMethod(); },
     [](PageModel& model, const Choice&) {
         if (!model.address.isEmpty()) {
             model.edit(model.address.chopped(1));
         }
     }},
    {"compose over all, Refresh by assistance, give it up",
     [](Desk& desk, const Choice&) {
         desk.compose(QString(), [&] {
             desk.assist(Button::Refresh);
             desk.settle();
         });
     },
     [](PageModel& model, const Choice&) {
         if (model.isFieldFree()) {
             model.press(Button::Refresh);
         }
     }},
    {"compose over all and give it up", [](Desk& desk, const Choice&) { desk.compose(QString()); }, nothing},
    {"assistive insert",
     [](Desk& desk, const Choice& choice) { desk.accessibleText()->insertText(desk.length(), choice.text); },
     append},
    {"assistive replace",
     [](Desk& desk, const Choice& choice) {
         desk.accessibleText()->replaceText(0, desk.length(), choice.text);
     },
     replaceIfOther},
    {"assistive delete",
     [](Desk& desk, const Choice&) { desk.accessibleText()->deleteText(0, desk.length()); },
     [](PageModel& model, const Choice&) { replaceIfOther(model, {}); }},
    // No act of the user's.
    {"the search ends", [](Desk& desk, const Choice& choice) { desk.endSearch(choice.printers); },
     [](PageModel& model, const Choice& choice) { model.endSearch(choice.printers); }},
};
constexpr std::size_t click = 0;
constexpr std::size_t searchEnds = std::size(acts) - 1;

struct ActCommand : rc::state::Command<PageModel, Desk> {
    explicit ActCommand(Choice choice) : choice_(std::move(choice)) {}

    void checkPreconditions(const PageModel& model) const override {
        RC_PRE(choice_.act != searchEnds || !model.areControlsEnabled);
        RC_PRE(nextState(model).step != PageModel::Closed);
    }

    void apply(PageModel& model) const override {
        model.queues = choice_.queues;
        model.effects = {};
        acts[choice_.act].expect(model, choice_);
    }

    void run(const PageModel& before, Desk& desk) const override {
        queues = choice_.queues;
        acts[choice_.act].perform(desk, choice_);
        desk.settle();
        RC_ASSERT(desk.text().toStdString() == nextState(before).text().toStdString());
    }

    void show(std::ostream& out) const override {
        static const char* const names[]{"Directly", "Network", "KV210",   "KV260",   "KV410",
                                         "KV460",    "Refresh", "Go Back", "Continue"};
        out << acts[choice_.act].name << " [" << names[static_cast<int>(choice_.button)] << ", then "
            << names[static_cast<int>(choice_.second)] << "; key " << choice_.key << "; \""
            << choice_.text.toStdString() << "\"; printers " << choice_.printers.join(u", "_s).toStdString()
            << "; queues " << choice_.queues.join(u", "_s).toStdString() << ']';
    }

  private:
    const Choice choice_;
};

/// Of the whole range at any size of the test, which would otherwise begin with the first few.
int below(std::size_t end) {
    return *rc::gen::resize(rc::kNominalSize, rc::gen::inRange(0, static_cast<int>(end)));
}

QStringList someOf(const QStringList& pool) {
    QStringList some;
    for (const QString& each : pool) {
        if (below(2) == 1) {
            some += each;
        }
    }
    return some;
}

using AnyCommand = std::shared_ptr<const rc::state::Command<PageModel, Desk>>;

/// Mostly what leads on: from the other pages to this one, from a search to its end.
rc::Gen<AnyCommand> anyAct(const PageModel& model) {
    return rc::gen::exec([step = model.step, isSearching = !model.areControlsEnabled]() -> AnyCommand {
        static const QStringList texts{u"1"_s,     u"10.0.0.5"_s, u"192.168.1.40"_s,     u"a"_s,
                                       u"..256"_s, u"1.2.3.4 "_s, u"255.255.255.2555"_s, u"\u0661"_s};
        Choice choice;
        choice.act = static_cast<std::size_t>(below(std::size(acts)));
        choice.button = static_cast<Button>(below(9));
        if (step != PageModel::Page && below(4) > 0) {
            choice.act = click;
            choice.button = step == PageModel::Introduction ? Button::Next : Button::Back;
        } else if (isSearching && below(4) == 0) {
            choice.act = searchEnds;
        }
        choice.second = static_cast<Button>(below(9));
        choice.key = below(std::size(listKeys));
        choice.text = texts.at(below(static_cast<std::size_t>(texts.size())));
        choice.printers = someOf({u"Tovik KV210 @10.0.0.4"_s, u"Tovik KV260 @10.0.0.5"_s,
                                  u"Tovik KV410 @10.0.0.7"_s, u"Tovik KV460 @10.0.0.50"_s});
        choice.queues = someOf({u"Tovik-KV210-Ethernet-Printer-IP=10.0.0.4"_s,
                                u"Tovik-KV460-Ethernet-Printer-IP=10.0.0.50"_s,
                                u"Tovik-KV210-Ethernet-Printer-IP=192.168.1.40"_s});
        return std::make_shared<ActCommand>(choice);
    });
}

}  // namespace

class TestInputPaths : public QObject {
    Q_OBJECT

  private slots:
    void anActHasItsWholeEffectOrNone() {
        if (!qEnvironmentVariableIsSet("RC_PARAMS")) {
            qputenv("RC_PARAMS", "max_success=250");  // About 7,000 acts.
        }
        const SystemLogCapture systemLog;
        QVERIFY(rc::check("an act has its whole effect or none", [this] {
            Desk desk(home_);
            rc::state::check(PageModel(), desk, anyAct);
        }));
    }

  private:
    TemporaryHome home_;
};

QUAZEL_TEST_MAIN(TestInputPaths, QApplication)

#include "test_InputPaths.moc"
