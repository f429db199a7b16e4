// A model of the page without widgets, threads or an event loop: the state of its controls, how each input
// changes it, and the resulting records, alerts and beeps.

#pragma once

#include "support/Fixtures.h"

#include <QDebug>
#include <QRegularExpression>

#include <arpa/inet.h>

#include <optional>

enum Button { Directly, Network, Refresh, Kv210, Kv260, Kv410, Kv460, GoBack, Continue };

constexpr int doubleClickInterval = 400;  // ms
constexpr int shortPause = 100;

struct PageModel {
    enum Step { Introduction, Page, Summary, Closed };

    qsizetype step = Introduction;
    qsizetype type = -1;
    bool isBoxShown = true;
    QStringList items;
    qsizetype selected = -1;
    QString address;
    bool isAddressEnabled = true;  // and editable
    bool areModelsEnabled = true;
    qsizetype column = -1;
    bool isSearching = false;  // disables type, list, Refresh, Continue and Go Back, and shows the progress
    bool changeText = false;
    bool deSelect = false;
    qsizetype selectedCell = 0;
    QString file;
    QString summary;
    QStringList effects;       // records, alerts and beeps of the last input, in order
    int sincePress = 0;        // ms since the last press of Continue or Go Back that counted
    bool isInstalled = false;  // whether the print service has the queue looked for

    /// Everything that is compared, on one line.
    [[nodiscard]] QString text() const {
        QString text;
        QDebug(&text).noquote() << "step" << step << "type" << type << "box" << isBoxShown << "list"
                                << selected << items << "address" << isAddressEnabled << address << "models"
                                << areModelsEnabled << column << "searching" << isSearching << "fields"
                                << changeText << deSelect << selectedCell << "file" << file << summary
                                << "effects" << effects.join(u'|');
        return text;
    }

    /// A press by a key, by the mouse (Key_unknown) or by assistive technology (no key).
    void press(Button button, std::optional<Qt::Key> key = {}) {
        const bool isModel = button >= Kv210 && button <= Kv460;
        if (isModel && isFormShown() && areModelsEnabled) {
            column = button - Kv210;
        }
        if (isModel || isSearching) {
            return;
        }
        if (button == Continue && isCounted(key)) {
            goForward();
        } else if (button == GoBack && step > Introduction && isCounted(key)) {
            --step;
            log(step == Introduction ? u"shouldExitPane|shouldExitPane  :: Return"_s
                                     : u"didEnterPane|Return from didEnterPane"_s);
        } else if (button == Refresh && isFormShown()) {
            log(u"RefreshButtonClicked"_s);
            startSearch();
        } else if (button <= Network && step == Page) {
            chooseType(button);
        }
    }

    void select(qsizetype index) {
        if (isFormShown() && !isSearching && index != selected && index >= 0 && index < items.size()) {
            didSelect(index);
        }
    }

    [[nodiscard]] bool isOperable(Button button) const {
        const bool isModel = button >= Kv210 && button <= Kv460;
        return !isSearching && (isModel             ? isFormShown() && areModelsEnabled
                                : button == Refresh ? isFormShown()
                                : button <= Network ? step == Page
                                                    : button == Continue || step > Introduction);
    }
    [[nodiscard]] bool isAddressEditable() const { return isFormShown() && isAddressEnabled; }

    /// The user edits the address to become `text`.
    void edit(const QString& text) {
        static const QRegularExpression allowed(u"^[0-9.]{0,15}$"_s);
        if (!isAddressEditable() || text == address) {
            return;
        }
        if (allowed.match(text).hasMatch()) {
            address = text;
            areModelsEnabled = true;
        } else {
            effects += u"beep"_s;
        }
    }

    void endSearch(const QStringList& printers) {
        items = QStringList{manualEntry} + printers;
        log(u"After GetTovikQuazelPrinters|Total Printer Count is %1"_s.arg(items.size()));
        log(u"Found an Item: "_s + items.join(u"||Found an Item: "_s) + u'|');
        didSelect(0);
        isSearching = false;
    }

  private:
    std::optional<Qt::Key> lastKey;  // of the last press that counted
    static inline const QString manualEntry = u"Enter IP Address Manually"_s;
    static inline const QStringList models{u"KV210"_s, u"KV260"_s, u"KV410"_s, u"KV460"_s};

    [[nodiscard]] bool isFormShown() const { return step == Page && isBoxShown; }
    [[nodiscard]] QString item() const { return items.value(selected); }
    [[nodiscard]] bool isManual() const { return item() == manualEntry; }
    [[nodiscard]] QString itemModel() const { return item().section(u' ', 1, 1); }

    /// Adds log records, separated by "|".
    void log(const QString& records) { effects += records.split(u'|'); }

    bool refuse(const QString& reason, const QStringList& records = {}) {
        effects += u"Tovik KV Card Printer IP Configuration|%1|Ok"_s.arg(reason);
        effects += records;
        return false;
    }

