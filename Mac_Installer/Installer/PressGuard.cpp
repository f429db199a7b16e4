#include "Installer/PressGuard.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QKeyEvent>
#include <QMouseEvent>

#include <algorithm>
#include <utility>

namespace {

constexpr int longestInterval = 500;  // ms; some users need longer double clicks, but not longer pauses

/// Keys that press buttons; other keys may repeat.
bool pressesButton(const QKeyEvent& event) {
    const int key = event.key();
    return key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Space ||
           event.modifiers().testFlag(Qt::AltModifier);
}

bool isButton(const QObject* object) {
    return qobject_cast<const QAbstractButton*>(object) != nullptr;
}

}  // namespace

PressGuard::PressGuard(QObject* parent) : QObject(parent) {
    QCoreApplication::instance()->installEventFilter(this);
}

bool PressGuard::takePress() {
    const Press press = std::exchange(seen_, {});
    const auto interval =
        static_cast<quint64>(std::min(QApplication::doubleClickInterval(), longestInterval));
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
            isRepeat_ = key->isAutoRepeat();
            if (!pressesButton(*key)) {
                return false;
            }
            if (!isRepeat_) {
                seen_ = {key->key(), key->timestamp()};
            }
            // A key that its widget ignores reaches the dialog, which presses its default button.
            return isRepeat_ && event->type() == QEvent::KeyPress &&
                   (isButton(watched) || qobject_cast<QDialog*>(watched) != nullptr);
        }
        case QEvent::Shortcut:  // Such as a mnemonic; follows its ShortcutOverride.
            return isRepeat_ && isButton(watched);
        case QEvent::MetaCall:
            if (isButton(watched)) {
                seen_ = {};  // An assistive press, posted by ButtonActions: no input event caused it.
            }
            return false;
        default:
            return false;
    }
}
