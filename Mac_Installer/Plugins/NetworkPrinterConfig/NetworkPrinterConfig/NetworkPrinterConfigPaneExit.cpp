// Validation when the user leaves the page, and the hand-off of the choice.
//
// The numbers in the "Line No" records are fixed: support staff use them to trace the decision.

#include "NetworkPrinterConfig/Beep.h"
#include "NetworkPrinterConfig/IPAddressTextValidator.h"
#include "NetworkPrinterConfig/NetworkPrinterConfigPane.h"
#include "NetworkPrinterConfig/containsCategory.h"
#include "NetworkPrinterConfig/controls/NullableControl.h"
#include "discovery/InstalledPrinters.h"
#include "discovery/ModelCatalog.h"
#include "handoff/DiagnosticLog.h"
#include "platform/StringFormat.h"
#include "platform/SystemLog.h"

#include <QGuiApplication>

namespace {

/// The catalog row of a model column; null outside 0 to 3.
const CatalogRow* rowOfColumn(qint64 column) {
    return column >= 0 && column < static_cast<qint64>(modelCount)
               ? &modelCatalog[static_cast<std::size_t>(column)]
               : nullptr;
}

/// The model to hand over: that of the selected column, unless the item names the first model.
QString modelOf(qint64 column, const QString& item) {
    tDebugPrint("Line No %d\n", 1037);
    const CatalogRow* const row = rowOfColumn(column);
    QString model = row == nullptr ? QString() : QString::fromLatin1(row->modelName);
    tDebugPrint("Line No %d\n", 1047);
    // Deliberately only the first model: the others are never taken from the item.
    const QString firstModel = QString::fromLatin1(modelCatalog[0].modelName);
    if (containsString(item, firstModel)) {
        tDebugPrint("Line No %d\n", 1051);
        model = firstModel;
    }
    tDebugPrint("Line No %d\n", 1058);
    return model;
}

}  // namespace

bool NetworkPrinterConfigPane::shouldExitPane(InstallerDirection direction) {
    tDebugPrint("shouldExitPane\n");
    const bool mayLeave = direction != InstallerDirectionForward || mayGoForward();
    modelOfDecision_.reset();
    if (mayLeave) {
        tDebugPrint("shouldExitPane  :: Return\n");
    }
    return mayLeave;
}

bool NetworkPrinterConfigPane::hasChoice() const {
    return ask(radiobtnPrinterType(), &RadioMatrix::selectedRow) == networkTypeRow;
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
    tDebugPrint(" Value is Here %s\n", UTF8String(item).constData());
    const QString address = ask(IPAddressText(), &TextField::stringValue);
    tDebugPrint("Line No %d\n", 989);
    tDebugPrint(" Value IP is Here %s\n", UTF8String(address).constData());

    if (!requireChoice(item, address) || !requireValidAddress(address)) {
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

/// A printer must be chosen from the list, or the address field filled.
bool NetworkPrinterConfigPane::requireChoice(const QString& item, const QString& address) {
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

bool NetworkPrinterConfigPane::requireValidAddress(const QString& address) {
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
        // The manufacturer from the matching line if the address is in the list, otherwise the previous
        // value.
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

/// A printer from the list: the address comes from the item, not from the text field.
bool NetworkPrinterConfigPane::commitListChoice(const QString& item, const QString& model) {
    tDebugPrint("Line No %d\n", 1066);
    const QString address = item.mid(item.indexOf(QLatin1Char('@')) + 1);
    const QString line = stringWithFormat(u"%@ %@", {model, address});
    tDebugPrint("###IP2Configure %s\n", UTF8String(line).constData());
    return commit(model, address, line,
                  {"####Line No 1083\n", "###Line No 1086\n", "@@@@Line No 1097\n", "@@@@Line No 1100\n"});
}

/// A typed address. Without a model column the line is null, and writing it leaves the file unchanged.
bool NetworkPrinterConfigPane::commitTypedAddress(const QString& address, const QString& model,
                                                  qint64 column) {
    if (address.isNull()) {
        return true;
    }
    const CatalogRow* const row = rowOfColumn(column);
    const QString line = row == nullptr ? QString() : QString::fromLatin1(row->modelNameAndBlank) + address;
    return commit(model, address, line,
                  {"!!!Line No 1121\n", "!!!!Line No 1124\n", "---Line No 1135\n", "--Line No 1138\n"});
}

/// Writes `line`, unless a print queue exists already under the name that the later installation steps would
/// give it.
bool NetworkPrinterConfigPane::commit(const QString& model, const QString& address, const QString& line,
                                      const CommitRecords& records) {
    g_ModelName = stringWithFormat(u"Tovik-%@-Ethernet-Printer-IP=%@", {model, address});
    tDebugPrint("%s", records.asking);
    QGuiApplication::setOverrideCursor(Qt::BusyCursor);  // It may take several seconds.
    GetInstalledPrinterList();
    QGuiApplication::restoreOverrideCursor();
    tDebugPrint("%s", records.asked);
    if (g_PrinterAlreadyInstalled != 0) {
        showAlert(QStringLiteral(
            "A Printer with this IP Address is already Installed, Please choose another Ethernet Printer"));
        giveFocusTo(PrinterIP());
        return false;
    }
    tDebugPrint("%s", records.writing);
    writeToTextFile(line);
    tDebugPrint("%s", records.written);
    return true;
}
