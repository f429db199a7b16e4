// Follows the user's selection: the list, the text field and the model.

#include "NetworkPrinterConfig/NetworkPrinterConfigPane.h"
#include "NetworkPrinterConfig/containsCategory.h"
#include "NetworkPrinterConfig/controls/NullableControl.h"
#include "discovery/ModelCatalog.h"
#include "handoff/DiagnosticLog.h"
#include "platform/StringFormat.h"
#include "platform/SystemLog.h"

bool NetworkPrinterConfigPane::isManualEntry(const QString& item) {
    return item.startsWith(QStringLiteral("Enter"));
}

void NetworkPrinterConfigPane::didSelectIP() {
    tDebugPrint("didSelectIP Event Called\n");
    const QString selected = ask(PrinterIP(), &ComboBox::objectValueOfSelectedItem);
    tDebugPrint("didSelectIP modal is %s\n", UTF8String(selected).constData());
    if (selected.isNull()) {
        return;
    }
    if (selected.isEmpty()) {
        tDebugPrint("IP String is equal to NULL\n");
        tell(IPAddressText(), &TextField::setEditable, false);
        tell(IPAddressText(), &QWidget::setEnabled, false);
    } else if (isManualEntry(selected)) {
        tell(IPAddressText(), &TextField::setStringValue, QString());
        tell(IPAddressText(), &TextField::setEditable, true);
        tell(IPAddressText(), &QWidget::setEnabled, true);
        tell(radiobtnPrinterModel(), &QWidget::setEnabled, true);
        chooseModelColumn(0);
    } else {
        tell(IPAddressText(), &TextField::setEditable, false);
        tell(IPAddressText(), &QWidget::setEnabled, false);
        tell(radiobtnPrinterModel(), &QWidget::setEnabled, false);
        setG_ChangeTextBoxText(true);
        ChangePrinterModelRadioButton(selected);
    }
}

void NetworkPrinterConfigPane::chooseModelColumn(int column) {
    tell(radiobtnPrinterModel(), &RadioMatrix::selectCellAtRow, 0, column);
    tell(radiobtnPrinterModel(), &RadioMatrix::setState, 1, 0, column);
}

void NetworkPrinterConfigPane::ChangePrinterModelRadioButton(const QString& item) {
    systemLog(u"ChangePrinterModelRadioButton %@", {item});
    tDebugPrint("ChangePrinterModelRadioButton %s\n", UTF8String(item).constData());
    if (g_ChangeTextBoxText()) {
        const QString address = item.mid(item.indexOf(QLatin1Char('@')) + 1);
        tell(IPAddressText(), &TextField::setStringValue, address);
        tDebugPrint("%s", UTF8String(stringWithFormat(u"$$$$$%@\n", {address})).constData());
    }
    for (std::size_t column = 0; column < modelCount; ++column) {
        if (containsString(item, QString::fromLatin1(modelCatalog[column].modelName))) {
            chooseModelColumn(static_cast<int>(column));
            setG_SelectedCell(static_cast<qint64>(column));
            return;
        }
    }
}

int NetworkPrinterConfigPane::PrinterModelToColumnNo(const QString& model) const {
    systemLog(u"PrinterModelToColumnNo is %@", {model});
    int column = 0;
    // The last match wins, not the first.
    for (std::size_t candidate = 0; candidate < modelCount; ++candidate) {
        if (containsString(model, QString::fromLatin1(modelCatalog[candidate].modelName))) {
            column = static_cast<int>(candidate);
        }
    }
    systemLog(u"PrinterModelToColumnNo Return %@", {column});
    return column;
}

bool NetworkPrinterConfigPane::IsIPAvalaibleInList(const QString& address) {
    constexpr qsizetype wordLength = 5;
    systemLog(u"~~IsIPAvalaibleInList %@", {address});
    tDebugPrint("IsIPAvalaibleInList\n");
    const QStringList lines =
        listLines([](const QString& entry) { systemLog(u"Found an Item: %@", {entry}); });
    bool found = false;
    for (const QString& line : lines) {
        systemLog(u"IsIPAvalaibleInList IP Is %@", {line});
        found = containsString(line, address);
        if (found) {
            selectPrinterModel(line.left(wordLength));
            break;
        }
    }
    systemLog(u"IsIPAvalaibleInList Return%@", {found});
    return found;
}

void NetworkPrinterConfigPane::IPTextBoxGotFocus() {
    tell(radiobtnPrinterModel(), &QWidget::setEnabled, true);
}

void NetworkPrinterConfigPane::PrinterModelClicked() {
    const int column = ask(radiobtnPrinterModel(), &RadioMatrix::selectedColumn);
    systemLog(u"Selected Model Item is %@", {column});
}

// Intentionally empty.

void NetworkPrinterConfigPane::ComboBoxGotFocus() {}

void NetworkPrinterConfigPane::didIPTextBoxKeyPress() {}
