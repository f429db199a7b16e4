// Reads the list of virtual printers; the lines' form is in printer-list.h.
// Device ids are taken byte for byte to the end of the line, only a carriage return there goes.
// Limits: a delay of 600000 milliseconds, a raw reply of one UDP datagram (65507 bytes).
#include "printer-list.h"

#include <arpa/inet.h>
#include <netinet/in.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <fstream>
#include <iostream>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>

namespace {

constexpr std::size_t maxDeviceId = 1400;
constexpr int maxDelay = 600'000;
constexpr std::string_view blanks = " \t";

struct BehaviourName {
    std::string_view name;
    Behaviour behaviour;
};
constexpr std::array behaviours{
    BehaviourName{"answers", Behaviour::Answers}, BehaviourName{"twice", Behaviour::Twice},
    BehaviourName{"silent", Behaviour::Silent},   BehaviourName{"late", Behaviour::Late},
    BehaviourName{"raw", Behaviour::Raw},
};

std::string_view takeWord(std::string_view& rest) {
    const std::string_view word = rest.substr(0, rest.find_first_of(blanks));
    rest.remove_prefix(word.size());
    rest.remove_prefix(std::min(rest.find_first_not_of(blanks), rest.size()));
    return word;
}

template <typename Number>
std::optional<Number> parseNumber(std::string_view text, int base) {
    Number number{};
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number, base);
    return error == std::errc{} && stop == end ? std::optional(number) : std::nullopt;
}

snmp::Bytes parseHex(std::string_view text) {
    snmp::Bytes bytes;
    if (text == "-") {
        return bytes;
    }
    for (std::size_t i = 0; i < text.size(); i += 2) {
        const std::string_view digits = text.substr(i, 2);
        const auto byte = parseNumber<std::uint8_t>(digits, 16);
        if (digits.size() != 2 || !byte) {
            throw UsageError("\"" + std::string(text) + "\" is no sequence of hexadecimal bytes");
        }
        bytes.push_back(*byte);
    }
    if (bytes.empty() || bytes.size() > snmp::maxDatagram) {
        throw UsageError("a raw reply is 1 to 65507 bytes in hexadecimal, or \"-\" for an empty datagram");
    }
    return bytes;
}

std::string parseAddress(std::string_view word) {
    std::string address(word);
    in_addr parsed{};
    if (::inet_pton(AF_INET, address.c_str(), &parsed) != 1) {
        throw UsageError("\"" + address + "\" is no IPv4 address");
    }
    const in_addr_t number = ntohl(parsed.s_addr);
    if (number == INADDR_ANY || number == INADDR_BROADCAST || IN_MULTICAST(number)) {
        throw UsageError(address + " is no address of one printer");
    }
    return address;
}

Behaviour parseBehaviour(std::string_view word) {
    const auto* const found = std::ranges::find(behaviours, word, &BehaviourName::name);
    if (found == behaviours.end()) {
        throw UsageError("\"" + std::string(word) + "\" is none of answers, twice, silent, late, raw");
    }
    return found->behaviour;
}

Printer parsePrinter(std::string_view line) {
    Printer printer;
    printer.address = parseAddress(takeWord(line));
    printer.behaviour = parseBehaviour(takeWord(line));
    if (printer.behaviour == Behaviour::Silent) {
        if (!line.empty()) {
            throw UsageError("nothing follows \"silent\"");
        }
        return printer;
    }
    if (printer.behaviour == Behaviour::Raw) {
        printer.raw = parseHex(takeWord(line));
        if (!line.empty()) {
            throw UsageError("the hexadecimal bytes are one word");
        }
        return printer;
    }
    if (printer.behaviour == Behaviour::Late) {
        const auto delay = parseNumber<int>(takeWord(line), 10);
        if (!delay || *delay < 0 || *delay > maxDelay) {
            throw UsageError("\"late\" needs 0 to 600000 milliseconds");
        }
        printer.delay = std::chrono::milliseconds(*delay);
    }
    if (line.empty() || line.size() > maxDeviceId) {
        throw UsageError("a device id has 1 to 1400 bytes");
    }
    printer.deviceId = line;
    return printer;
}

void addPrinter(std::vector<Printer>& printers, std::string_view line) {
    Printer printer = parsePrinter(line);
    if (std::ranges::find(printers, printer.address, &Printer::address) != printers.end()) {
        throw UsageError(printer.address + " has a printer already");
    }
    if (printers.size() == maxPrinters) {
        throw UsageError("more than 300 printers");
    }
    printers.push_back(std::move(printer));
}

}  // namespace

std::vector<Printer> readPrinters(const std::string& path) {
    std::ifstream file;
    if (path != "-") {
        file.open(path);
        if (!file) {
            throw std::system_error(errno, std::generic_category(), "cannot read " + path);
        }
    }
    std::istream& in = path == "-" ? std::cin : file;
    std::vector<Printer> printers;
    std::string text;
    for (int number = 1; std::getline(in, text); ++number) {
        std::string_view line = text;
        if (line.ends_with('\r')) {
            line.remove_suffix(1);
        }
        // A device id may end in blanks, so only those before the address go.
        line.remove_prefix(std::min(line.find_first_not_of(blanks), line.size()));
        if (line.empty() || line.starts_with('#')) {
            continue;
        }
        try {
            addPrinter(printers, line);
        } catch (const UsageError& error) {
            throw UsageError(path + ":" + std::to_string(number) + ": " + error.what());
        }
    }
    if (in.bad()) {
        throw std::system_error(errno, std::generic_category(), "cannot read " + path);
    }
    return printers;
}
