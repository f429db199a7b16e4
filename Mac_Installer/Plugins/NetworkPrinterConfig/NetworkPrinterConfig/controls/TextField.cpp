#include "NetworkPrinterConfig/controls/TextField.h"

#include "InstallerPlugins/ImmediateButton.h"

#include <QEvent>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QPalette>
#include <QScopedValueRollback>

#include <utility>

/// Stands between the line edit and the formatter. QLineEdit asks its validator once per change, but obeys it
/// only for keys, paste and drop; the verdict is kept for the other ways to change the text.
class TextField::Guard : public QValidator {
  public:
    explicit Guard(TextField* field) : QValidator(field), field_(field) {}

    State validate(QString& text, int& cursor) const override {
        if (field_->isProgram_ || text == field_->accepted_) {
            return Acceptable;  // Nobody's edit; the line edit asks again when the focus leaves it.
        }
        const bool isLocked = !field_->isEditable() || !isOperable(field_);
        verdict = isLocked ? Invalid : formatter ? formatter->validate(text, cursor) : Acceptable;
        return verdict;
    }

    QValidator* formatter = nullptr;     // child
    mutable State verdict = Acceptable;  // on the last edit

  private:
    const TextField* field_;
};

TextField::TextField(QWidget* parent) : QLineEdit(parent), guard_(new Guard(this)) {
    keepPlaceholderReadable();
    setValidator(guard_);
    connect(this, &QLineEdit::textChanged, this, [this] {
        if (!isComposing_) {
            acceptOrUndo();
        }
    });
    connect(this, &QLineEdit::editingFinished, this, &TextField::endEditing);
}

void TextField::setStringValue(const QString& text) {
    const QScopedValueRollback guard(isProgram_, true);
    setText(text);
}

QString TextField::stringValue() const {
    const QString value = text();
    return value.isNull() ? QStringLiteral("") : value;
}

void TextField::setEditable(bool editable) {
    setReadOnly(!editable);
}

void TextField::setFormatter(QValidator* formatter) {
    formatter->setParent(guard_);
    guard_->formatter = formatter;
}

void TextField::acceptOrUndo() {
    if (isProgram_) {
        accepted_ = text();
    } else if (std::exchange(guard_->verdict, QValidator::Acceptable) == QValidator::Invalid) {
        setStringValue(accepted_);
    } else {
        accepted_ = text();
        if (!std::exchange(isBeingEdited_, true)) {
            emit didBeginEditing();
        }
        if (!hasFocus()) {
            endEditing();
        }
    }
}

void TextField::endEditing() {
    isBeingEdited_ = false;
    emit didEndEditing();
}

/// An input method shows its preedit in place of the selected text, which it deletes as an edit of its own.
/// It becomes an edit of ours with the commit, or never.
void TextField::inputMethodEvent(QInputMethodEvent* event) {
    guard_->verdict = QValidator::Acceptable;
    {
        const QScopedValueRollback guard(isComposing_, true);
        QLineEdit::inputMethodEvent(event);
    }
    const bool isCommitted = !event->commitString().isEmpty() && guard_->verdict == QValidator::Acceptable;
    const bool isOver = event->preeditString().isEmpty();
    if ((isCommitted || isOver) && text() != accepted_) {
        guard_->verdict = isCommitted ? QValidator::Acceptable : QValidator::Invalid;
        acceptOrUndo();
    }
}

/// The mnemonic of a disabled button must not type its letter.
void TextField::keyPressEvent(QKeyEvent* event) {
    if (event->modifiers().testFlag(Qt::AltModifier)) {
        event->ignore();
    } else {
        QLineEdit::keyPressEvent(event);
    }
}

void TextField::changeEvent(QEvent* event) {
    if (event->type() == QEvent::ApplicationPaletteChange) {
        keepPlaceholderReadable();
    }
    QLineEdit::changeEvent(event);
}

/// Some desktops' dark palettes leave the placeholder's colour as it was for a light one.
void TextField::keepPlaceholderReadable() {
    constexpr float strength = 0.65F;
    QPalette colours = palette();
    QColor quiet = colours.color(QPalette::Active, QPalette::Text);
    quiet.setAlphaF(strength);
    colours.setColor(QPalette::PlaceholderText, quiet);
    setPalette(colours);
}
