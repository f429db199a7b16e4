// Runs discovery on its thread, shows it on the page and fills the list.

#include "NetworkPrinterConfig/NetworkPrinterConfigPane.h"
#include "NetworkPrinterConfig/controls/NullableControl.h"
#include "discovery/PrinterDiscovery.h"
#include "handoff/DiagnosticLog.h"
#include "platform/StringFormat.h"
#include "platform/SystemLog.h"

#include <QAccessible>
#include <QLabel>

#include <memory>
#include <system_error>

QStringList NetworkPrinterConfigPane::listLines(void (*visit)(const QString& entry)) {
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
    tell(searchStatus_.data(), &QStackedWidget::setCurrentIndex, 0);
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
    // Not hasFocus(), which is false while another window is active.
    focusFollowsSearch_ = Progress() != nullptr && Progress()->window()->focusWidget() == Progress();
    if (focusFollowsSearch_) {
        // Or hiding it would pass the focus on, and screen readers would announce that.
        Progress()->clearFocus();
    }
    tell(Progress(), &QWidget::setHidden, true);
    showResult(items.isEmpty() ? 0 : items.count() - 1);
}

void NetworkPrinterConfigPane::showResult(qsizetype printers) {
    if (!searchStatus_) {
        return;
    }
    searchStatus_->setCurrentIndex(printers == 0 ? 1 : 2);
    auto* const result = static_cast<QLabel*>(searchStatus_->currentWidget());
    if (printers != 0) {
        result->setText(printers == 1 ? tr("1 printer found. Choose it in the list.")
                                      : tr("%1 printers found. Choose one in the list.").arg(printers));
    }
    tell(PrinterIP(), &QWidget::setAccessibleDescription, result->text());
#if QT_VERSION >= QT_VERSION_CHECK(6, 8, 0)
    // The description is read with the list, which gets the focus; unless another control has it.
    QAccessibleAnnouncementEvent announcement(result, result->text());
    QAccessible::updateAccessibility(&announcement);
#endif
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
