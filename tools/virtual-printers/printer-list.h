// The printers of a virtual subnet, as a text file describes them: one a line,
//   ADDRESS answers|twice DEVICE-ID, ADDRESS silent, ADDRESS late MILLISECONDS DEVICE-ID, ADDRESS raw
//   HEXBYTES
// with blank lines and lines that begin with # left out.
// Limits: 300 printers; device ids of 1400 bytes, all on the line as they are; IPv4 addresses, each once.
#pragma once

#include "snmp-agent-message.h"

#include <chrono>
#include <cstddef>
#include <stdexcept>
#include <string>
#include <vector>

inline constexpr std::size_t maxPrinters = 300;

enum class Behaviour { Answers, Twice, Silent, Late, Raw };

struct Printer {
    std::string address;
    Behaviour behaviour = Behaviour::Answers;
    std::string deviceId;
    std::chrono::milliseconds delay{0};
    snmp::Bytes raw;
};

// A fault of the command line or of FILE; the system's refusals are std::system_error.
class UsageError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

// "-" is standard input. Throws UsageError with "FILE:LINE: reason", or std::system_error.
std::vector<Printer> readPrinters(const std::string& path);
