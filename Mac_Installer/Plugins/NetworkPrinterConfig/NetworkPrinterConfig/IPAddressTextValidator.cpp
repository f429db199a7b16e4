#include "NetworkPrinterConfig/IPAddressTextValidator.h"

#include <unicode/regex.h>
#include <unicode/unistr.h>

namespace {

// ICU syntax, and it must be ICU: its "$" also matches before any line terminator at the end of the text,
// unlike in other engines.
constexpr const char16_t* addressPattern =
    uR"(^(?:(?:25[0-5]|2[0-4][0-9]|[01]?[0-9][0-9]?)\.){3}(?:25[0-5]|2[0-4][0-9]|[01]?[0-9][0-9]?)$)";

}  // namespace

bool IPAddressTextValidator::validate(const QString& text) const {
    if (text.isNull()) {
        return false;
    }
    if (text.isEmpty()) {
        return true;
    }
    const icu::UnicodeString input(text.utf16(), static_cast<int32_t>(text.size()));
    UErrorCode status = U_ZERO_ERROR;
    icu::RegexMatcher matcher(icu::UnicodeString(addressPattern), input, 0, status);
    return matcher.find(status) != 0;  // Anchored at both ends, it matches once at most.
}
