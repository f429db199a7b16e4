// Construction and destruction, the installer's callbacks on entry, and file access.

#include "NetworkPrinterConfig/NetworkPrinterConfigPane.h"
#include "NetworkPrinterConfig/OnlyIntegerValueFormatter.h"
#include "NetworkPrinterConfig/Translations.h"
#include "NetworkPrinterConfig/controls/Messages.h"
#include "discovery/ModelCatalog.h"
#include "handoff/DiagnosticLog.h"
#include "handoff/SelectionFile.h"
#include "ui_NetworkPrinterConfigPane.h"

#include <QAbstractButton>
#include <QFileInfo>
#include <QMessageBox>
#include <QMetaObject>
#include <QMetaProperty>
#include <QSettings>

namespace {

void switchLayoutDebuggingOn() {
    const QString key = QStringLiteral("NSConstraintBasedLayoutVisualizeMutuallyExclusiveConstraints");
    QSettings settings;
    // Write only changes: writing to disk took longer than any other part of creating the page.
    if (!settings.value(key).toBool()) {
        settings.setValue(key, true);
    }
}

/// The model names, each with a mnemonic: the first digit of the number part that no earlier model uses.
QStringList modelLabels() {
    QStringList labels;
    QString taken;
    for (const CatalogRow& row : modelCatalog) {
        QString label = QString::fromLatin1(row.modelName);
        const QString number = QString::fromLatin1(row.numberPart);
        for (const QChar digit : number) {
            if (!taken.contains(digit)) {
                taken += digit;
                label.insert(label.size() - number.size() + number.indexOf(digit), QLatin1Char('&'));
                break;
            }
        }
        labels += label;
    }
    return labels;
}

/// Top to bottom. The matrices create their buttons late, which would put them last in the tab order.
void setTabOrder(const Ui::NetworkPrinterConfigPane& form) {
    QList<QWidget*> order;
    for (QAbstractButton* const cell : form.radiobtnPrinterType->buttons()) {
        order += cell;
    }
    order += {form.PrinterIP, form.RefreshButton, form.IPAddressText};
    for (QAbstractButton* const cell : form.radiobtnPrinterModel->buttons()) {
        order += cell;
    }
    for (qsizetype index = 1; index < order.size(); ++index) {
        QWidget::setTabOrder(order[index - 1], order[index]);
    }
}

/// A hidden control keeps its space, so that the layout doesn't move when it appears.
void keepPlaceWhenHidden(QWidget* control) {
    QSizePolicy policy = control->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    control->setSizePolicy(policy);
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
    connectOutlets();
    connect(radiobtnPrinterType(), &RadioMatrix::action, this, &NetworkPrinterConfigPane::PrinterTypeClicked);
    connect(radiobtnPrinterModel(), &RadioMatrix::action, this,
            &NetworkPrinterConfigPane::PrinterModelClicked);
    connect(RefreshButton(), &QPushButton::clicked, this, &NetworkPrinterConfigPane::RefreshButtonClicked);
}

NetworkPrinterConfigPane::~NetworkPrinterConfigPane() {
    // The order matters: block access to the controls, stop discovery at its next wait, then join.
    gate_.close();
    leaving_.request_stop();
    if (discoveryThread_.joinable()) {
        discoveryThread_.join();
    }
    delete contentWidget();  // Its controls may still emit signals to this class, such as editingFinished.
}

void NetworkPrinterConfigPane::makeContent() {
    loadTranslations();
    auto* const content = new QWidget;
    Ui::NetworkPrinterConfigPane form;
    form.setupUi(content);
    form.radiobtnPrinterModel->setColumns(static_cast<int>(modelCount));
    form.radiobtnPrinterModel->setCells(modelLabels());
    keepPlaceWhenHidden(form.PrinterIPInfoBox);
    keepPlaceWhenHidden(form.Progress);
    keepPlaceWhenHidden(form.searchingLabel);
    form.Progress->setCaption(form.searchingLabel);
    setTabOrder(form);
    setContentWidget(content);
}

/// Sets each control property to the control of the same name.
void NetworkPrinterConfigPane::connectOutlets() {
    const QMetaObject& description = staticMetaObject;
    for (int index = description.propertyOffset(); index < description.propertyCount(); ++index) {
        const QMetaProperty property = description.property(index);
        auto* const control = contentWidget()->findChild<QWidget*>(QString::fromLatin1(property.name()));
        if (control != nullptr) {
            property.write(this, QVariant::fromValue(control));
        }
    }
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

void NetworkPrinterConfigPane::RemoveFile() {
    ::RemoveFile();
}

void NetworkPrinterConfigPane::writeToTextFile(const QString& line) {
    ::writeToTextFile(line);
}

QString NetworkPrinterConfigPane::GetFileData(const QString& path) {
    return ::GetFileData(path);
}
