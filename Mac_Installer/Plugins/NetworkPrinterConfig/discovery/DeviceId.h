// The IEEE 1284 device id in a printer's SNMP reply. The reply is not decoded as BER: the text is found by
// its first key, "MFG:", and split by a fixed format whose keys must stand in exactly that order.
//
// Limits: a reply is at most 1024 bytes; a text of more than 255 bytes is not taken; each field is cut to its
// size.

#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <span>

inline constexpr std::size_t maximumReplySize = 1024;
inline constexpr std::size_t deviceIdTextSize = 256;  ///< With the terminating zero byte.

using DeviceIdText = std::array<char, deviceIdTextSize>;

/// The fields of a device id, each NUL-terminated; empty where the id has none.
struct PrinterInfo {
    char szManufacturer[30];     ///< MFG
    char szPrinterCommands[20];  ///< CMD
    char szModel[20];            ///< MDL
    char szPrinterClass[20];     ///< CLS
    char szDescription[50];      ///< DES
    char szSerialNumber[66];     ///< SERN, up to the first white space
};
static_assert(sizeof(PrinterInfo) == 206);

/// The text from the first "MFG:" in `reply` to the first zero byte or the end. Nothing when there is no such
/// text or when it does not fit. Any thread.
[[nodiscard]] std::optional<DeviceIdText> findDeviceIdText(std::span<const char> reply);

/// Splits a device id text. The split stops at the first key that is missing, out of order or without a
/// value, and leaves the later fields empty. Any thread.
[[nodiscard]] PrinterInfo parseDeviceId(const DeviceIdText& text);
