#include "Installer/StepList.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QIcon>
#include <QLabel>
#include <QPainter>
#include <QPainterPath>
#include <QVBoxLayout>

/// The round mark of a step, in palette colours and at text size.
class StepMark : public QWidget {
  public:
    enum class State { Ahead, Current, Done };

    explicit StepMark(QWidget* parent) : QWidget(parent) {
        setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    }

    void setState(State state) {
        state_ = state;
        update();
    }

    [[nodiscard]] QSize sizeHint() const override {
        const int side = fontMetrics().height();
        return {side, side};
    }

  protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const qreal side = width();
        const QRectF circle = QRectF(rect()).adjusted(side * 0.12, side * 0.12, -side * 0.12, -side * 0.12);
        const QColor accent = palette().color(QPalette::Highlight);
        if (state_ == State::Ahead) {
            QColor quiet = palette().color(QPalette::Text);
            quiet.setAlphaF(0.5F);
            painter.setPen(QPen(quiet, side * 0.09));
            painter.drawEllipse(circle);
            return;
        }
        painter.setPen(Qt::NoPen);
        painter.setBrush(accent);
        painter.drawEllipse(circle);
        const QColor inside = palette().color(QPalette::HighlightedText);
        if (state_ == State::Current) {
            painter.setBrush(inside);
            painter.drawEllipse(circle.center(), side * 0.14, side * 0.14);
            return;
        }
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(inside, side * 0.11, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        QPainterPath tick(QPointF(side * 0.32, side * 0.52));
        tick.lineTo(side * 0.45, side * 0.65);
        tick.lineTo(side * 0.68, side * 0.38);
        painter.drawPath(tick);
    }

  private:
    State state_ = State::Ahead;
};

namespace {

QLabel* makeBanner(QWidget* parent) {
    auto* const banner = new QLabel(parent);
    banner->setAlignment(Qt::AlignCenter);
    banner->setPixmap(QIcon(QStringLiteral(":/installer/banner.svg")).pixmap(150, 100));
    // Let the layout shrink the banner instead of enlarging the window.
    banner->setMinimumSize(1, 1);
    return banner;
}

}  // namespace

StepList::StepList(QWidget* parent) : QFrame(parent), column_(new QVBoxLayout), banner_(makeBanner(this)) {
    setFrameShape(QFrame::StyledPanel);
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::Base);
    setForegroundRole(QPalette::Text);
    setAccessibleName(tr("Steps"));
    column_->setSpacing(fontMetrics().height() * 2 / 3);
    auto* const whole = new QVBoxLayout(this);
    whole->setContentsMargins(16, 16, 16, 16);
    whole->addLayout(column_);
    whole->addStretch();
    whole->addWidget(banner_);
}

void StepList::resizeEvent(QResizeEvent* event) {
    QFrame::resizeEvent(event);
    const int needed =
        column_->sizeHint().height() + banner_->pixmap().deviceIndependentSize().toSize().height();
    const int available =
        contentsRect().height() - layout()->contentsMargins().top() - layout()->contentsMargins().bottom();
    banner_->setVisible(available >= needed);  // Hide the banner rather than clip it.
}

void StepList::addStep(const QString& title) {
    const Step step{new StepMark(this), new QLabel(title, this)};
    step.label->setTextFormat(Qt::PlainText);
    step.label->setForegroundRole(QPalette::Text);
    auto* const row = new QHBoxLayout;
    row->setSpacing(8);
    row->addWidget(step.mark);
    row->addWidget(step.label, 1);
    column_->addLayout(row);
    steps_.push_back(step);
}

void StepList::setCurrentStep(int step) {
    for (int index = 0; index < static_cast<int>(steps_.size()); ++index) {
        const Step& each = steps_[static_cast<std::size_t>(index)];
        const bool isCurrent = index == step;
        each.mark->setState(isCurrent      ? StepMark::State::Current
                            : index < step ? StepMark::State::Done
                                           : StepMark::State::Ahead);
        QFont font = each.label->font();
        font.setBold(isCurrent);
        each.label->setFont(font);
        const QString place = isCurrent      ? tr("current step")
                              : index < step ? tr("done")
                                             : tr("still to come");
        each.label->setAccessibleName(tr("%1, %2").arg(each.label->text(), place));
    }
}
