// The network printer page: the person says how the printer is connected, picks one that was found on the
// network or types an address, and is let go on when the choice can be right. The choice is handed on in a
// file (SelectionFile).
//
// One class in three source files by duty: Lifecycle (making, entering, leaving for good), Selection
// (discovery, the list and what is chosen in it) and Exit (the decision whether the person may go on).
//
// Threads: everything runs on the main thread, except GetPrinterIPThread and GetPrinterIP, which run on the
// discovery thread. They touch no control themselves: each group of control changes is handed to the main
// thread and waited for (MainThreadGate), so effects and log records keep their order. While discovery runs,
// the controls that could start another, and the installer's buttons, are disabled; that, and no lock, keeps
// g_PrinterList to one thread at a time.
//
// No operation reports an error: the person sees alerts, support staff see the logs. A control that is gone
// takes messages without effect and answers null, zero or no.

#pragma once

#include "InstallerPlugins/InstallerPane.h"
#include "NetworkPrinterConfig/controls/ComboBox.h"
#include "NetworkPrinterConfig/controls/ProgressIndicator.h"
#include "NetworkPrinterConfig/controls/RadioMatrix.h"
#include "NetworkPrinterConfig/controls/TextField.h"
#include "platform/AtomicReference.h"
#include "platform/MainThreadGate.h"

#include <QGroupBox>
#include <QPushButton>
#include <QString>

#include <functional>
#include <memory>
#include <stop_token>
#include <thread>

class NetworkPrinterConfigPane : public InstallerPane {
    Q_OBJECT
    // Connected to the controls of the same name once the form is set up.
    Q_PROPERTY(ComboBox* PrinterIP READ PrinterIP WRITE setPrinterIP)
    Q_PROPERTY(RadioMatrix* radiobtnPrinterType READ radiobtnPrinterType WRITE setRadiobtnPrinterType)
    Q_PROPERTY(QGroupBox* PrinterIPInfoBox READ PrinterIPInfoBox WRITE setPrinterIPInfoBox)
    Q_PROPERTY(ProgressIndicator* Progress READ Progress WRITE setProgress)
    Q_PROPERTY(TextField* IPAddressText READ IPAddressText WRITE setIPAddressText)
    Q_PROPERTY(QGroupBox* PrinterModelBox READ PrinterModelBox WRITE setPrinterModelBox)
    Q_PROPERTY(QGroupBox* PrinterIPBox READ PrinterIPBox WRITE setPrinterIPBox)
    Q_PROPERTY(RadioMatrix* radiobtnPrinterModel READ radiobtnPrinterModel WRITE setRadiobtnPrinterModel)
    Q_PROPERTY(QPushButton* RefreshButton READ RefreshButton WRITE setRefreshButton)

  public:
    /// Makes the content widget and connects its controls; awakeFromNib() is the caller's.
    explicit NetworkPrinterConfigPane(QObject* parent = nullptr);
    NetworkPrinterConfigPane(const NetworkPrinterConfigPane&) = delete;
    NetworkPrinterConfigPane& operator=(const NetworkPrinterConfigPane&) = delete;

    /// Ends a discovery that is under way, which takes a second at most.
    ~NetworkPrinterConfigPane() override;

    // The installer's callbacks (see InstallerPane).
    [[nodiscard]] QString title() const override;
    void awakeFromNib() override;
    void didEnterPane(InstallerDirection direction) override;
    [[nodiscard]] bool shouldExitPane(InstallerDirection direction) override;

    // Notifications and actions of the controls.
    void ComboBoxGotFocus();
    void didSelectIP();
    void PrinterTypeClicked();
    void didIPTextBoxKeyPress();
    void IPTextBoxGotFocus();
    void PrinterModelClicked();
    void RefreshButtonClicked();

    /// Shows a chosen item of the list in the model matrix and, while g_ChangeTextBoxText holds, its address
    /// in the text field. The first model name that occurs in `item` counts; without one the matrix stays as
    /// it is.
    void ChangePrinterModelRadioButton(const QString& item);

    /// Whether a line of the found list contains `address`; then g_selectedPrinterModel is that line's first
    /// five characters (which for a printer is the maker's word, not the model).
    [[nodiscard]] bool IsIPAvalaibleInList(const QString& address);

    /// Column 0 to 3 of the last model name that occurs in `model`; 0 when none does.
    [[nodiscard]] int PrinterModelToColumnNo(const QString& model) const;

