#include "NetworkPrinterConfig/controls/RadioMatrix.h"

#include "NetworkPrinterConfig/controls/QuietColour.h"

#include <QButtonGroup>
#include <QEvent>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QRadioButton>
#include <QSignalBlocker>
#include <QStyle>
#include <QStyleOptionButton>

namespace {

/// A radio button whose circle contrasts with the window in Fusion, and which leaves Return to the window's
/// default button. Fusion derives the outline from a darkened window colour, which is hardly visible.
class Cell : public QRadioButton {
  public:
    using QRadioButton::QRadioButton;

  protected:
    void initStyleOption(QStyleOptionButton* option) const override {
        QRadioButton::initStyleOption(option);
        const QColor window = option->palette.color(QPalette::Window);
        const QColor text = option->palette.color(QPalette::WindowText);
        const bool isDark = text.lightness() > window.lightness();
        option->palette.setColor(QPalette::Window, isDark ? text : window.darker());
    }

    /// Some desktops have Return press buttons; a press of a selected cell would repeat its action.
    void keyPressEvent(QKeyEvent* event) override {
        if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
            event->ignore();
        } else {
            QRadioButton::keyPressEvent(event);
        }
    }
};

}  // namespace

RadioMatrix::RadioMatrix(QWidget* parent)
    : PlainGroup(parent), grid_(new QGridLayout(this)), group_(new QButtonGroup(this)) {
    grid_->setContentsMargins(0, 0, 0, 0);
    grid_->setVerticalSpacing(2);
    keepLockedTextReadable();
    // Toggled signals also cover selections without a click (an assistive "Toggle"), but not a click on the
    // selected cell.
    connect(group_, &QButtonGroup::idToggled, this, [this](int /*index*/, bool isSelected) {
        keepTabStopOnSelection();
        if (isSelected) {
            emit action();
        }
    });
    connect(group_, &QButtonGroup::buttonPressed, this,
            [this](const QAbstractButton* cell) { wasSelected_ = cell->isChecked(); });
    connect(group_, &QButtonGroup::buttonClicked, this, [this] {
        if (wasSelected_) {
            emit action();
        }
    });
}

bool RadioMatrix::event(QEvent* event) {
    if (event->type() == QEvent::PaletteChange) {
        keepLockedTextReadable();
    }
    return PlainGroup::event(event);
}

void RadioMatrix::keepLockedTextReadable() {
    QPalette colours = palette();
    const QColor quiet = quietColour(colours.color(QPalette::Active, QPalette::WindowText),
                                     colours.color(QPalette::Disabled, QPalette::Window));
    colours.setColor(QPalette::Disabled, QPalette::WindowText, quiet);
    colours.setColor(QPalette::Disabled, QPalette::Text, quiet);  // of the dot
    if (colours != palette()) {
        setPalette(colours);
    }
}

void RadioMatrix::setCells(const QStringList& labels) {
    for (int index = 0; index < labels.size(); ++index) {
        auto* const cell = new Cell(labels.at(index), this);
        grid_->addWidget(cell, gridRow(index), index % columns_);
        group_->addButton(cell, index);
    }
}

void RadioMatrix::setDescriptions(const QStringList& descriptions) {
    const int indicator = style()->pixelMetric(QStyle::PM_ExclusiveIndicatorWidth, nullptr, this) +
                          style()->pixelMetric(QStyle::PM_RadioButtonLabelSpacing, nullptr, this);
    for (int index = 0; index < descriptions.size(); ++index) {
        const int row = gridRow(index);
        auto* const sentence = new QLabel(descriptions.at(index), this);
        sentence->setWordWrap(true);
        sentence->setIndent(indicator);
        grid_->addWidget(sentence, row + 1, index % columns_);
        if (row > 0) {
            grid_->setRowMinimumHeight(row - 1, fontMetrics().height() / 2);
        }
        group_->button(index)->setAccessibleDescription(descriptions.at(index));
    }
}

/// Makes the selected cell the only tab stop. Qt does this only when a cell gets the focus, which can't
/// happen while the matrix is disabled.
void RadioMatrix::keepTabStopOnSelection() {
    for (QAbstractButton* const cell : group_->buttons()) {
        cell->setFocusPolicy(cell->isChecked() ? Qt::StrongFocus : Qt::ClickFocus);
    }
}

int RadioMatrix::selectedRow() const {
    const int index = group_->checkedId();
    return index < 0 ? -1 : index / columns_;
}

int RadioMatrix::selectedColumn() const {
    const int index = group_->checkedId();
    return index < 0 ? -1 : index % columns_;
}

QAbstractButton* RadioMatrix::cellAt(int row, int column) const {
    return group_->button(row * columns_ + column);
}

void RadioMatrix::setState(int state, int row, int column) {
    const QSignalBlocker blocker(group_);
    cellAt(row, column)->setChecked(state != 0);
    keepTabStopOnSelection();
}
