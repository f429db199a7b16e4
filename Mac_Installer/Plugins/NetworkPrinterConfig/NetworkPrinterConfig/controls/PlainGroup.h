// A group box that groups without a frame or title of its own, where its content has both.

#pragma once

#include <QGroupBox>

class PlainGroup : public QGroupBox {
    Q_OBJECT

  public:
    using QGroupBox::QGroupBox;

  protected:
    void paintEvent(QPaintEvent* /*event*/) override {}
};
