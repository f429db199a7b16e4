// Fuzzes replies to the device ID request: a reply is never read past its end and adds at most one
// well-formed entry per address to the list.

#include "discovery/PrinterDiscovery.h"
#include "handoff/DiagnosticLog.h"

#include <QRegularExpression>

#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <vector>

using namespace Qt::StringLiterals;

// Replaces the program's own: formats every record, so that the arguments are read, but writes no file.
void tDebugPrint(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(nullptr, 0, format, arguments);
    va_end(arguments);
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::vector<char> reply(data, data + size);  // On the heap: ASan detects overreads.
    g_PrinterList = std::make_shared<QStringList>(u"Enter IP Address Manually\n"_s);
    for (const in_addr_t address : {0x0700000aU, 0x0700000aU, 0x0800000aU}) {  // The first one twice.
        addPrinterOfReply(reply, {address});
    }
    static const QRegularExpression form(
        u"\\AEnter IP Address Manually\n"
        "(\\|Tovik (KV(210|260|410|460)) @10[.]0[.]0[.]7\n\\|Tovik \\2 @10[.]0[.]0[.]8\n)?\\z"_s);
    if (!form.match(g_PrinterList->join(u'|')).hasMatch()) {
        std::abort();
    }
    return 0;
}
