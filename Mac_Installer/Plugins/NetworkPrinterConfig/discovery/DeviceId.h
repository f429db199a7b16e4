// The IEEE 1284 device ID in a printer's SNMP reply. The reply is not decoded as BER: the text is located by
// its first key, "MFG:", and parsed with a fixed format that requires the keys in exactly that order.
//
// Limits: replies of at most 1024 bytes; texts over 255 bytes are ignored; each field is truncated to its
// size.

#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <span>

inline constexpr std::size_t deviceIdTextSize = 256;  ///< Including the terminating NUL.

using DeviceIdText = std::array<char, deviceIdTextSize>;

/// The fields of a device ID, NUL-terminated; empty if missing.
struct PrinterInfo {
    char szManufacturer[30];     ///< MFG
    char szPrinterCommands[20];  ///< CMD
    char szModel[20];            ///< MDL
    char szPrinterClass[20];     ///< CLS
    char szDescription[50];      ///< DES
    char szSerialNumber[66];     ///< SERN, up to the first white space
};
static_assert(sizeof(PrinterInfo) == 206);

/// The text from the first "MFG:" in `reply` to the next zero byte or the end; nullopt if there is none or it
/// doesn't fit. Any thread.
[[nodiscard]] std::optional<DeviceIdText> findDeviceIdText(std::span<const char> reply);

/// Parses a device ID text. Parsing stops at the first key that is missing, out of order or without a value;
/// the later fields stay empty. Any thread.
[[nodiscard]] PrinterInfo parseDeviceId(const DeviceIdText& text);
