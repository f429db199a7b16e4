// Limits input in the address field to digits and full stops, at most 15 characters. Any other edit beeps and
// is rejected. IPAddressTextValidator checks the complete address.

#pragma once

#include <QString>
#include <QValidator>

class OnlyIntegerValueFormatter : public QValidator {
    Q_OBJECT

  public:
    using QValidator::QValidator;

    /// Whether the field may hold `text` after an edit; beeps once if not. `newEditingString` and
    /// `errorDescription` may be null; otherwise they are set to null strings, except for an empty `text`.
    /// Main thread.
    [[nodiscard]] bool isPartialStringValid(const QString& text, QString* newEditingString,
                                            QString* errorDescription) const;

    /// TextField calls this once per edit. Never returns Intermediate, which would suppress editingFinished.
    State validate(QString& text, int& cursor) const override;
};
