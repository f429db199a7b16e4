// Counts a press of Continue or Go Back once: not again for the second press of a double click, nor while a
// key is held down.

#pragma once

#include <QObject>

class PressGuard : public QObject {
    Q_OBJECT

  public:
    /// Watches the application's input from now on. Auto-repeated Return, Enter, Space and Alt keys are
    /// dropped for the whole application, so that a held key can't dismiss an alert unread; pages can't rely
    /// on them in text fields.
    explicit PressGuard(QObject* parent);

    /// Whether the press that has just clicked a button counts: not within the double-click interval after
    /// the last one that counted, if it is the same key, or the mouse again. Compares the timestamps of the
    /// input events, so presses that waited for a busy page are told apart as well. Presses by assistive
    /// programs carry no timestamp and always count. Main thread; called once per click.
    [[nodiscard]] bool takePress();

    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    struct Press {
        int key = 0;       // 0 for the mouse
        quint64 time = 0;  // in milliseconds of the platform; 0 for none
    };

    Press seen_;     // the last one, until its release
    Press counted_;  // the last one that counted
};
