#include "NetworkPrinterConfig/Beep.h"

#include <QApplication>

#include <utility>

namespace {

std::function<void()>& replacementBeep() {
    static std::function<void()> replacement;
    return replacement;
}

}  // namespace

void beep() {
    if (replacementBeep()) {
        replacementBeep()();
        return;
    }
    QApplication::beep();
}

void setBeep(std::function<void()> replacement) {
    replacementBeep() = std::move(replacement);
}
