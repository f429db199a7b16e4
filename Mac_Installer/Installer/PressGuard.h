// One press of a button counts once: not again as the second press of a double click, and not again while its
// key is held down.

#pragma once

#include <QObject>

class PressGuard : public QObject {
    Q_OBJECT

  public:
    /// Watches the input of the application from now on. Repetitions of Return, Enter, Space and of mnemonics
    /// by a key held down reach nobody any more, so that they can't close an alert unread either.
    explicit PressGuard(QObject* parent);

    /// Whether the press that clicked a button just now counts. False within a double click's time after the
    /// last press that counted; that time is the input events' own, so presses that had to wait for a busy
    /// page are told apart as well. Presses of assistive programs have no such time, and always count. Main
    /// thread; asked once per click.
    [[nodiscard]] bool takePress();

    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    quint64 pressed_ = 0;  ///< Time of the last press seen, in milliseconds of the platform; 0 for none.
    quint64 counted_ = 0;  ///< The same for the last press that counted.
};
