#include "discovery/DeviceId.h"

#include <algorithm>
#include <cstdio>
#include <string_view>

namespace {

constexpr std::string_view firstKey = "MFG:";

template <std::size_t Size>
void copyTruncated(char (&field)[Size], const char* value) {
    field[std::string_view(value).copy(field, Size - 1)] = '\0';
}

}  // namespace

std::optional<DeviceIdText> findDeviceIdText(std::span<const char> reply) {
    const std::string_view bytes(reply.data(), reply.size());
    const std::size_t start = bytes.find(firstKey);
    if (start == std::string_view::npos) {
        return std::nullopt;
    }
    const std::string_view rest = bytes.substr(start);
    const std::string_view id = rest.substr(0, rest.find('\0'));
    if (id.size() >= deviceIdTextSize) {
        return std::nullopt;  // Only this printer is skipped.
    }
    DeviceIdText text{};
    std::copy(id.begin(), id.end(), text.begin());
    return text;
}

PrinterInfo parseDeviceId(const DeviceIdText& text) {
    // A width in the format ("%29[^;]") would stop the scan inside a longer value and lose all later fields.
    // So each value is read in full, into a buffer as large as the text, and truncated afterwards.
    struct {
        DeviceIdText manufacturer, commands, model, printerClass, description, serialNumber;
    } whole{};
    std::sscanf(text.data(), "MFG:%[^;];CMD:%[^;];MDL:%[^;];CLS:%[^;];DES:%[^;];SERN:%s",
                whole.manufacturer.data(), whole.commands.data(), whole.model.data(),
                whole.printerClass.data(), whole.description.data(), whole.serialNumber.data());
    PrinterInfo info{};
    copyTruncated(info.szManufacturer, whole.manufacturer.data());
    copyTruncated(info.szPrinterCommands, whole.commands.data());
    copyTruncated(info.szModel, whole.model.data());
    copyTruncated(info.szPrinterClass, whole.printerClass.data());
    copyTruncated(info.szDescription, whole.description.data());
    copyTruncated(info.szSerialNumber, whole.serialNumber.data());
    return info;
}
