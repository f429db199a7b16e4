#include "NetworkPrinterConfig/OnlyIntegerValueFormatter.h"

#include "NetworkPrinterConfig/Beep.h"

#include <unicode/uniset.h>
#include <unicode/unistr.h>

namespace {

constexpr qsizetype longestAddress = 15;

bool holdsNonDecimalCharacter(const QString& text) {
    static const icu::UnicodeSet nonDecimalCharacters =
        icu::UnicodeSet().addAll(icu::UnicodeString(u"0123456789.")).complement();
    const icu::UnicodeString characters(text.utf16(), static_cast<int32_t>(text.size()));
    return nonDecimalCharacters.containsSome(characters) != 0;
}

}  // namespace

bool OnlyIntegerValueFormatter::isPartialStringValid(const QString& text, QString* newEditingString,
                                                     QString* errorDescription) const {
    if (text.isEmpty()) {
        return true;
    }
    if (newEditingString != nullptr) {
        *newEditingString = QString();
    }
    if (errorDescription != nullptr) {
        *errorDescription = QString();
    }
    if (text.size() > longestAddress || holdsNonDecimalCharacter(text)) {
        beep();
        return false;
    }
    return true;
}

QValidator::State OnlyIntegerValueFormatter::validate(QString& text, int& /*cursor*/) const {
    return isPartialStringValid(text, nullptr, nullptr) ? Acceptable : Invalid;
}
