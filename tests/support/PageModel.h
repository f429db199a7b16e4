// A model of the page without widgets, threads or an event loop: the state of its controls, how each input
// changes it, and the resulting records, alerts and beeps.

#pragma once

#include "support/Fixtures.h"

#include <algorithm>
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
    QStringList systemLog;     // its lines of the last input
    int sincePress = 0;        // ms since the last press of Continue or Go Back that counted
    bool isInstalled = false;  // whether the print service has the queue looked for

    /// Everything that is compared, on one line.
    [[nodiscard]] QString text() const {
        QString text;
        QDebug(&text).noquote() << "step" << step << "type" << type << "box" << isBoxShown << "list"
                                << selected << items << "address" << isAddressEnabled << address << "models"
                                << areModelsEnabled << column << "searching" << isSearching << "fields"
                                << changeText << deSelect << selectedCell << "file" << file << summary;
        return (step == Closed ? u"closed"_s : text) +
               u" effects %1 system log %2"_s.arg(effects.join(u'|'), systemLog.join(u'|'));
    }

    /// Whether the button is visible and enabled.
    [[nodiscard]] bool isOperable(Button button) const {
        const bool isModel = button >= Kv210 && button <= Kv460;
        if (isModel || isSearching) {
            return isModel && isFormShown() && areModelsEnabled;
        }
        return button == Refresh  ? isFormShown()
               : button == GoBack ? step > Introduction
                                  : button == Continue || step == Page;
    }

    /// A press by a key, by the mouse (Key_unknown) or by assistive technology (no key).
    void press(Button button, std::optional<Qt::Key> key = {}) {
        if (!isOperable(button)) {
            return;
        }
        if (button == Continue && isCounted(key)) {
            goForward();
        } else if (button == GoBack && isCounted(key)) {
            --step;
            log(step == Introduction ? u"shouldExitPane|shouldExitPane  :: Return"_s
                                     : u"didEnterPane|Return from didEnterPane"_s);
        } else if (button == Refresh) {
            log(u"RefreshButtonClicked"_s);
            startSearch();
        } else if (button <= Network) {
            chooseType(button);
        } else if (button <= Kv460) {
            column = button - Kv210;
            report(u"Selected Model Item is %1"_s.arg(column));
        }
    }

    /// Whether it is a radio button, and selected.
    [[nodiscard]] bool isSelected(Button button) const { return button == type || button == Kv210 + column; }

    /// Moves the selection by one cell, if the button is selected.
    void pressArrow(Button button, int offset) {
        const auto next = static_cast<Button>(button + offset);
        if (isSelected(button) && next >= Directly && next != Refresh && next <= Kv460) {
            press(next);
        }
    }

    void select(qsizetype index) {
        if (isFormShown() && !isSearching && index != selected && index >= 0 && index < items.size()) {
            didSelect(index);
        }
    }

    void pressInList(Qt::Key key) {
        const qsizetype last = items.size() - 1;
        select(key == Qt::Key_Up     ? selected - 1
               : key == Qt::Key_Down ? selected + 1
               : key == Qt::Key_Home ? 0
               : key == Qt::Key_End  ? last
               : selected < last     ? selected + 1  // "T": the next printer.
                                     : 1);
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
        log(foundItems());
        report(u"Array Count is %1"_s.arg(items.size() + 1));
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

    [[nodiscard]] QString foundItems() const {
        return u"Found an Item: "_s + items.join(u"||Found an Item: "_s) + u'|';
    }

    /// Adds log records, or lines of the system log, separated by "|".
    void log(const QString& records) { effects += records.split(u'|'); }
    void report(const QString& lines) { systemLog += lines.split(u'|'); }
    void logTwice(const QString& text) {
        log(text);
        report(text);
    }

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
        logTwice(u"PrinterTypeClicked %1"_s.arg(row));
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
            logTwice(u"ChangePrinterModelRadioButton "_s + item());
            log(u"$$$$$"_s + address);
            changeText = true;
            selectedCell = column;
        }
    }

    void removeFile() {
        log(u"Inside RemoveFile|Return from RemoveFile"_s);
        systemLog += QStringList(file.isEmpty() ? 0 : 1, u"(null)"_s);
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
        const QStringList numbers = address.split(u'.');
        const auto isByte = [](const QString& number) {
            return !number.isEmpty() && number.size() <= 3 && number.toInt() <= 255;
        };
        if (numbers.size() != 4 || !std::all_of(numbers.begin(), numbers.end(), isByte)) {
            address.clear();
            effects += u"beep"_s;
            return refuse(u"Invalid IP"_s, {u"Line No 1026"_s});
        }
        return isModelRight() && commit();
    }

    /// A typed address that occurs in the list yields the manufacturer, which maps to column 0.
    [[nodiscard]] bool isModelRight() {
        QString model = itemModel();
        if (isManual()) {
            report(u"Getting IP Model for the IP "_s + address);
            model = isInList() ? u"Tovik"_s : u"(null)"_s;
        }
        report(u"ValidateSelectedIPAndModel is "_s + model);
        if (model == u"(null)"_s) {
            report(u"Empty String Return"_s);
            return true;
        }
        (void)isInList();
        const qsizetype right = std::max<qsizetype>(0, models.indexOf(model));
        report(
            u"PrinterModelToColumnNo is %1|PrinterModelToColumnNo Return %2|Model  Value is %2|"
            "ValidateSelectedIPAndModel Return %3 "_s.arg(model)
                .arg(right)
                .arg(column == right));
        if (column == right) {
            return true;
        }
        changeText = false;
        deSelect = true;
        return refuse(u"Selected Printer model is "_s + model, {u"Line No 1033"_s});
    }

    [[nodiscard]] bool isInList() {
        const qsizetype found = items.indexOf(items.filter(address).value(0));
        const QStringList read = found < 0 ? items + QStringList(QString()) : items.mid(0, found + 1);
        log(u"IsIPAvalaibleInList"_s);
        report(u"~~IsIPAvalaibleInList %1|%2|IsIPAvalaibleInList IP Is "_s.arg(address, foundItems()) +
               read.join(u"|IsIPAvalaibleInList IP Is "_s));
        report(u"IsIPAvalaibleInList Return%1"_s.arg(found >= 0));
        return found >= 0;
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
        report(u"Going to Write %1|writeToTextFile|writeToTextFile end"_s.arg(choice));
        const QString write = u"Writing to Text File|writeToTextFile %1|writeToTextFile END"_s.arg(choice);
        log((isManual() ? u"---Line No 1135|%1|--Line No 1138"_s : u"@@@@Line No 1097|%1|@@@@Line No 1100"_s)
                .arg(write));
        return true;
    }
};
