// One record of the diagnostic log against the same bytes with open, write and close. HOME is a folder of the
// caller's; its documents folder has to exist.

#include "handoff/DiagnosticLog.h"
#include "platform/DocumentsFolder.h"

#include <QFile>

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>

namespace {

constexpr const char* address = "10.0.0.200";

std::string documents() {
    return QFile::encodeName(documentsDirectory()).toStdString();
}

std::string logPath() {
    return documents() + "/QzInstall.log";
}

/// The file may not be there yet.
void empty(const std::string& path) {
    std::error_code error;
    std::filesystem::resize_file(path, 0, error);
}

void logRecord() {
    tDebugPrint("IP address is: %s\n", address);
}

/// What one record leaves in the file.
std::string recordBytes() {
    empty(logPath());
    logRecord();
    QFile file(QString::fromStdString(logPath()));
    if (!file.open(QIODevice::ReadOnly)) {
        std::abort();
    }
    return file.readAll().toStdString();
}

void appendRecord(const char* path, const std::string& bytes) {
    const int file = ::open(path, O_WRONLY | O_APPEND | O_CREAT, 0666);
    benchmark::DoNotOptimize(::write(file, bytes.data(), bytes.size()));
    ::close(file);
}

void product(benchmark::State& state) {
    empty(logPath());
    for ([[maybe_unused]] auto _ : state) {
        logRecord();
    }
}

void bare(benchmark::State& state) {
    const std::string path = documents() + "/bare.log";
    const std::string bytes = recordBytes();
    empty(path);
    for ([[maybe_unused]] auto _ : state) {
        appendRecord(path.c_str(), bytes);
    }
}

}  // namespace

BENCHMARK(product);
BENCHMARK(bare);

int main(int argc, char** argv) {
    logRecord();  // The first one begins the log; it is not what is measured.
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
