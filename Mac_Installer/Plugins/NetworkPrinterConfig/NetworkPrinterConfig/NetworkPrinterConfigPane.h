// The network printer page: the user selects how the printer is connected, then picks a discovered printer or
// types an address, and can continue once the choice is plausible. The choice is written to the hand-off file
// (SelectionFile).
//
// One class in four source files: Lifecycle (construction, entering, destruction), Search (discovery fills
// the list), Selection (what the user chooses) and Exit (validation on Continue).
//
// Threads: everything runs on the main thread, except GetPrinterIPThread and GetPrinterIP, which run on the
// discovery thread. They never touch a control directly: each group of control changes is run on the main
// thread and waited for (MainThreadGate), so effects and log records keep their order. During discovery, the
// controls that could start another run and the installer's buttons are disabled; this, not a lock, limits
// g_PrinterList to one thread at a time.
//
// No function reports an error: the user sees alerts, support staff see the logs. Calls to a destroyed
// control have no effect and return null, zero or false.

#pragma once

#include "InstallerPlugins/InstallerPane.h"
#include "NetworkPrinterConfig/controls/ComboBox.h"
#include "NetworkPrinterConfig/controls/ProgressIndicator.h"
#include "NetworkPrinterConfig/controls/RadioMatrix.h"
#include "NetworkPrinterConfig/controls/TextField.h"
#include "handoff/SelectionFile.h"
#include "platform/Atomic.h"
#include "platform/MainThreadGate.h"

#include <QGroupBox>
#include <QPointer>
#include <QPushButton>
#include <QStackedWidget>
#include <QString>

#include <functional>
#include <memory>
#include <stop_token>
#include <thread>

class NetworkPrinterConfigPane : public InstallerPane {
    Q_OBJECT

  public:
    /// Creates the content widget and connects its buttons; the caller then calls awakeFromNib().
    explicit NetworkPrinterConfigPane(QObject* parent = nullptr);
    NetworkPrinterConfigPane(const NetworkPrinterConfigPane&) = delete;
    NetworkPrinterConfigPane& operator=(const NetworkPrinterConfigPane&) = delete;

    /// Stops a running discovery, which takes up to a second.
    ~NetworkPrinterConfigPane() override;

    // The installer's callbacks (see InstallerPane).
    [[nodiscard]] QString title() const override;
    void awakeFromNib() override;
    void didEnterPane(InstallerDirection direction) override;
    [[nodiscard]] bool shouldExitPane(InstallerDirection direction) override;
    [[nodiscard]] bool hasChoice() const override;

    // Signals and actions of the controls.
    void ComboBoxGotFocus();
    void didSelectIP();
    void PrinterTypeClicked();
    void didIPTextBoxKeyPress();
    void IPTextBoxGotFocus();
    void PrinterModelClicked();
    void RefreshButtonClicked();

    /// Selects the model of a chosen list item in the model matrix: the first model name that occurs in
    /// `item`; if none does, the selection stays. Also copies the address to the text field if
    /// g_ChangeTextBoxText is set.
    void ChangePrinterModelRadioButton(const QString& item);

    /// Whether a line of the printer list contains `address`; if so, sets g_selectedPrinterModel to the first
    /// five characters of that line (for a printer, the manufacturer, not the model).
    [[nodiscard]] bool IsIPAvalaibleInList(const QString& address);

    /// Column (0 to 3) of the last model name that occurs in `model`; 0 if none does.
    [[nodiscard]] int PrinterModelToColumnNo(const QString& model) const;

    /// Whether the selected model column matches the selected printer; shows an alert if not.
    [[nodiscard]] bool ValidateSelectedIPAndModel();

    /// Body of the discovery thread. Never call it on the main thread: it waits for the main thread.
    void GetPrinterIPThread();

    /// Runs discovery and fills the list. False if the page is being destroyed and must not be touched any
    /// more.
    bool GetPrinterIP();

    // Hand-off file functions (see SelectionFile).
    void RemoveFile() { ::RemoveFile(); }
    void writeToTextFile(const QString& line) { ::writeToTextFile(line); }
    [[nodiscard]] QString GetFileData(const QString& path) { return ::GetFileData(path); }

    /// Warns about an installed driver of another version. Deliberately never called: the warning is not
    /// shown.
    void CheckExistingVersion();

