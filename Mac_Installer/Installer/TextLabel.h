// Text that users may want to copy, and that screen readers must read.

#pragma once

#include <QLabel>
#include <QStyle>
#include <QStyleOptionFocusRect>
#include <QStylePainter>

/// Plain text that wraps, can be copied and is reached by the Tab key.
class TextLabel : public QLabel {
  public:
    explicit TextLabel(QWidget* parent = nullptr) : QLabel(parent) {
        setTextFormat(Qt::PlainText);
        setWordWrap(true);
        setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
        setFocusPolicy(Qt::StrongFocus);
    }

  protected:
    void paintEvent(QPaintEvent* event) override {
        QLabel::paintEvent(event);
        if (hasFocus()) {
            QStylePainter painter(this);
            QStyleOptionFocusRect option;
            option.initFrom(this);
            option.backgroundColor = palette().color(backgroundRole());
            painter.drawPrimitive(QStyle::PE_FrameFocusRect, option);
        }
    }
};
