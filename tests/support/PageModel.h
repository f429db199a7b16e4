// What the page must do, with no widgets, threads or event loop: the state of its controls, what each act
// makes of it, and the records, alerts and beeps that it leaves.

#pragma once

#include <QDebug>
#include <QRegularExpression>
#include <QString>
#include <QStringList>

#include <algorithm>

using namespace Qt::StringLiterals;

enum class Button { Directly, Network, Kv210, Kv260, Kv410, Kv460, Refresh, Back, Next };

struct PageModel {
    enum Step { Introduction, Page, Summary, Closed };

    /// What an act leaves behind it.
    struct Effects {
        QStringList records;
        QStringList alerts;
        int beeps = 0;
    };

    int step = Introduction;
    qsizetype type = -1;
    bool isBoxShown = true;
    QStringList items;
    qsizetype selected = -1;
    QString address;
    bool isEditable = true;
    bool isAddressEnabled = true;
    bool areModelsEnabled = true;
    qsizetype column = -1;
    bool areControlsEnabled = true;  // type, list, Refresh, Continue and Go Back: all but while searching
    bool isBusy = false;
    bool changeText = false;
    bool deSelect = false;
    qsizetype selectedCell = 0;
    QString file;
    QStringList queues;  // of the print service
    Effects effects;

    /// All that is compared, on one line.
    [[nodiscard]] QString text() const {
        QString text;
        QDebug(&text).noquote() << "step" << step << "type" << type << "box" << isBoxShown << "list"
                                << areControlsEnabled << selected << items << "address" << address
                                << isEditable << isAddressEnabled << "models" << areModelsEnabled << column
                                << "busy" << isBusy << "fields" << changeText << deSelect << selectedCell
                                << "file" << file << "beeps" << effects.beeps << "alerts" << effects.alerts
                                << "records" << effects.records.join(u'|');
        return text;
    }

    void press(Button button) {
        const auto index = static_cast<int>(button);
        const bool isPageFree = step == Page && areControlsEnabled;
        if (button == Button::Next && (isPageFree || step == Introduction || step == Summary)) {
            goForward();
        } else if (button == Button::Back && (isPageFree || step == Summary)) {
            goBack();
        } else if (button == Button::Refresh && isPageFree && isBoxShown) {
            log(u"RefreshButtonClicked"_s);
            startSearch();
        } else if (button <= Button::Network && isPageFree) {
            chooseType(index);
        } else if (button >= Button::Kv210 && button <= Button::Kv460 && isFormShown() && areModelsEnabled) {
            column = index - static_cast<int>(Button::Kv210);
        }
    }

    /// An assistive program toggles: what is selected already stays so, without an action.
    void toggle(Button button) {
        if (button > Button::Network || static_cast<int>(button) != type) {
            press(button);
        }
    }

    void select(qsizetype index) {
        if (isFormShown() && areControlsEnabled && index != selected && index >= 0 && index < items.size()) {
            didSelect(index);
        }
    }

    [[nodiscard]] bool isFieldFree() const { return isFormShown() && isEditable && isAddressEnabled; }

    /// The user wants the field to hold `text`.
    void edit(const QString& text) {
        static const QRegularExpression allowed(u"^[0-9.]{0,15}$"_s);
        if (!isFieldFree()) {
            return;
        }
        if (allowed.match(text).hasMatch()) {
            address = text;
            areModelsEnabled = true;
        } else {
            ++effects.beeps;
        }
    }

    void endSearch(const QStringList& printers) {
        items = QStringList{manualEntry} + printers;
        log(u"After GetTovikQuazelPrinters|Total Printer Count is %1"_s.arg(items.size()));
        for (const QString& item : items) {
            log(u"Found an Item: %1|"_s.arg(item));
        }
        didSelect(0);
        isBusy = false;
        areControlsEnabled = isAddressEnabled = isEditable = true;
    }

  private:
    static inline const QString manualEntry = u"Enter IP Address Manually"_s;
    static inline const QStringList models{u"KV210"_s, u"KV260"_s, u"KV410"_s, u"KV460"_s};

    [[nodiscard]] bool isFormShown() const { return step == Page && isBoxShown; }
    [[nodiscard]] QString item() const { return items.value(selected); }
    [[nodiscard]] bool isManual() const { return item() == manualEntry; }
    [[nodiscard]] QString itemModel() const { return item().section(u' ', 1, 1); }

