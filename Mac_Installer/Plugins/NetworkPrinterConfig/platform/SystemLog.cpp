#include "platform/SystemLog.h"

#include <QLoggingCategory>

void systemLog(QStringView format, std::initializer_list<FormatArgument> arguments) {
    static const QLoggingCategory pageLog("quazel.page", QtInfoMsg);
    qCInfo(pageLog).noquote() << stringWithFormat(format, arguments);
}
