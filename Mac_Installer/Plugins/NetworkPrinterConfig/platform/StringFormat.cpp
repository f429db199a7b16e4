#include "platform/StringFormat.h"

QString stringWithFormat(QStringView format, std::initializer_list<FormatArgument> arguments) {
    static constexpr QStringView placeholder = u"%@";
    QString result;
    qsizetype from = 0;
    for (const FormatArgument& argument : arguments) {
        const qsizetype at = format.indexOf(placeholder, from);
        if (at < 0) {
            break;
        }
        result += format.sliced(from, at - from);
        result += argument.text();
        from = at + placeholder.size();
    }
    result += format.sliced(from);
    return result;
}
