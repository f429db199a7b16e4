// String formatting with "%@" placeholders. Format strings for the system log, files and alerts appear
// verbatim where they are used.

#pragma once

#include <QByteArray>
#include <QString>
#include <QStringView>

#include <concepts>
#include <initializer_list>

/// Text shown for null.
inline constexpr const char* nullText = "(null)";

/// One argument of a format: a string (null becomes "(null)"), an integer, or a boolean (1 or 0).
struct FormatArgument {
    FormatArgument(const QString& string) : text(string.isNull() ? QString::fromLatin1(nullText) : string) {}
    template <std::integral Number>
    FormatArgument(Number number) : text(QString::number(static_cast<qint64>(number))) {}

    QString text;
};

/// Replaces each "%@" of `format`, in order, with the next argument; there must be as many of both. Arguments
/// are not scanned for "%@". Any thread.
[[nodiscard]] QString stringWithFormat(QStringView format, std::initializer_list<FormatArgument> arguments);

/// A string as UTF-8 for printf's "%s", which must not get a null pointer; null becomes "(null)".
[[nodiscard]] inline QByteArray UTF8String(const QString& text) {
    return text.isNull() ? QByteArray(nullText) : text.toUtf8();
}

/// The same for a C string that may be null.
[[nodiscard]] inline const char* textOrNull(const char* text) {
    return text == nullptr ? nullText : text;
}
