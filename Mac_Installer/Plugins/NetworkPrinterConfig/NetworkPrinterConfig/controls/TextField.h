// A line of text that a formatter guards, and that tells when the user begins and ends editing it.
//
// Every change that the program does not make itself counts as an edit, by keys, paste, drop, input method or
// an assistive program: the formatter sees the whole text that it would leave, a refused edit leaves
// the old text, and a field that is locked (not editable, disabled, hidden or behind an alert) stays as it
// is.

#pragma once

#include <QLineEdit>
#include <QString>
#include <QValidator>

class QEvent;

class TextField : public QLineEdit {
    Q_OBJECT

  public:
    explicit TextField(QWidget* parent = nullptr);

    /// Sets the text without any of the signals below; the formatter is not asked.
    void setStringValue(const QString& text);

    /// The text; empty but never null.
    [[nodiscard]] QString stringValue() const;

    void setEditable(bool editable);
    [[nodiscard]] bool isEditable() const { return !isReadOnly(); }

    /// The field owns the formatter from now on. It answers Acceptable or Invalid, and beeps by itself.
    void setFormatter(QValidator* formatter);

  signals:
    /// The user's first change since editing last ended. An edit while the field has no focus ends at once.
    void didBeginEditing();
    void didEndEditing();

  protected:
    void changeEvent(QEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    class Guard;

    void keepPlaceholderReadable();
    void followChange();
    void accept();
    void undo();
    void endEditing();

    Guard* guard_;
    QString accepted_;          // the text as the last edit or the program left it
    bool isProgram_ = false;    // the program changes the text
    bool isComposing_ = false;  // an input method's event is being handled
    bool isBeingEdited_ = false;
};
