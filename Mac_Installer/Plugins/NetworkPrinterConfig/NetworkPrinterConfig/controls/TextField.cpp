#include "NetworkPrinterConfig/controls/TextField.h"

#include "InstallerPlugins/ButtonActions.h"
#include "NetworkPrinterConfig/controls/QuietColour.h"

#include <QEvent>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QPalette>
#include <QScopedValueRollback>

#include <chrono>
#include <utility>

/// Wraps the formatter. QLineEdit validates every change once, but rejects only keys, paste and drop; for all
/// other changes, TextField applies the stored result.
class TextField::Guard : public QValidator {
  public:
    explicit Guard(TextField* field) : QValidator(field), field_(field) {}

    State validate(QString& text, int& cursor) const override {
        if (field_->isProgram_ || text == field_->accepted_) {
            result = Acceptable;  // Not an edit: QLineEdit also validates on focus loss.
        } else if (!field_->isEditable() || !isOperable(field_)) {
            result = Invalid;
        } else {
            result = formatter != nullptr ? formatter->validate(text, cursor) : Acceptable;
            if (result == Invalid) {
                field_->showHint();
            }
        }
        return result;
    }

    QValidator* formatter = nullptr;    // child
    mutable State result = Acceptable;  // of the last edit

  private:
    TextField* field_;
};

TextField::TextField(QWidget* parent) : QLineEdit(parent), guard_(new Guard(this)) {
    keepQuietTextReadable();
    setValidator(guard_);
    connect(this, &QLineEdit::textChanged, this, &TextField::followChange);
    connect(this, &QLineEdit::editingFinished, this, &TextField::endEditing);
    hintTime_.setSingleShot(true);
    hintTime_.setInterval(std::chrono::seconds(10));
    connect(&hintTime_, &QTimer::timeout, this, &TextField::hideHint);
}

void TextField::setStringValue(const QString& text) {
    const QScopedValueRollback guard(isProgram_, true);
    if (text != accepted_) {
        hideHint();
    }
    setText(text);
    accepted_ = text;
}

void TextField::setFormatter(QValidator* formatter) {
    formatter->setParent(guard_);
    guard_->formatter = formatter;
}

void TextField::showHint() {
    if (hintText_.isEmpty()) {
        return;
    }
    if (!hint_) {
        hint_ = new Hint(parentWidget());
    }
    hint_->appear(hintText_, *this);
    hintTime_.start();
}

void TextField::hideHint() {
    if (hint_) {
        hint_->hide();
    }
}

bool TextField::event(QEvent* event) {
    switch (event->type()) {
        case QEvent::PaletteChange:
            keepQuietTextReadable();
            break;
        case QEvent::EnabledChange:
        case QEvent::FocusOut:
        case QEvent::Resize:
            hideHint();
            break;
        default:
            break;
    }
    return QLineEdit::event(event);
}

void TextField::followChange() {
    if (isProgram_ || isComposing_) {
        return;
    }
    if (guard_->result == QValidator::Invalid) {
        setStringValue(accepted_);
    } else {
        accept();
    }
}

void TextField::accept() {
    hideHint();
    accepted_ = text();
    if (!std::exchange(isBeingEdited_, true)) {
        emit didBeginEditing();
    }
    if (!hasFocus()) {
        endEditing();
    }
}

void TextField::endEditing() {
    isBeingEdited_ = false;
    emit didEndEditing();
}

/// An input method's preedit replaces the selected text, which QLineEdit deletes as an edit of its own. Only
/// a commit or a replacement of surrounding text counts as an edit.
void TextField::inputMethodEvent(QInputMethodEvent* event) {
    guard_->result = QValidator::Acceptable;
    {
        const QScopedValueRollback guard(isComposing_, true);
        QLineEdit::inputMethodEvent(event);
    }
    if (text() == accepted_) {
        return;
    }
    const bool isEdit = !event->commitString().isEmpty() || event->replacementLength() > 0;
    if (isEdit && guard_->result == QValidator::Acceptable) {
        accept();
    } else if (event->preeditString().isEmpty()) {
        setStringValue(accepted_);
    }
}

/// The mnemonic of a disabled button must not be typed into the field.
void TextField::keyPressEvent(QKeyEvent* event) {
    if (event->modifiers().testFlag(Qt::AltModifier)) {
        event->ignore();
    } else {
        QLineEdit::keyPressEvent(event);
    }
}

/// The placeholder and the text of a locked field. Some desktops' dark palettes keep the light one's
/// placeholder.
void TextField::keepQuietTextReadable() {
    QPalette colours = palette();
    const QColor text = colours.color(QPalette::Active, QPalette::Text);
    colours.setColor(QPalette::PlaceholderText,
                     quietColour(text, colours.color(QPalette::Active, QPalette::Base)));
    colours.setColor(QPalette::Disabled, QPalette::Text,
                     quietColour(text, colours.color(QPalette::Disabled, QPalette::Base)));
    if (colours != palette()) {
        setPalette(colours);
    }
}
