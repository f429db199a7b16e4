// A short text below a control, over its neighbours, which screen readers announce each time it appears.

#pragma once

#include <QLabel>

class Hint : public QLabel {
    Q_OBJECT

  public:
    explicit Hint(QWidget* parent);

    /// Shows `text` below `control`, which has the same parent. If it is shown already, it is announced
    /// again.
    void appear(const QString& text, const QWidget& control);
};
