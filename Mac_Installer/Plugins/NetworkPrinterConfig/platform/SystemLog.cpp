#include "platform/SystemLog.h"

#include <QLoggingCategory>

namespace {

Q_LOGGING_CATEGORY(pageLog, "quazel.page", QtInfoMsg)

}  // namespace

void systemLog(QStringView format, std::initializer_list<FormatArgument> arguments) {
    qCInfo(pageLog).noquote() << stringWithFormat(format, arguments);
}
