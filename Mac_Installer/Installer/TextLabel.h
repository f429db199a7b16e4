#pragma once

#include <QLabel>
#include <QStyle>
#include <QStyleOptionFocusRect>
#include <QStylePainter>

/// Plain text that wraps, that can be copied, and that the Tab key reaches, so that screen readers read it.
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
