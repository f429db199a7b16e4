// What the tests of the page and of the window stand on: beeps counted, alerts closed as a user closes
// them, and a found list.

#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <QTimer>

#include <functional>

class ComboBox;

/// Counts the beeps of the page and keeps them silent.
class BeepCounter {
  public:
    BeepCounter();
    BeepCounter(const BeepCounter&) = delete;
    BeepCounter& operator=(const BeepCounter&) = delete;
    ~BeepCounter();

    [[nodiscard]] int take();

  private:
    static inline int count_ = 0;
};

/// Closes each alert by Return, by Escape, by a click and by the window's own button in turn.
class AlertReader : public QObject {
    Q_OBJECT

  public:
    AlertReader();

    /// The alerts since the last call, each as "message text|informative text|buttons".
    [[nodiscard]] QStringList take();

    std::function<void()> beforeClosing;  ///< Called while an alert stands; may be empty.

  private:
    void closeAlert();

    QStringList alerts_;
    int closed_ = 0;
    QTimer timer_;
};

/// The found list with the manual entry and these printers, such as "Tovik KV260 @10.0.0.5".
void setFoundPrinters(const QStringList& printers);

/// The items of a list, in order.
[[nodiscard]] QStringList itemsOf(const ComboBox& list);
