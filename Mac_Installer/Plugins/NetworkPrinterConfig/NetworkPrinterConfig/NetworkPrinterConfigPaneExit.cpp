// The decision whether the person may leave the page, and the hand-off of the choice.
//
// The numbers in the "Line No" records are fixed: support staff read from them which way the decision took.

#include "NetworkPrinterConfig/Beep.h"
#include "NetworkPrinterConfig/IPAddressTextValidator.h"
#include "NetworkPrinterConfig/NetworkPrinterConfigPane.h"
#include "NetworkPrinterConfig/containsCategory.h"
#include "NetworkPrinterConfig/controls/Messages.h"
#include "discovery/InstalledPrinters.h"
#include "discovery/ModelCatalog.h"
#include "handoff/DiagnosticLog.h"
#include "platform/StringFormat.h"
#include "platform/SystemLog.h"

#include <QGuiApplication>

namespace {

/// The catalog row of a model column, or null outside 0 to 3.
const CatalogRow* rowOfColumn(qint64 column) {
    return column >= 0 && column < static_cast<qint64>(modelCount)
               ? &modelCatalog[static_cast<std::size_t>(column)]
               : nullptr;
}

/// The model to hand on: that of the chosen column, but an item of the first model decides by itself.
QString modelOf(qint64 column, const QString& item) {
    tDebugPrint("Line No %d\n", 1037);
    const CatalogRow* const row = rowOfColumn(column);
    QString model = row == nullptr ? QString() : QString::fromLatin1(row->modelName);
    tDebugPrint("Line No %d\n", 1047);
    // Only this one model is looked for, and that is deliberate: the others are never taken from the item.
    const QString firstModel = QString::fromLatin1(modelCatalog[0].modelName);
    if (containsString(item, firstModel)) {
        tDebugPrint("Line No %d\n", 1051);
        model = firstModel;
    }
    tDebugPrint("Line No %d\n", 1058);
    return model;
}

/// Asks the print service, which may take seconds.
void queryPrintService() {
    QGuiApplication::setOverrideCursor(Qt::BusyCursor);
    GetInstalledPrinterList();
    QGuiApplication::restoreOverrideCursor();
}

/// The name of the queue that the later steps of the installation make for a network printer.
QString queueKey(const QString& model, const QString& address) {
    return stringWithFormat(u"Tovik-%@-Ethernet-Printer-IP=%@", {model, address});
}

}  // namespace

bool NetworkPrinterConfigPane::shouldExitPane(InstallerDirection direction) {
    tDebugPrint("shouldExitPane\n");
    const bool mayLeave = direction != InstallerDirectionForward || mayGoForward();
    selectPrinterModel({});
    if (mayLeave) {
        tDebugPrint("shouldExitPane  :: Return\n");
    }
    return mayLeave;
}

void NetworkPrinterConfigPane::selectPrinterModel(const QString& model) {
    modelOfDecision_ = model.isNull() ? nullptr : std::make_shared<const QString>(model);
    setG_selectedPrinterModel(modelOfDecision_);
}

bool NetworkPrinterConfigPane::mayGoForward() {
    tDebugPrint("shouldExitPane  :: InstallerDirectionForward\n");
    const int row = ask(radiobtnPrinterType(), &RadioMatrix::selectedRow);
    const qint64 column = ask(radiobtnPrinterModel(), &RadioMatrix::selectedColumn);
    if (row != networkTypeRow) {
        return true;
    }
    tDebugPrint("Row Value is Here\n");
    const QString item = ask(PrinterIP(), &ComboBox::objectValueOfSelectedItem);
    tDebugPrint("Line No %d\n", 981);
    tDebugPrint(" Value is Here %s\n", UTF8String(item).c_str());
    const QString address = ask(IPAddressText(), &TextField::stringValue);
    tDebugPrint("Line No %d\n", 989);
    tDebugPrint(" Value IP is Here %s\n", UTF8String(address).c_str());

    if (!isAnythingGiven(item, address) || !isAddressValid(address)) {
        return false;
    }
    if (!ValidateSelectedIPAndModel()) {
        tDebugPrint("Line No %d\n", 1033);
        return false;
    }
    const QString model = modelOf(column, item);
    tDebugPrint("Validating\n");
    if (!item.isNull() && !isManualEntry(item)) {
        return commitListChoice(item, model);
    }
    return commitTypedAddress(address, model, column);
}

