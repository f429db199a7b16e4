// Whether a whole text is a dotted decimal IPv4 address; asked when the person presses Continue.

#pragma once

#include <QString>

class IPAddressTextValidator {
  public:
    /// True for four numbers from 0 to 255 with up to three digits each (leading zeros included), joined by
    /// full stops. True for an empty text, too: whether an address is needed is not decided here. False for a
    /// null text.
    [[nodiscard]] bool validate(const QString& text) const;
};
