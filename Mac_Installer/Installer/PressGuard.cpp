#include "Installer/PressGuard.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>

#include <utility>

namespace {

/// Keys that press a button; the others of a page may be held down.
bool pressesButton(const QKeyEvent& event) {
    const int key = event.key();
    return key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Space ||
           event.modifiers().testFlag(Qt::AltModifier);
}

}  // namespace

PressGuard::PressGuard(QObject* parent) : QObject(parent) {
    QCoreApplication::instance()->installEventFilter(this);
}

bool PressGuard::takePress() {
    const quint64 pressed = std::exchange(pressed_, 0);
    const auto interval = static_cast<quint64>(QApplication::doubleClickInterval());
    if (pressed != 0 && counted_ != 0 && pressed >= counted_ && pressed - counted_ < interval) {
        return false;
    }
    counted_ = pressed;
    return true;
}

bool PressGuard::eventFilter(QObject* /*watched*/, QEvent* event) {
    switch (event->type()) {
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonDblClick:
            pressed_ = static_cast<QMouseEvent*>(event)->timestamp();
            return false;
        case QEvent::ShortcutOverride:
        case QEvent::KeyPress: {
            auto* const key = static_cast<QKeyEvent*>(event);
            if (!pressesButton(*key)) {
                return false;
            }
            if (key->isAutoRepeat()) {
                key->accept();  // An accepted ShortcutOverride triggers no mnemonic.
                return true;
            }
            pressed_ = key->timestamp();
            return false;
        }
        case QEvent::MouseButtonRelease:
        case QEvent::KeyRelease:
            // Once the release has been handled, a click comes from elsewhere.
            QMetaObject::invokeMethod(
                this, [this] { pressed_ = 0; }, Qt::QueuedConnection);
            return false;
        default:
            return false;
    }
}
