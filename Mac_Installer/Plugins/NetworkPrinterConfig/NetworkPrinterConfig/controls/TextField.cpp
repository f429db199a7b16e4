#include "NetworkPrinterConfig/controls/TextField.h"

#include <QEvent>
#include <QPalette>
#include <QValidator>

TextField::TextField(QWidget* parent) : QLineEdit(parent) {
    keepPlaceholderReadable();
    connect(this, &QLineEdit::textEdited, this, [this] {
        if (!isBeingEdited_) {
            isBeingEdited_ = true;
            emit didBeginEditing();
        }
    });
    connect(this, &QLineEdit::editingFinished, this, [this] {
        isBeingEdited_ = false;
        emit didEndEditing();
    });
}

void TextField::setStringValue(const QString& text) {
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
    formatter->setParent(this);
    setValidator(formatter);
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
