// Starts discovery, fills the list and follows the user's selection.

#include "NetworkPrinterConfig/NetworkPrinterConfigPane.h"
#include "NetworkPrinterConfig/containsCategory.h"
#include "NetworkPrinterConfig/controls/Messages.h"
#include "discovery/ModelCatalog.h"
#include "discovery/PrinterDiscovery.h"
#include "handoff/DiagnosticLog.h"
#include "platform/StringFormat.h"
#include "platform/SystemLog.h"

#include <memory>
#include <system_error>

namespace {

/// Called for each entry of the printer list, in order, before the entries are joined.
using EntryVisitor = void (*)(const QString& entry);

/// The printer list as lines: its entries joined and split at line feeds, so the last line is empty.
QStringList listLines(EntryVisitor visit) {
    const std::shared_ptr<QStringList> entries = g_PrinterList;
    QString joined;
    if (entries) {
        for (const QString& entry : *entries) {
            visit(entry);
            joined += entry;
        }
    }
    return joined.split(QLatin1Char('\n'));
}

}  // namespace

bool NetworkPrinterConfigPane::isManualEntry(const QString& item) {
    return item.startsWith(QStringLiteral("Enter"));
}

void NetworkPrinterConfigPane::PrinterTypeClicked() {
    const int row = ask(radiobtnPrinterType(), &RadioMatrix::selectedRow);
    systemLog(u"PrinterTypeClicked %@", {row});
    tDebugPrint("PrinterTypeClicked %d\n", row);
    if (row != networkTypeRow) {
        RemoveFile();
        tell(PrinterIPInfoBox(), &QWidget::setHidden, true);
        return;
    }
    tell(PrinterIPInfoBox(), &QWidget::setHidden, false);
    tell(RefreshButton(), &QWidget::setEnabled, false);
    tell(radiobtnPrinterModel(), &QWidget::setEnabled, false);
    tell(PrinterIP(), &QWidget::setEnabled, false);
    setNextEnabled(false);
    setPreviousEnabled(false);
    tell(IPAddressText(), &QWidget::setEnabled, false);
    tell(IPAddressText(), &TextField::setEditable, false);
    tell(radiobtnPrinterType(), &QWidget::setEnabled, false);
    tell(IPAddressText(), &TextField::setStringValue, QString());
    startDiscovery();
}

void NetworkPrinterConfigPane::RefreshButtonClicked() {
    tDebugPrint("RefreshButtonClicked\n");
    tell(RefreshButton(), &QWidget::setEnabled, false);
    tell(radiobtnPrinterModel(), &QWidget::setEnabled, false);
    tell(PrinterIP(), &QWidget::setEnabled, false);
    tell(IPAddressText(), &TextField::setStringValue, QString());
    setNextEnabled(false);
    setPreviousEnabled(false);
    tell(IPAddressText(), &QWidget::setEnabled, false);
    tell(IPAddressText(), &TextField::setEditable, false);
    tell(radiobtnPrinterType(), &QWidget::setEnabled, false);
    startDiscovery();
}

void NetworkPrinterConfigPane::startDiscovery() {
    // The disabled controls prevent a second search. Joining a running one here would deadlock.
    if (discovering_) {
        return;
    }
    discovering_ = true;
    discoveryThread_ = std::jthread();  // Joins the previous search, which has finished.
    try {
        discoveryThread_ = std::jthread(&NetworkPrinterConfigPane::GetPrinterIPThread, this);
    } catch (const std::system_error& error) {
        systemLog(u"The search for printers can't be started: %@", {QString::fromLocal8Bit(error.what())});
        // As after a search that found nothing; the user can still type an address.
        resetPrinterList();
        showSearching();
        fillList(listLines([](const QString& /*entry*/) {}));
        allowChoosing();
    }
}

/// Runs a group of control changes on the main thread, in one repaint, and waits for it. False if the page is
/// being destroyed: the changes were not made, and the caller must return without touching the page.
bool NetworkPrinterConfigPane::changeControls(const std::function<void()>& changes) {
    return gate_.runAndWait([this, &changes] {
        tell(contentWidget(), &QWidget::setUpdatesEnabled, false);
        changes();
        tell(contentWidget(), &QWidget::setUpdatesEnabled, true);
    });
}

void NetworkPrinterConfigPane::GetPrinterIPThread() {
    tDebugPrint("GetPrinterIPThread\n");
    if (!GetPrinterIP()) {
        return;
    }
    (void)changeControls([this] { allowChoosing(); });
}

bool NetworkPrinterConfigPane::GetPrinterIP() {
    tDebugPrint("GetPrinterIP\n");
    if (!changeControls([this] { showSearching(); })) {
        return false;
    }
    tDebugPrint("Before GetTovikQuazelPrinters\n");
    GetTovikQuazelPrinters(leaving_.get_token());
    tDebugPrint("After GetTovikQuazelPrinters\n");
    tDebugPrint("Total Printer Count is %d\n", g_PrinterList ? static_cast<int>(g_PrinterList->count()) : 0);
    const QStringList lines = listLines(
        [](const QString& entry) { tDebugPrint("Found an Item: %s\n", UTF8String(entry).constData()); });
    return changeControls([this, &lines] { fillList(lines); });
}

void NetworkPrinterConfigPane::showSearching() {
    tell(Progress(), &QWidget::setHidden, false);
    tell(Progress(), &ProgressIndicator::startAnimation);
    // The accessible name tells screen reader users about the search. The bar takes the focus because the
    // control that had it is disabled now.
    tell(Progress(), &QWidget::setAccessibleName, tr("Searching for printers"));
    giveFocusTo(Progress());
    tell(PrinterIP(), &ComboBox::removeAllItems);
    tell(PrinterIP(), &ComboBox::addItemWithObjectValue, QStringLiteral("Enter IP Address Manually"));
    tell(PrinterIP(), &ComboBox::selectItemAtIndex, 0);  // Calls didSelectIP, as does the one in fillList.
    tell(radiobtnPrinterModel(), &QWidget::setEnabled, false);
}

void NetworkPrinterConfigPane::fillList(const QStringList& lines) {
    tell(PrinterIP(), &ComboBox::removeAllItems);
    QStringList items = lines;
    items.removeAll(QString());
    tell(PrinterIP(), &ComboBox::addItemsWithObjectValues, items);
    systemLog(u"Array Count is %@", {lines.count()});
    if (lines.count() > 1) {
        tell(PrinterIP(), &ComboBox::selectItemAtIndex, 0);
    }
    tell(Progress(), &ProgressIndicator::stopAnimation);
    const qsizetype printers = items.isEmpty() ? 0 : items.count() - 1;
    tell(Progress(), &QWidget::setAccessibleName, tr("Search finished. Printers found: %1").arg(printers));
    // Not hasFocus(), which is false while another window is active.
    focusFollowsSearch_ = Progress() != nullptr && Progress()->window()->focusWidget() == Progress();
    tell(Progress(), &QWidget::setHidden, true);
}

/// The model matrix stays as didSelectIP left it.
void NetworkPrinterConfigPane::allowChoosing() {
    tell(RefreshButton(), &QWidget::setEnabled, true);
    tell(PrinterIP(), &QWidget::setEnabled, true);
    setNextEnabled(true);
    tell(IPAddressText(), &QWidget::setEnabled, true);
    tell(radiobtnPrinterType(), &QWidget::setEnabled, true);
    tell(IPAddressText(), &TextField::setEditable, true);
    setPreviousEnabled(true);
    discovering_ = false;
    if (focusFollowsSearch_) {
        giveFocusTo(PrinterIP());  // Unless the user has moved the focus meanwhile.
    }
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
