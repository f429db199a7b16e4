// A group box without frame and title, for content that has both.

#pragma once

#include <QGroupBox>

class PlainGroup : public QGroupBox {
  public:
    using QGroupBox::QGroupBox;

  protected:
    void paintEvent(QPaintEvent* /*event*/) override {}
};
