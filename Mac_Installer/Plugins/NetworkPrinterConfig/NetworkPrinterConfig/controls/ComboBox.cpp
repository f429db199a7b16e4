#include "NetworkPrinterConfig/controls/ComboBox.h"

#include "InstallerPlugins/ButtonActions.h"

#include <QKeyEvent>
#include <QSignalBlocker>
#include <QWheelEvent>

ComboBox::ComboBox(QWidget* parent) : QComboBox(parent) {
    setFocusPolicy(Qt::StrongFocus);  // The default WheelFocus would give it the focus before wheelEvent().
    connect(this, &QComboBox::currentIndexChanged, this, &ComboBox::selectionDidChange);
}

void ComboBox::removeAllItems() {
    const QSignalBlocker blocker(this);
    clear();
}

void ComboBox::addItemsWithObjectValues(const QStringList& values) {
    // QComboBox selects the first item added to an empty list.
    const QSignalBlocker blocker(this);
    const int selected = currentIndex();
    addItems(values);
    setCurrentIndex(selected);
}

void ComboBox::showPopup() {
    if (isOperable(this)) {
        emit willPopUp();
        QComboBox::showPopup();
    }
}

/// Leaves Return to the window's default button; on some desktops it would open the list.
void ComboBox::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        event->ignore();
    } else {
        QComboBox::keyPressEvent(event);
    }
}

void ComboBox::wheelEvent(QWheelEvent* event) {
    if (hasFocus()) {
        QComboBox::wheelEvent(event);
    } else {
        event->ignore();
    }
}
