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
        (void)QTest::qWaitForWindowActive(window_.get());
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

    void pressMnemonic(Button button) {
        const QString text = widgetOf(button)->text();
        QTest::keyClick(keyTarget(), text.at(text.indexOf(u'&') + 1).toLatin1(), Qt::AltModifier);
    }

    /// Return `after` milliseconds of the events' own time.
    void pressReturn(int after, bool isHeld = false) {
        QTest::lastMouseTimestamp += after;
        for (const auto type : {QEvent::KeyPress, QEvent::KeyRelease}) {
            QKeyEvent event(type, Qt::Key_Return, {}, u"\r"_s, isHeld);
            event.setTimestamp(static_cast<quint64>(QTest::lastMouseTimestamp));
            QApplication::sendEvent(keyTarget(), &event);
        }
    }

    void typeInto(QWidget* control, const std::function<void()>& keys) {
        if (control->isVisible()) {
            control->setFocus();
            if (control->hasFocus()) {
                keys();
            }
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

    void compose(const QString& preedit, const QString& commit) {
        QInputMethodEvent event(preedit, {});
        event.setCommitString(commit);
        QApplication::sendEvent(field, &event);
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
        window_->activateWindow();  // Without a window manager, a closed alert leaves no window active.
        QTest::lastMouseTimestamp += 1000;
        QElapsedTimer clock;
        for (clock.start(); clock.elapsed() < 5000;) {
            QCoreApplication::processEvents();
            const std::lock_guard lock(network.mutex);
            if (page_->isNextEnabled() || (network.isAsked && !network.isAnswered)) {
                return;
            }
        }
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
        seen.beeps = beeps_.take();
        seen.alerts = alerts_.take();
        seen.records = takeLog(home_);
        return seen.text() + (enabled.count(enabled.first()) == enabled.size() ? QString() : u"mixed"_s);
    }

  private:
    [[nodiscard]] QWidget* keyTarget() const {
        QWidget* const focused = QApplication::focusWidget();
        return focused != nullptr ? focused : window_.get();
    }

    /// An assistive program can reach the window behind an alert, but must not change anything.
    void actBehindAlert() {
        for (int button = 0; button <= static_cast<int>(Button::Next); ++button) {
            assist(static_cast<Button>(button));
        }
        accessibleText()->insertText(0, u"9"_s);
        assist(list, QAccessibleActionInterface::showMenuAction());
        chooseLastInPopup();
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

constexpr int longPause = 1000;  // ms, longer than a double click
constexpr int shortPause = 100;
constexpr Qt::Key listKeys[]{Qt::Key_Down, Qt::Key_Up, Qt::Key_Home, Qt::Key_End};
const QString showMenu = QAccessibleActionInterface::showMenuAction();

void pressOnce(PageModel& model, const Choice& choice) {
    model.press(choice.button);
}
void continueOnce(PageModel& model, const Choice& /*choice*/) {
    model.press(Button::Next);
}
void selectLast(PageModel& model, const Choice& /*choice*/) {
    model.select(model.items.size() - 1);
}
void append(PageModel& model, const Choice& choice) {
    model.edit(model.address + choice.text);
}
void replace(PageModel& model, const Choice& choice) {
    model.edit(choice.text);
}

const Act acts[]{
    {"click", [](Desk& desk, const Choice& choice) { desk.click(choice.button, QTest::MouseClick); },
     pressOnce},
    {"double click", [](Desk& desk, const Choice& choice) { desk.click(choice.button, QTest::MouseDClick); },
     [](PageModel& model, const Choice& choice) {
         model.press(choice.button);
         if (choice.button < Button::Refresh) {
             model.press(choice.button);  // Each half selects.
         }
     }},
    {"mnemonic", [](Desk& desk, const Choice& choice) { desk.pressMnemonic(choice.button); }, pressOnce},
    {"two mnemonics",
     [](Desk& desk, const Choice& choice) {
         desk.pressMnemonic(choice.button);
         desk.pressMnemonic(choice.second);
     },
     [](PageModel& model, const Choice& choice) {
         model.press(choice.button);
         model.press(choice.second);
     }},
    {"Space",
     [](Desk& desk, const Choice& choice) {
         QAbstractButton* const button = desk.widgetOf(choice.button);
         desk.typeInto(button, [=] { QTest::keyClick(button, Qt::Key_Space); });
     },
     pressOnce},
    {"assistive press", [](Desk& desk, const Choice& choice) { desk.assist(choice.button); },
     [](PageModel& model, const Choice& choice) { model.toggle(choice.button); }},
    {"Return", [](Desk& desk, const Choice& /*choice*/) { desk.pressReturn(longPause); }, continueOnce},
    {"Return held down",
     [](Desk& desk, const Choice& /*choice*/) {
         desk.pressReturn(longPause);
         desk.pressReturn(longPause, true);
     },
     continueOnce},
    {"Return twice at once",
     [](Desk& desk, const Choice& /*choice*/) {
         desk.pressReturn(longPause);
         desk.pressReturn(shortPause);
     },
     continueOnce},
    {"Return twice",
     [](Desk& desk, const Choice& /*choice*/) {
         desk.pressReturn(longPause);
         desk.pressReturn(longPause);
     },
     [](PageModel& model, const Choice& /*choice*/) {
         model.press(Button::Next);
         model.press(Button::Next);
     }},
    {"key in the list",
     [](Desk& desk, const Choice& choice) {
         desk.typeInto(desk.list, [&] { QTest::keyClick(desk.list, listKeys[choice.key]); });
     },
     [](PageModel& model, const Choice& choice) {
         const qsizetype targets[]{model.selected + 1, model.selected - 1, 0, model.items.size() - 1};
         model.select(targets[choice.key]);
     }},
    {"wheel on the list with the focus",
     [](Desk& desk, const Choice& /*choice*/) { desk.typeInto(desk.list, [&] { desk.turnWheel(); }); },
     [](PageModel& model, const Choice& /*choice*/) { model.select(model.selected + 1); }},
    {"wheel on the list without the focus",
     [](Desk& desk, const Choice& /*choice*/) {
         desk.widgetOf(Button::Next)->setFocus();
         desk.turnWheel();
     },
     [](PageModel& /*model*/, const Choice& /*choice*/) {}},
    {"last in the popup",
     [](Desk& desk, const Choice& /*choice*/) {
         desk.typeInto(desk.list, [&] { QTest::keyClick(desk.list, Qt::Key_F4); });
         desk.chooseLastInPopup();
     },
     selectLast},
    {"last in an assistive popup",
     [](Desk& desk, const Choice& /*choice*/) {
         Desk::assist(desk.list, showMenu);
         desk.chooseLastInPopup();
     },
     selectLast},
    {"type",
     [](Desk& desk, const Choice& choice) {
         desk.typeInto(desk.field, [&] {
             desk.field->end(false);
             for (const QChar character : choice.text) {
                 QTest::sendKeyEvent(QTest::Click, desk.field, Qt::Key_unknown, QString(character), {});
             }
         });
     },
     [](PageModel& model, const Choice& choice) {
         for (const QChar character : choice.text) {
             model.edit(model.address + character);
         }
     }},
    {"backspace",
     [](Desk& desk, const Choice& /*choice*/) {
         desk.typeInto(desk.field, [&] {
             desk.field->end(false);
             QTest::keyClick(desk.field, Qt::Key_Backspace);
         });
     },
     [](PageModel& model, const Choice& /*choice*/) {
         if (!model.address.isEmpty()) {
             model.edit(model.address.chopped(1));
         }
     }},
    {"paste over all",
     [](Desk& desk, const Choice& choice) {
         desk.typeInto(desk.field, [&] {
             QApplication::clipboard()->setText(choice.text);
             desk.field->selectAll();
             QTest::keySequence(desk.field, QKeySequence::Paste);
         });
     },
     replace},
    {"drop at the end", [](Desk& desk, const Choice& choice) { desk.drop(choice.text); }, append},
    {"compose over all",
     [](Desk& desk, const Choice& choice) {
         desk.typeInto(desk.field, [&] {
             desk.field->selectAll();
             desk.compose(u"preedit"_s, QString());
             desk.compose(QString(), choice.text);
         });
     },
     replace},
    {"compose at the end",
     [](Desk& desk, const Choice& choice) {
         desk.typeInto(desk.field, [&] {
             desk.field->end(false);
             desk.compose(u"preedit"_s, QString());
             desk.compose(QString(), choice.text);
         });
     },
     append},
    {"compose over all and give it up",
     [](Desk& desk, const Choice& /*choice*/) {
         desk.typeInto(desk.field, [&] {
             desk.field->selectAll();
             desk.compose(u"preedit"_s, QString());
             desk.compose(QString(), QString());
         });
     },
     [](PageModel& /*model*/, const Choice& /*choice*/) {}},
    {"assistive insert",
     [](Desk& desk, const Choice& choice) {
         desk.accessibleText()->insertText(static_cast<int>(desk.field->text().size()), choice.text);
     },
     append},
    {"assistive replace",
     [](Desk& desk, const Choice& choice) {
         desk.accessibleText()->replaceText(0, static_cast<int>(desk.field->text().size()), choice.text);
     },
     [](PageModel& model, const Choice& choice) {
         if (choice.text != model.address) {
             model.edit(choice.text);
         }
     }},
    {"assistive delete",
     [](Desk& desk, const Choice& /*choice*/) {
         desk.accessibleText()->deleteText(0, static_cast<int>(desk.field->text().size()));
     },
     [](PageModel& model, const Choice& /*choice*/) {
         if (!model.address.isEmpty()) {
             model.edit(QString());
         }
     }},
    {"the search ends", [](Desk& desk, const Choice& choice) { desk.endSearch(choice.printers); },
     [](PageModel& model, const Choice& choice) { model.endSearch(choice.printers); }},
};
constexpr std::size_t twoMnemonics = 3;
constexpr std::size_t firstReturn = 6;
constexpr std::size_t twoReturns = 9;
constexpr std::size_t searchEnds = std::size(acts) - 1;

struct ActCommand : rc::state::Command<PageModel, Desk> {
    explicit ActCommand(Choice choice) : choice_(std::move(choice)) {}

    void checkPreconditions(const PageModel& model) const override {
        RC_PRE(choice_.act != searchEnds || !model.areControlsEnabled);
        // On the last page, Continue is Close.
        const bool isReturn = choice_.act >= firstReturn && choice_.act <= twoReturns;
        const int presses = choice_.act == twoReturns ? 2 : 1;
        RC_PRE(!(isReturn || (choice_.act < firstReturn && choice_.button == Button::Next)) ||
               model.step + presses <= PageModel::Summary);
        // An alert would come between two mnemonics.
        RC_PRE(choice_.act != twoMnemonics ||
               (model.step == PageModel::Page && choice_.button != Button::Next));
    }

    void apply(PageModel& model) const override {
        model.queues = choice_.queues;
        model.records.clear();
        model.alerts.clear();
        model.beeps = 0;
        acts[choice_.act].expect(model, choice_);
        if (model.isSearchStarting) {
            model.beginSearch();
        }
    }

    void run(const PageModel& before, Desk& desk) const override {
        queues = choice_.queues;
        acts[choice_.act].perform(desk, choice_);
        desk.settle();
        RC_ASSERT(desk.text().toStdString() == nextState(before).text().toStdString());
    }

    void show(std::ostream& out) const override {
        out << acts[choice_.act].name << ", button " << static_cast<int>(choice_.button) << ", then "
            << static_cast<int>(choice_.second) << ", key " << choice_.key << ", \""
            << choice_.text.toStdString() << "\", printers " << choice_.printers.join(u", "_s).toStdString();
    }

  private:
    const Choice choice_;
};

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
            choice.act = static_cast<std::size_t>(below(firstReturn));
            choice.button = step == PageModel::Introduction ? Button::Next : Button::Back;
        } else if (isSearching && below(4) == 0) {
            choice.act = searchEnds;
        } else if (below(3) == 0) {
            choice.act = static_cast<std::size_t>(below(twoReturns));
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
