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
class FormatArgument {
  public:
    FormatArgument(const QString& text) : text_(text.isNull() ? QString::fromLatin1(nullText) : text) {}
    template <std::integral Number>
    FormatArgument(Number number) : text_(QString::number(static_cast<qint64>(number))) {}

    [[nodiscard]] const QString& text() const { return text_; }

  private:
    QString text_;
};

/// Replaces each "%@" of `format`, in order, with the next argument; arguments are not scanned for "%@". A
/// "%@" without an argument is kept. Any thread.
[[nodiscard]] QString stringWithFormat(QStringView format, std::initializer_list<FormatArgument> arguments);

/// A string as NUL-terminated UTF-8 for printf's "%s"; null becomes "(null)", so that "%s" never gets a null
/// pointer.
class UTF8String {
  public:
    explicit UTF8String(const QString& text) : bytes_(text.isNull() ? QByteArray(nullText) : text.toUtf8()) {}

    /// Valid for the lifetime of this object.
    [[nodiscard]] const char* c_str() const { return bytes_.constData(); }

  private:
    QByteArray bytes_;
};

/// The same for a C string that may be null.
[[nodiscard]] inline const char* textOrNull(const char* text) {
    return text == nullptr ? nullText : text;
}