    // The properties. Access is atomic, except for the three plain values, which are for the main thread
    // only. The page deletes its list, its content widget the other controls; a destroyed one reads as null.
    [[nodiscard]] ComboBox* PrinterIP() const { return PrinterIP_.load(); }
    [[nodiscard]] RadioMatrix* radiobtnPrinterType() const { return radiobtnPrinterType_.load(); }
    [[nodiscard]] QGroupBox* PrinterIPInfoBox() const { return PrinterIPInfoBox_.load(); }
    [[nodiscard]] ProgressIndicator* Progress() const { return Progress_.load(); }
    [[nodiscard]] TextField* IPAddressText() const { return IPAddressText_.load(); }
    [[nodiscard]] QGroupBox* PrinterModelBox() const { return PrinterModelBox_.load(); }
    [[nodiscard]] QGroupBox* PrinterIPBox() const { return PrinterIPBox_.load(); }
    [[nodiscard]] RadioMatrix* radiobtnPrinterModel() const { return radiobtnPrinterModel_.load(); }
    /// The selected printer's model during shouldExitPane, which clears it at the end.
    [[nodiscard]] QString g_selectedPrinterModel() const {
        const std::shared_ptr<const QString> model = g_selectedPrinterModel_.load().lock();
        return model ? *model : QString();
    }
    [[nodiscard]] QPushButton* RefreshButton() const { return RefreshButton_.load(); }
    /// Whether a list item was chosen, so that its address is copied to the text field.
    [[nodiscard]] bool g_ChangeTextBoxText() const { return g_ChangeTextBoxText_; }
    [[nodiscard]] bool g_deSelectCell() const { return g_deSelectCell_; }
    /// The model column (0 to 3) of the last chosen item.
    [[nodiscard]] qint64 g_SelectedCell() const { return g_SelectedCell_; }

    void setPrinterIP(ComboBox* control) { PrinterIP_.store(control); }
    void setRadiobtnPrinterType(RadioMatrix* control) { radiobtnPrinterType_.store(control); }
    void setPrinterIPInfoBox(QGroupBox* control) { PrinterIPInfoBox_.store(control); }
    void setProgress(ProgressIndicator* control) { Progress_.store(control); }
    void setIPAddressText(TextField* control) { IPAddressText_.store(control); }
    void setPrinterModelBox(QGroupBox* control) { PrinterModelBox_.store(control); }
    void setPrinterIPBox(QGroupBox* control) { PrinterIPBox_.store(control); }
    void setRadiobtnPrinterModel(RadioMatrix* control) { radiobtnPrinterModel_.store(control); }
    void setG_selectedPrinterModel(const std::shared_ptr<const QString>& text) {
        g_selectedPrinterModel_.store(text);
    }
    void setRefreshButton(QPushButton* control) { RefreshButton_.store(control); }
    void setG_ChangeTextBoxText(bool value) { g_ChangeTextBoxText_ = value; }
    void setG_deSelectCell(bool value) { g_deSelectCell_ = value; }
    void setG_SelectedCell(qint64 column) { g_SelectedCell_ = column; }

  private:
    static constexpr int networkTypeRow = 1;
    /// Whether a list item is "Enter IP Address Manually".
    [[nodiscard]] static bool isManualEntry(const QString& item);

    // Lifecycle
    void makeContent();
    void showAlert(const QString& informativeText);
    static void giveFocusTo(QWidget* control);

    // Search
    /// The printer list as lines: its entries joined and split at newlines, so the last line is empty.
    /// Calls `visit` for each entry first, in order.
    [[nodiscard]] static QStringList listLines(void (*visit)(const QString& entry));
    void startDiscovery();
    [[nodiscard]] bool changeControls(const std::function<void()>& changes);
    void showSearching();
    void fillList(const QStringList& lines);
    void showResult(qsizetype printers);
    void allowChoosing();

    // Selection
    void chooseModelColumn(int column);

    // Exit
    [[nodiscard]] bool mayGoForward();
    void selectPrinterModel(const QString& model);
    /// Both show an alert if they return false.
    [[nodiscard]] bool requireChoice(const QString& item, const QString& address);
    [[nodiscard]] bool requireValidAddress(const QString& address);
    [[nodiscard]] bool commitListChoice(const QString& item, const QString& model);
    [[nodiscard]] bool commitTypedAddress(const QString& address, const QString& model, qint64 column);
    /// The records around the two steps of a commit, which show where the choice came from.
    struct CommitRecords {
        const char *asking, *asked, *writing, *written;
    };
    [[nodiscard]] bool commit(const QString& model, const QString& address, const QString& line,
                              const CommitRecords& records);

    Atomic<QPointer<ComboBox>> PrinterIP_;
    Atomic<QPointer<RadioMatrix>> radiobtnPrinterType_;
    Atomic<QPointer<QGroupBox>> PrinterIPInfoBox_;
    Atomic<QPointer<ProgressIndicator>> Progress_;
    Atomic<QPointer<TextField>> IPAddressText_;
    Atomic<QPointer<QGroupBox>> PrinterModelBox_;
    Atomic<QPointer<QGroupBox>> PrinterIPBox_;
    Atomic<QPointer<RadioMatrix>> radiobtnPrinterModel_;
    Atomic<std::weak_ptr<const QString>> g_selectedPrinterModel_;
    Atomic<QPointer<QPushButton>> RefreshButton_;
    QPointer<QStackedWidget> searchStatus_;  // progress, nothing found, or number of printers
    bool g_ChangeTextBoxText_ = false;
    bool g_deSelectCell_ = false;
    qint64 g_SelectedCell_ = 0;

    std::shared_ptr<const QString> modelOfDecision_;  // keeps g_selectedPrinterModel alive
    MainThreadGate gate_;
    std::stop_source leaving_;
    std::jthread discoveryThread_;
    bool discovering_ = false;
    bool focusFollowsSearch_ = false;
};
