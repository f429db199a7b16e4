// Object formats: texts with "%@" in them, each replaced by the next argument. Texts that the program writes
// to the system log, to files and to alerts stand as such formats, unchanged, at the place that writes them.

#pragma once

#include <QByteArray>
#include <QString>
#include <QStringView>

#include <concepts>
#include <initializer_list>

/// How a null text shows.
inline constexpr const char* nullText = "(null)";

/// One argument of an object format: a string (null shows as "(null)"), a whole number, or a truth value (1
/// or 0).
class FormatArgument {
  public:
    FormatArgument(const QString& text) : text_(text.isNull() ? QString::fromLatin1(nullText) : text) {}
    template <std::integral Number>
    FormatArgument(Number number) : text_(QString::number(static_cast<qint64>(number))) {}

    [[nodiscard]] const QString& text() const { return text_; }

  private:
    QString text_;
};

/// Replaces each "%@" of `format`, in order, by the next of `arguments`; arguments are never scanned for "%@"
/// themselves. A "%@" without an argument stands as it is. Any thread.
[[nodiscard]] QString stringWithFormat(QStringView format, std::initializer_list<FormatArgument> arguments);

/// A text as the NUL-terminated UTF-8 that printf's "%s" takes; a null text becomes "(null)", which keeps
/// "%s" from reading through a null pointer.
class UTF8String {
  public:
    explicit UTF8String(const QString& text) : bytes_(text.isNull() ? QByteArray(nullText) : text.toUtf8()) {}

    /// Valid as long as this object.
    [[nodiscard]] const char* c_str() const { return bytes_.constData(); }

  private:
    QByteArray bytes_;
};

/// The same for a C string that may be null.
[[nodiscard]] inline const char* textOrNull(const char* text) {
    return text == nullptr ? nullText : text;
}