    /// False for the second press of a double press.
    [[nodiscard]] bool isCounted(std::optional<Qt::Key> key) {
        if (key && key == lastKey && sincePress < doubleClickInterval) {
            return false;
        }
        lastKey = key;
        sincePress = 0;
        return true;
    }

    void chooseType(int row) {
        type = row;
        log(u"PrinterTypeClicked %1"_s.arg(row));
        isBoxShown = row == 1;
        if (isBoxShown) {
            startSearch();
        } else {
            removeFile();
        }
    }

    /// Up to the point where discovery waits for printers.
    void startSearch() {
        log(u"GetPrinterIPThread|GetPrinterIP"_s);
        isSearching = true;
        items = QStringList{manualEntry};
        didSelect(0);
        areModelsEnabled = false;
        log(u"Before GetTovikQuazelPrinters"_s);
    }

    void didSelect(qsizetype index) {
        selected = index;
        log(u"didSelectIP Event Called|didSelectIP modal is "_s + item());
        isAddressEnabled = areModelsEnabled = isManual();
        address = isManual() ? QString() : item().section(u'@', 1);
        column = isManual() ? 0 : models.indexOf(itemModel());
        if (!isManual()) {
            log(u"ChangePrinterModelRadioButton %1|$$$$$%2"_s.arg(item(), address));
            changeText = true;
            selectedCell = column;
        }
    }

    void removeFile() {
        log(u"Inside RemoveFile|Return from RemoveFile"_s);
        file.clear();
    }

    void goForward() {
        if (step == Introduction) {
            enter();
        } else if (step >= Summary) {
            step = Closed;
        } else {
            log(u"shouldExitPane|shouldExitPane  :: InstallerDirectionForward"_s);
            if (type == 0 || mayContinue()) {
                log(u"shouldExitPane  :: Return"_s);
                step = Summary;
                summary = file;
            }
        }
    }

    void enter() {
        step = Page;
        log(u"didEnterPane"_s);
        type = column = 0;
        isBoxShown = isAddressEnabled = areModelsEnabled = false;
        removeFile();
        log(u"Return from didEnterPane"_s);
    }

    [[nodiscard]] bool mayContinue() {
        log(u"Row Value is Here|Line No 981| Value is Here %1|Line No 989| Value IP is Here %2"_s.arg(
            item(), address));
        if (isManual() && address.isEmpty()) {
            log(u"Line No 1000"_s);
            return refuse(u"Please choose Printer IP or Enter the IP Address to configure"_s,
                          {u"Line No 1007"_s});
        }
        log(u"Line No 1014"_s);
        in_addr parsed{};
        if (::inet_pton(AF_INET, qPrintable(address), &parsed) != 1) {
            address.clear();
            effects += u"beep"_s;
            return refuse(u"Invalid IP"_s, {u"Line No 1026"_s});
        }
        return isModelRight() && commit();
    }

    /// A typed address that occurs in the list yields the manufacturer, which maps to column 0.
    [[nodiscard]] bool isModelRight() {
        const bool isKnown = !items.filter(address).isEmpty();
        log(isManual() && isKnown ? u"IsIPAvalaibleInList|IsIPAvalaibleInList"_s : u"IsIPAvalaibleInList"_s);
        if (!isKnown || column == (isManual() ? 0 : models.indexOf(itemModel()))) {
            return true;
        }
        changeText = false;
        deSelect = true;
        return refuse(u"Selected Printer model is "_s + (isManual() ? u"Tovik"_s : itemModel()),
                      {u"Line No 1033"_s});
    }

    [[nodiscard]] bool commit() {
        const QString choice = models.at(column) + u' ' + address;
        log(u"Line No 1037|Line No 1047"_s);
        if (itemModel() == models.first()) {
            log(u"Line No 1051"_s);
        }
        log(u"Line No 1058|Validating"_s);
        log((isManual() ? u"!!!Line No 1121|CUPS %2|!!!!Line No 1124"_s
                        : u"Line No 1066|###IP2Configure %1|####Line No 1083|CUPS %2|###Line No 1086"_s)
                .replace(u"%1"_s, choice)
                .replace(u"%2"_s, u"Tovik-%1-Ethernet-Printer-IP=%2"_s.arg(models.at(column), address)));
        if (isInstalled) {
            return refuse(
                u"A Printer with this IP Address is already Installed, Please choose another "
                "Ethernet Printer"_s);
        }
        file = choice;
        const QString write = u"Writing to Text File|writeToTextFile %1|writeToTextFile END"_s.arg(choice);
        log((isManual() ? u"---Line No 1135|%1|--Line No 1138"_s : u"@@@@Line No 1097|%1|@@@@Line No 1100"_s)
                .arg(write));
        return true;
    }
};
