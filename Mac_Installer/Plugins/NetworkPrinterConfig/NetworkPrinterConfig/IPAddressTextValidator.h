// Validates a complete IPv4 address in dotted decimal, when the user presses Continue.

#pragma once

#include <QString>

class IPAddressTextValidator {
  public:
    /// True for four numbers from 0 to 255 of up to three digits each (leading zeros allowed), separated by
    /// full stops; one line terminator may follow. Also true for an empty text, as requiring an address is
    /// the caller's decision. False for a null text.
    [[nodiscard]] bool validate(const QString& text) const;
};
