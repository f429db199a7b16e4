// A line edit with a formatter and signals for the start and end of editing by the user.
//
// Every change not made by the program counts as an edit, whether by keys, paste, drop, input method or
// assistive technology. The formatter checks the whole resulting text, and a rejected edit restores the old
// one and shows a hint below the field, which screen readers announce. A field that is read-only, disabled,
// hidden or behind an alert does not change.

#pragma once

#include "NetworkPrinterConfig/controls/Hint.h"

#include <QLineEdit>
#include <QPointer>
#include <QTimer>
#include <QValidator>

class TextField : public QLineEdit {
    Q_OBJECT

  public:
    explicit TextField(QWidget* parent = nullptr);

    /// Sets the text without emitting the signals below or calling the formatter.
    void setStringValue(const QString& text);

    /// The text; never null.
    [[nodiscard]] QString stringValue() const { return QStringLiteral("") + text(); }

    void setEditable(bool editable) { setReadOnly(!editable); }
    [[nodiscard]] bool isEditable() const { return !isReadOnly(); }

    /// Takes ownership of the formatter, which returns Acceptable or Invalid and beeps by itself.
    void setFormatter(QValidator* formatter);

    /// The text of the hint, which is shown once per edit that the formatter rejects, until the next change
    /// or until the field loses the focus, for ten seconds at most.
    void setRejectionHint(const QString& text) { hintText_ = text; }

  signals:
    /// The user's first change since editing last ended. An edit without focus ends immediately.
    void didBeginEditing();
    void didEndEditing();

  protected:
    bool event(QEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    class Guard;

    void keepQuietTextReadable();
    void followChange();
    void accept();
    void endEditing();
    void showHint();
    void hideHint();

    Guard* guard_;
    QString accepted_;          // text after the last edit or setStringValue()
    bool isProgram_ = false;    // programmatic change in progress
    bool isComposing_ = false;  // input method event in progress
    bool isBeingEdited_ = false;
    QString hintText_;
    QPointer<Hint> hint_;  // child of the field's parent; created for the first rejected edit
    QTimer hintTime_;
};
