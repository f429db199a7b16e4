// Makes Continue and Go Back act once per press: the second press of a double click and auto-repeated keys
// are ignored.

#pragma once

#include <QObject>

class PressGuard : public QObject {
    Q_OBJECT

  public:
    /// Filters the application's input events from now on. Auto-repeated keys and mnemonics press no button
    /// and no dialog's default button, so that a held key can't dismiss an alert unread.
    explicit PressGuard(QObject* parent);

    /// Whether the press that caused the current click counts. It doesn't if it follows the last press that
    /// counted within the double-click interval, 500 ms at most, and comes from the same key, or if both are
    /// mouse presses. Compares the timestamps of the input events, so it also works for presses queued while
    /// a page was busy. Presses by assistive technology have no timestamp and always count. Main thread; call
    /// once per click.
    [[nodiscard]] bool takePress();

    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    struct Press {
        int key = 0;       // 0 for the mouse
        quint64 time = 0;  // platform time in milliseconds; 0 if none
    };

    bool isRepeat_ = false;  // whether the last key was auto-repeated
    Press seen_;             // the last press, until it is taken
    Press counted_;          // the last press that counted
};