    /// Whether the chosen model column agrees with the chosen printer; an alert has told the person when not.
    [[nodiscard]] bool ValidateSelectedIPAndModel();

    /// Body of the discovery thread; never on the main thread, which it waits for.
    void GetPrinterIPThread();

    /// Discovery and the filling of the list. False when the page is going away and nothing more may be done
    /// to it.
    bool GetPrinterIP();

    // The files (see SelectionFile).
    void RemoveFile();
    void writeToTextFile(const QString& line);
    [[nodiscard]] QString GetFileData(const QString& path);

    /// Warns when another version of the driver is installed. Nobody calls it: the warning is deliberately
    /// not shown.
    void CheckExistingVersion();

    // The properties. Reading or writing one is atomic, except for the three plain values, which are for the
    // main thread.
    [[nodiscard]] ComboBox* PrinterIP() const { return PrinterIP_.load(); }
    [[nodiscard]] RadioMatrix* radiobtnPrinterType() const { return radiobtnPrinterType_.load(); }
    [[nodiscard]] QGroupBox* PrinterIPInfoBox() const { return PrinterIPInfoBox_.load(); }
    [[nodiscard]] ProgressIndicator* Progress() const { return Progress_.load(); }
    [[nodiscard]] TextField* IPAddressText() const { return IPAddressText_.load(); }
    [[nodiscard]] QGroupBox* PrinterModelBox() const { return PrinterModelBox_.load(); }
    [[nodiscard]] QGroupBox* PrinterIPBox() const { return PrinterIPBox_.load(); }
    [[nodiscard]] RadioMatrix* radiobtnPrinterModel() const { return radiobtnPrinterModel_.load(); }
    /// The text that stands for the chosen printer's model during shouldExitPane, which clears it at its end.
    [[nodiscard]] QString g_selectedPrinterModel() const { return g_selectedPrinterModel_.load(); }
    [[nodiscard]] QPushButton* RefreshButton() const { return RefreshButton_.load(); }
    /// Whether an item of the list was chosen, so that its address goes into the text field.
    [[nodiscard]] bool g_ChangeTextBoxText() const { return g_ChangeTextBoxText_; }
    [[nodiscard]] bool g_deSelectCell() const { return g_deSelectCell_; }
    /// The model column, 0 to 3, last taken from a chosen item.
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
    /// Whether a list item is the invitation to type an address.
    [[nodiscard]] static bool isManualEntry(const QString& item);

    // Lifecycle
    void makeContent();
    void connectOutlets();
    void showAlert(const QString& informativeText);
    static void giveFocusTo(QWidget* control);

    // Selection
    void startDiscovery();
    void finishWithoutSearch();
    [[nodiscard]] bool changeControls(const std::function<void()>& changes);
    void showSearching();
    void fillList(const QStringList& lines);
    void allowChoosing();
    void chooseModelColumn(int column);

    // Exit
    [[nodiscard]] bool mayGoForward();
    void selectPrinterModel(const QString& model);
    [[nodiscard]] bool isAnythingGiven(const QString& item, const QString& address);
    [[nodiscard]] bool isAddressValid(const QString& address);
    [[nodiscard]] bool commitListChoice(const QString& item, const QString& model);
    [[nodiscard]] bool commitTypedAddress(const QString& address, const QString& model, qint64 column);
    void refuseInstalledPrinter();

    OwningReference<ComboBox> PrinterIP_;
    WeakReference<RadioMatrix> radiobtnPrinterType_;
    WeakReference<QGroupBox> PrinterIPInfoBox_;
    WeakReference<ProgressIndicator> Progress_;
    WeakReference<TextField> IPAddressText_;
    WeakReference<QGroupBox> PrinterModelBox_;
    WeakReference<QGroupBox> PrinterIPBox_;
    WeakReference<RadioMatrix> radiobtnPrinterModel_;
    WeakReference<const QString> g_selectedPrinterModel_;
    WeakReference<QPushButton> RefreshButton_;
    bool g_ChangeTextBoxText_ = false;
    bool g_deSelectCell_ = false;
    qint64 g_SelectedCell_ = 0;

    std::shared_ptr<const QString> modelOfDecision_;  // owner behind g_selectedPrinterModel
    MainThreadGate gate_;
    std::stop_source leaving_;
    std::thread discoveryThread_;
    bool discovering_ = false;
    bool focusFollowsSearch_ = false;
};
