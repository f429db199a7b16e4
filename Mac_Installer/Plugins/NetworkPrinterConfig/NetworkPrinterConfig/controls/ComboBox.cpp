#include "NetworkPrinterConfig/controls/ComboBox.h"

#include <QSignalBlocker>

ComboBox::ComboBox(QWidget* parent) : QComboBox(parent) {
    connect(this, &QComboBox::currentIndexChanged, this, &ComboBox::selectionDidChange);
}

void ComboBox::removeAllItems() {
    const QSignalBlocker blocker(this);
    clear();
}

void ComboBox::addItemWithObjectValue(const QString& value) {
    addItemsWithObjectValues({value});
}

void ComboBox::addItemsWithObjectValues(const QStringList& values) {
    // The base class selects the first item that an empty list receives.
    const QSignalBlocker blocker(this);
    const int selected = currentIndex();
    addItems(values);
    setCurrentIndex(selected);
}

void ComboBox::selectItemAtIndex(int index) {
    setCurrentIndex(index);
}

QString ComboBox::objectValueOfSelectedItem() const {
    return currentIndex() < 0 ? QString() : currentText();
}

void ComboBox::showPopup() {
    emit willPopUp();
    QComboBox::showPopup();
}
