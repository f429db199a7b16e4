// What may be typed into the address field: digits and full stops, at most 15 characters. Anything else beeps
// and leaves the field as it was. Whether the text is an address is IPAddressTextValidator's question.

#pragma once

#include <QString>
#include <QValidator>

class OnlyIntegerValueFormatter : public QValidator {
    Q_OBJECT

  public:
    using QValidator::QValidator;

    /// Whether the field may hold `text` after an edit; beeps once when not. `newEditingString` and
    /// `errorDescription` may be null; where given they become null strings, as neither is ever offered. Main
    /// thread.
    [[nodiscard]] bool isPartialStringValid(const QString& text, QString* newEditingString,
                                            QString* errorDescription) const;

    /// The line edit asks once per edit. Never answers Intermediate: that would hold back the end of editing.
    State validate(QString& text, int& cursor) const override;
};
