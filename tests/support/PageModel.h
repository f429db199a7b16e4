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
    enum Step { Introduction, Page, Summary };

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
    bool isSearchStarting = false;
    QStringList found;
    QString file;
    bool changeText = false;
    bool deSelect = false;
    qsizetype selectedCell = 0;
    QStringList queues;  // of the print service

    // Left by the last act.
    QStringList records;
    QStringList alerts;
    int beeps = 0;

    /// All that is compared, on one line.
    [[nodiscard]] QString text() const {
        QString text;
        QDebug(&text).noquote() << "step" << step << "type" << type << "box" << isBoxShown << "list"
                                << areControlsEnabled << selected << items << "address" << address
                                << isEditable << isAddressEnabled << "models" << areModelsEnabled << column
                                << "busy" << isBusy << "fields" << changeText << deSelect << selectedCell
                                << "file" << file << "beeps" << beeps << "alerts" << alerts << "records"
                                << records.join(u'|');
        return text;
    }

    void press(Button button) {
        const auto index = static_cast<int>(button);
        if (button == Button::Next && (step == Introduction || (step == Page && areControlsEnabled))) {
            goForward();
        } else if (button == Button::Back && (step == Summary || (step == Page && areControlsEnabled))) {
            goBack();
        } else if (button == Button::Refresh && isFormShown() && areControlsEnabled) {
            records += u"RefreshButtonClicked"_s;
            startSearch();
        } else if (button <= Button::Network && step == Page && areControlsEnabled) {
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

    /// The user wants the field to hold `text`.
    void edit(const QString& text) {
        static const QRegularExpression allowed(u"^[0-9.]{0,15}$"_s);
        if (!isFormShown() || !isEditable || !isAddressEnabled) {
            return;
        }
        if (allowed.match(text).hasMatch()) {
            address = text;
            areModelsEnabled = true;
        } else {
            ++beeps;
        }
    }

    /// What a search does before it waits for printers.
    void beginSearch() {
        isSearchStarting = false;
        records += {u"GetPrinterIPThread"_s, u"GetPrinterIP"_s};
        isBusy = true;
        items = QStringList{manualEntry};
        didSelect(0);
        areModelsEnabled = false;
        records += u"Before GetTovikQuazelPrinters"_s;
    }

    void endSearch(const QStringList& printers) {
        found = printers;
        items = QStringList{manualEntry} + printers;
        records += {u"After GetTovikQuazelPrinters"_s, u"Total Printer Count is %1"_s.arg(items.size())};
        for (const QString& item : items) {
            records += {u"Found an Item: "_s + item, QString()};
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

    void chooseType(int row) {
        type = row;
        records += u"PrinterTypeClicked %1"_s.arg(row);
        isBoxShown = row == 1;
        if (isBoxShown) {
            startSearch();
        } else {
            removeFile();
        }
    }

    void startSearch() {
        isSearchStarting = true;
        areControlsEnabled = areModelsEnabled = isAddressEnabled = isEditable = false;
        address.clear();
    }

    void didSelect(qsizetype index) {
        selected = index;
        records += {u"didSelectIP Event Called"_s, u"didSelectIP modal is "_s + item()};
        isEditable = isAddressEnabled = areModelsEnabled = isManual();
        address = isManual() ? QString() : item().section(u'@', 1);
        column = isManual() ? 0 : models.indexOf(itemModel());
        if (!isManual()) {
            records += {u"ChangePrinterModelRadioButton "_s + item(), u"$$$$$"_s + address};
            changeText = true;
            selectedCell = column;
        }
    }

    void removeFile() {
        records += {u"Inside RemoveFile"_s, u"Return from RemoveFile"_s};
        file.clear();
    }

    void goForward() {
        if (step == Introduction) {
            step = Page;
            records += u"didEnterPane"_s;
            type = column = 0;
            isBoxShown = isBusy = isEditable = isAddressEnabled = areModelsEnabled = false;
            removeFile();
            records += u"Return from didEnterPane"_s;
            return;
        }
        records += {u"shouldExitPane"_s, u"shouldExitPane  :: InstallerDirectionForward"_s};
        if (type == 0 || decide()) {
            records += u"shouldExitPane  :: Return"_s;
            step = Summary;
        }
    }

    void goBack() {
        --step;
        records += step == Introduction ? QStringList{u"shouldExitPane"_s, u"shouldExitPane  :: Return"_s}
                                        : QStringList{u"didEnterPane"_s, u"Return from didEnterPane"_s};
    }

    void line(std::initializer_list<int> numbers, const QString& prefix = {}) {
        for (const int number : numbers) {
            records += prefix + u"Line No %1"_s.arg(number);
        }
    }

    bool refuse(const QString& reason) {
        alerts += u"Tovik KV Card Printer IP Configuration|%1|Ok"_s.arg(reason);
        return false;
    }

    [[nodiscard]] static bool isIPv4(const QString& text) {
        static const QRegularExpression number(u"^[0-9]{1,3}$"_s);
        const QStringList parts = text.split(u'.');
        return parts.size() == 4 && std::all_of(parts.begin(), parts.end(), [](const QString& part) {
                   return number.match(part).hasMatch() && part.toInt() <= 255;
               });
    }

    [[nodiscard]] bool decide() {
        records += u"Row Value is Here"_s;
        line({981});
        records += u" Value is Here "_s + item();
        line({989});
        records += u" Value IP is Here "_s + address;
        if (isManual() && address.isEmpty()) {
            line({1000, 1007});
            return refuse(u"Please choose Printer IP or Enter the IP Address to configure"_s);
        }
        line({1014});
        if (!isIPv4(address)) {
            address.clear();
            ++beeps;
            line({1026});
            return refuse(u"Invalid IP"_s);
        }
        return isModelRight() && isNew();
    }

    /// A typed address that occurs in a found line stands for the maker's word, which counts as column 0.
    [[nodiscard]] bool isModelRight() {
        const bool isKnown = !found.filter(address).isEmpty();
        for (int look = isManual() && isKnown ? 2 : 1; look > 0; --look) {
            records += u"IsIPAvalaibleInList"_s;
        }
        if (isKnown && column != (isManual() ? 0 : models.indexOf(itemModel()))) {
            changeText = false;
            deSelect = true;
            line({1033});
            return refuse(u"Selected Printer model is "_s + (isManual() ? u"Tovik"_s : itemModel()));
        }
        return true;
    }

    [[nodiscard]] bool isNew() {
        line({1037, 1047});
        if (item().contains(models.first())) {
            line({1051});
        }
        line({1058});
        records += u"Validating"_s;
        const QString choice = models.at(column) + u' ' + address;
        if (!isManual()) {
            line({1066});
            records += u"###IP2Configure "_s + choice;
        }
        const QString queue = u"Tovik-%1-Ethernet-Printer-IP=%2"_s.arg(models.at(column), address);
        line({isManual() ? 1121 : 1083}, isManual() ? u"!!!"_s : u"####"_s);
        records += u"CUPS "_s + queue;
        line({isManual() ? 1124 : 1086}, isManual() ? u"!!!!"_s : u"###"_s);
        if (queues.contains(queue)) {
            return refuse(
                u"A Printer with this IP Address is already Installed, Please choose another Ethernet "
                "Printer"_s);
        }
        line({isManual() ? 1135 : 1097}, isManual() ? u"---"_s : u"@@@@"_s);
        records += {u"Writing to Text File"_s, u"writeToTextFile "_s + choice, u"writeToTextFile END"_s};
        file = choice;
        line({isManual() ? 1138 : 1100}, isManual() ? u"--"_s : u"@@@@"_s);
        return true;
    }
};
