#include "NetworkPrinterConfig/controls/TextField.h"

#include <QValidator>

TextField::TextField(QWidget* parent) : QLineEdit(parent) {
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