/// Presence test: a printer was chosen from the list, or an address was typed or filled in.
bool NetworkPrinterConfigPane::isAnythingGiven(const QString& item, const QString& address) {
    const bool isPrinterChosen = !item.isEmpty() && !isManualEntry(item);
    if (isPrinterChosen || !address.isEmpty()) {
        return true;
    }
    tDebugPrint("Line No %d\n", 1000);
    showAlert(QStringLiteral("Please choose Printer IP or Enter the IP Address to configure"));
    giveFocusTo(IPAddressText());
    tDebugPrint("Line No %d\n", 1007);
    return false;
}

bool NetworkPrinterConfigPane::isAddressValid(const QString& address) {
    tDebugPrint("Line No %d\n", 1014);
    if (IPAddressTextValidator().validate(address)) {
        return true;
    }
    beep();
    showAlert(QStringLiteral("Invalid IP"));
    tell(IPAddressText(), &TextField::setStringValue, QString());
    giveFocusTo(IPAddressText());
    tDebugPrint("Line No %d\n", 1026);
    return false;
}

bool NetworkPrinterConfigPane::ValidateSelectedIPAndModel() {
    bool result = true;
    const qint64 column = ask(radiobtnPrinterModel(), &RadioMatrix::selectedColumn);
    const QString address = ask(IPAddressText(), &TextField::stringValue);
    const QString item = ask(PrinterIP(), &ComboBox::objectValueOfSelectedItem);

    QString model;
    if (isManualEntry(item)) {
        systemLog(u"Getting IP Model for the IP %@", {address});
        (void)IsIPAvalaibleInList(address);
        // The maker's word of the matching line when the address is in the list, otherwise what was there
        // before.
        model = g_selectedPrinterModel();
    } else {
        model = item.split(QLatin1Char(' ')).value(1);
    }
    selectPrinterModel(model);
    systemLog(u"ValidateSelectedIPAndModel is %@", {model});
    if (model.isNull()) {
        systemLog(u"Empty String Return");
        return true;
    }
    if (IsIPAvalaibleInList(address)) {
        const int modelColumn = PrinterModelToColumnNo(model);
        systemLog(u"Model  Value is %@", {modelColumn});
        if (column != modelColumn) {
            showAlert(QStringLiteral("Selected Printer model is ") + model);
            setG_ChangeTextBoxText(false);
            setG_deSelectCell(true);
            result = false;
        }
    }
    systemLog(u"ValidateSelectedIPAndModel Return %@ ", {result});
    return result;
}

/// A printer of the list: its address is taken from the item, not from the text field.
bool NetworkPrinterConfigPane::commitListChoice(const QString& item, const QString& model) {
    tDebugPrint("Line No %d\n", 1066);
    const QString address = item.mid(item.indexOf(QLatin1Char('@')) + 1);
    const QString line = stringWithFormat(u"%@ %@", {model, address});
    tDebugPrint("###IP2Configure %s\n", UTF8String(line).c_str());
    g_ModelName = queueKey(model, address);
    tDebugPrint("####Line No %d\n", 1083);
    queryPrintService();
    tDebugPrint("###Line No %d\n", 1086);
    if (g_PrinterAlreadyInstalled != 0) {
        refuseInstalledPrinter();
        return false;
    }
    tDebugPrint("@@@@Line No %d\n", 1097);
    writeToTextFile(line);
    tDebugPrint("@@@@Line No %d\n", 1100);
    return true;
}

/// A typed address. Without a model column there is no line, and writing none leaves the file as it is.
bool NetworkPrinterConfigPane::commitTypedAddress(const QString& address, const QString& model,
                                                  qint64 column) {
    if (address.isNull()) {
        return true;
    }
    const CatalogRow* const row = rowOfColumn(column);
    const QString line = row == nullptr ? QString() : QString::fromLatin1(row->modelNameAndBlank) + address;
    g_ModelName = queueKey(model, address);
    tDebugPrint("!!!Line No %d\n", 1121);
    queryPrintService();
    tDebugPrint("!!!!Line No %d\n", 1124);
    if (g_PrinterAlreadyInstalled != 0) {
        refuseInstalledPrinter();
        return false;
    }
    tDebugPrint("---Line No %d\n", 1135);
    writeToTextFile(line);
    tDebugPrint("--Line No %d\n", 1138);
    return true;
}

void NetworkPrinterConfigPane::refuseInstalledPrinter() {
    showAlert(QStringLiteral(
        "A Printer with this IP Address is already Installed, Please choose another Ethernet Printer"));
    giveFocusTo(PrinterIP());
}
