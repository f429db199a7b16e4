// Construction, entry, destruction, and alerts.

#include "NetworkPrinterConfig/NetworkPrinterConfigPane.h"
#include "NetworkPrinterConfig/OnlyIntegerValueFormatter.h"
#include "NetworkPrinterConfig/Translations.h"
#include "NetworkPrinterConfig/controls/NullableControl.h"
#include "discovery/ModelCatalog.h"
#include "handoff/DiagnosticLog.h"
#include "ui_NetworkPrinterConfigPane.h"

#include <QAbstractButton>
#include <QCoreApplication>
#include <QFileInfo>
#include <QMessageBox>

namespace {

/// A user default that only debuggers read, so it is kept in memory and no settings file is written.
void switchLayoutDebuggingOn() {
    QCoreApplication::instance()->setProperty("NSConstraintBasedLayoutVisualizeMutuallyExclusiveConstraints",
                                              true);
}

/// The model names, each with a mnemonic: the first digit of the number part that no earlier model uses.
QStringList modelLabels() {
    QStringList labels;
    QString taken;
    for (const CatalogRow& row : modelCatalog) {
        QString label = QString::fromLatin1(row.modelName);
        qsizetype at = label.indexOf(QLatin1String(row.numberPart));
        while (at < label.size() - 1 && taken.contains(label.at(at))) {
            ++at;
        }
        taken += label.at(at);
        labels += label.insert(at, QLatin1Char('&'));
    }
    return labels;
}

/// Runs a modal alert with the button "Ok" over the window of `parent` until it is closed by any means.
void runAlert(QWidget* parent, const QString& messageText, const QString& informativeText) {
    QMessageBox alert(QMessageBox::Warning, messageText, messageText, QMessageBox::NoButton, parent);
    alert.setTextFormat(Qt::PlainText);
    alert.setInformativeText(informativeText);
    // Some styles don't make the message bold.
    alert.setStyleSheet(QStringLiteral("#qt_msgbox_label { font-weight: bold }"));
    alert.setDefaultButton(alert.addButton(QStringLiteral("Ok"), QMessageBox::AcceptRole));
    alert.exec();
}

}  // namespace

NetworkPrinterConfigPane::NetworkPrinterConfigPane(QObject* parent) : InstallerPane(parent) {
    makeContent();
    connect(radiobtnPrinterType(), &RadioMatrix::action, this, &NetworkPrinterConfigPane::PrinterTypeClicked);
    connect(radiobtnPrinterModel(), &RadioMatrix::action, this,
            &NetworkPrinterConfigPane::PrinterModelClicked);
    connect(RefreshButton(), &QPushButton::clicked, this, &NetworkPrinterConfigPane::RefreshButtonClicked);
}

NetworkPrinterConfigPane::~NetworkPrinterConfigPane() {
    // The order matters: block access to the controls, stop discovery at its next wait, then join.
    gate_.close();
    leaving_.request_stop();
    discoveryThread_ = std::jthread();
    delete PrinterIP();
    delete contentWidget();  // Its controls may still emit signals to this class, such as editingFinished.
}

void NetworkPrinterConfigPane::makeContent() {
    loadTranslations();
    auto* const content = new QWidget;
    Ui::NetworkPrinterConfigPane form;
    form.setupUi(content);
    form.radiobtnPrinterModel->setColumns(static_cast<int>(modelCount));
    form.radiobtnPrinterModel->setCells(modelLabels());
    // A hidden control keeps its space, so that the layout doesn't move when it appears.
    for (QWidget* const control : std::initializer_list<QWidget*>{form.PrinterIPInfoBox, form.Progress}) {
        QSizePolicy policy = control->sizePolicy();
        policy.setRetainSizeWhenHidden(true);
        control->setSizePolicy(policy);
    }
    // The form's tab order, but after the connection types, whose buttons are created after them.
    QWidget::setTabOrder(form.radiobtnPrinterType->cellAt(1, 0), form.PrinterIP);
    QWidget::setTabOrder(form.PrinterIP, form.RefreshButton);
    QWidget::setTabOrder(form.RefreshButton, form.IPAddressText);
    setContentWidget(content);

    setPrinterIP(form.PrinterIP);
    setRadiobtnPrinterType(form.radiobtnPrinterType);
    setPrinterIPInfoBox(form.PrinterIPInfoBox);
    setProgress(form.Progress);
    setIPAddressText(form.IPAddressText);
    setPrinterModelBox(form.PrinterModelBox);
    setPrinterIPBox(form.PrinterIPBox);
    setRadiobtnPrinterModel(form.radiobtnPrinterModel);
    setRefreshButton(form.RefreshButton);
    searchStatus_ = form.searchStatus;
}

QString NetworkPrinterConfigPane::title() const {
    return translatedText("PaneTitle");
}

void NetworkPrinterConfigPane::awakeFromNib() {
    InstallerPane::awakeFromNib();
    tDebugPrint("Tovik Quazel Installer Initializing....\n");
    switchLayoutDebuggingOn();
    using Pane = NetworkPrinterConfigPane;
    if (ComboBox* const list = PrinterIP()) {
        connect(list, &ComboBox::selectionDidChange, this, &Pane::didSelectIP);
        connect(list, &ComboBox::willPopUp, this, &Pane::ComboBoxGotFocus);
    }
    if (TextField* const address = IPAddressText()) {
        // These connections make the page the field's delegate.
        connect(address, &TextField::didEndEditing, this, &Pane::didIPTextBoxKeyPress);
        connect(address, &TextField::didBeginEditing, this, &Pane::IPTextBoxGotFocus);
        address->setFormatter(new OnlyIntegerValueFormatter);
    }
    RemoveFile();
}

void NetworkPrinterConfigPane::didEnterPane(InstallerDirection direction) {
    tDebugPrint("didEnterPane\n");
    if (direction == InstallerDirectionForward) {
        switchLayoutDebuggingOn();
        tell(radiobtnPrinterType(), &RadioMatrix::selectCellAtRow, 0, 0);
        tell(PrinterIPInfoBox(), &QWidget::setHidden, true);
        tell(Progress(), &QWidget::setHidden, true);
        tell(IPAddressText(), &TextField::setEditable, false);
        tell(IPAddressText(), &QWidget::setEnabled, false);
        tell(radiobtnPrinterModel(), &QWidget::setEnabled, false);
        tell(radiobtnPrinterModel(), &RadioMatrix::selectCellAtRow, 0, 0);
        RemoveFile();
    }
    tDebugPrint("Return from didEnterPane\n");
}

void NetworkPrinterConfigPane::CheckExistingVersion() {
    const QString driver = QStringLiteral("/Library/Printers/Tovik_Quazel_Printer_Driver");
    const bool isInstalled = QFileInfo::exists(driver);
    const QString version = GetFileData(driver + QStringLiteral("/Version")).trimmed();
    if (!isInstalled || version == QStringLiteral("1.0.10.0")) {
        return;
    }
    runAlert(contentWidget(), QStringLiteral("Previous version found!"),
             QStringLiteral(
                 "Previous version of Tovik KV Printer Mac Driver has been found in this machine.\nThis "
                 "installation will uninstall the previous version and install the new version."));
}

/// All alerts of this page share this title, except CheckExistingVersion's.
void NetworkPrinterConfigPane::showAlert(const QString& informativeText) {
    runAlert(contentWidget(), QStringLiteral("Tovik KV Card Printer IP Configuration"), informativeText);
}

void NetworkPrinterConfigPane::giveFocusTo(QWidget* control) {
    if (control != nullptr) {
        control->setFocus(Qt::OtherFocusReason);
    }
}
