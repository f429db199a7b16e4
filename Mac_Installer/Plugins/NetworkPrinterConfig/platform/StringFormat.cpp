#include "platform/StringFormat.h"

QString stringWithFormat(QStringView format, std::initializer_list<FormatArgument> arguments) {
    QString result = format.toString();
    qsizetype at = 0;
    for (const FormatArgument& argument : arguments) {
        at = result.indexOf(u"%@", at);
        result.replace(at, 2, argument.text);
        at += argument.text.size();
    }
    return result;
}
