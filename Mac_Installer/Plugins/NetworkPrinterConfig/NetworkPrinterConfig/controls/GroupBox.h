// Group boxes that leave all keys to the window. QGroupBox takes those that press buttons, on some desktops
// Return, even if it can't be checked.

#pragma once

#include <QEvent>
#include <QGroupBox>

class GroupBox : public QGroupBox {
  public:
    using QGroupBox::QGroupBox;

  protected:
    bool event(QEvent* event) override {
        if (event->type() == QEvent::KeyPress || event->type() == QEvent::KeyRelease) {
            event->ignore();
            return false;
        }
        return QGroupBox::event(event);
    }
};

/// A group box without frame, title and margins, for content that has its own.
class PlainGroup : public GroupBox {
  public:
    using GroupBox::GroupBox;

  protected:
    bool event(QEvent* event) override {
        setContentsMargins(0, 0, 0, 0);  // QGroupBox reserves the frame's, each time it is resized.
        return GroupBox::event(event);
    }
    void paintEvent(QPaintEvent* /*event*/) override {}
};