    /// Records as they stand in the file, with "|" between them.
    void log(const QString& records) { effects.records += records.split(u'|'); }

    bool refuse(const QString& reason) {
        effects.alerts += u"Tovik KV Card Printer IP Configuration|%1|Ok"_s.arg(reason);
        return false;
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

    /// Up to where it waits for printers.
    void startSearch() {
        log(u"GetPrinterIPThread|GetPrinterIP"_s);
        isBusy = true;
        items = QStringList{manualEntry};
        didSelect(0);
        areControlsEnabled = areModelsEnabled = false;
        log(u"Before GetTovikQuazelPrinters"_s);
    }

    void didSelect(qsizetype index) {
        selected = index;
        log(u"didSelectIP Event Called|didSelectIP modal is "_s + item());
        isEditable = isAddressEnabled = areModelsEnabled = isManual();
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
        } else if (step == Summary) {
            step = Closed;
        } else {
            log(u"shouldExitPane|shouldExitPane  :: InstallerDirectionForward"_s);
            if (type == 0 || decide()) {
                log(u"shouldExitPane  :: Return"_s);
                step = Summary;
            }
        }
    }

    void enter() {
        step = Page;
        log(u"didEnterPane"_s);
        type = column = 0;
        isBoxShown = isBusy = isEditable = isAddressEnabled = areModelsEnabled = false;
        removeFile();
        log(u"Return from didEnterPane"_s);
    }

    void goBack() {
        --step;
        log(step == Introduction ? u"shouldExitPane|shouldExitPane  :: Return"_s
                                 : u"didEnterPane|Return from didEnterPane"_s);
    }

    [[nodiscard]] static bool isIPv4(const QString& text) {
        static const QRegularExpression number(u"^[0-9]{1,3}$"_s);
        const QStringList parts = text.split(u'.');
        return parts.size() == 4 && std::all_of(parts.begin(), parts.end(), [](const QString& part) {
                   return number.match(part).hasMatch() && part.toInt() <= 255;
               });
    }

    [[nodiscard]] bool decide() {
        log(u"Row Value is Here|Line No 981| Value is Here %1|Line No 989| Value IP is Here %2"_s.arg(
            item(), address));
        if (isManual() && address.isEmpty()) {
            log(u"Line No 1000|Line No 1007"_s);
            return refuse(u"Please choose Printer IP or Enter the IP Address to configure"_s);
        }
        log(u"Line No 1014"_s);
        if (!isIPv4(address)) {
            address.clear();
            ++effects.beeps;
            log(u"Line No 1026"_s);
            return refuse(u"Invalid IP"_s);
        }
        return isModelRight() && commit();
    }

    /// A typed address that occurs in a found line stands for the maker's word, which counts as column 0.
    [[nodiscard]] bool isModelRight() {
        const bool isKnown = !items.filter(address).isEmpty();
        log(isManual() && isKnown ? u"IsIPAvalaibleInList|IsIPAvalaibleInList"_s : u"IsIPAvalaibleInList"_s);
        if (!isKnown || column == (isManual() ? 0 : models.indexOf(itemModel()))) {
            return true;
        }
        changeText = false;
        deSelect = true;
        log(u"Line No 1033"_s);
        return refuse(u"Selected Printer model is "_s + (isManual() ? u"Tovik"_s : itemModel()));
    }

    [[nodiscard]] bool commit() {
        const QString choice = models.at(column) + u' ' + address;
        const QString queue = u"Tovik-%1-Ethernet-Printer-IP=%2"_s.arg(models.at(column), address);
        log(itemModel() == models.first()
                ? u"Line No 1037|Line No 1047|Line No 1051|Line No 1058|Validating"_s
                : u"Line No 1037|Line No 1047|Line No 1058|Validating"_s);
        log((isManual() ? u"!!!Line No 1121|CUPS %2|!!!!Line No 1124"_s
                        : u"Line No 1066|###IP2Configure %1|####Line No 1083|CUPS %2|###Line No 1086"_s)
                .replace(u"%1"_s, choice)
                .replace(u"%2"_s, queue));
        if (queues.contains(queue)) {
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
