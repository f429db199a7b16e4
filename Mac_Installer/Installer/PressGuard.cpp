#include "Installer/PressGuard.h"

#include <QAbstractButton>
#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>

#include <utility>

namespace {

/// Keys that press buttons; other keys may repeat.
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
    const Press press = std::exchange(seen_, {});
    const auto interval = static_cast<quint64>(QApplication::doubleClickInterval());
    // The difference is unsigned: if the clock was set back or has wrapped, the press counts as new.
    if (counted_.time != 0 && press.key == counted_.key && press.time - counted_.time < interval) {
        return false;
    }
    counted_ = press;
    return true;
}

bool PressGuard::eventFilter(QObject* watched, QEvent* event) {
    switch (event->type()) {
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonDblClick:
            seen_ = {0, static_cast<QMouseEvent*>(event)->timestamp()};
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
            seen_ = {key->key(), key->timestamp()};
            return false;
        }
        case QEvent::MetaCall:
            if (qobject_cast<QAbstractButton*>(watched) != nullptr) {
                seen_ = {};  // An assistive press, posted by ButtonActions: no input event caused it.
            }
            return false;
        default:
            return false;
    }
}
