#include "NetworkPrinterConfig/controls/RadioMatrix.h"

#include <QGridLayout>
#include <QLabel>
#include <QRadioButton>
#include <QStyle>

#include <algorithm>

RadioMatrix::RadioMatrix(QWidget* parent) : QWidget(parent), grid_(new QGridLayout(this)) {
    grid_->setContentsMargins(0, 0, 0, 0);
    grid_->setVerticalSpacing(2);
}

void RadioMatrix::setCells(const QStringList& labels) {
    labels_ = labels;
    rebuild();
}

void RadioMatrix::setDescriptions(const QStringList& descriptions) {
    descriptions_ = descriptions;
    rebuild();
}

void RadioMatrix::setColumns(int columns) {
    columns_ = std::max(columns, 1);
    rebuild();
}

void RadioMatrix::rebuild() {
    qDeleteAll(buttons_);
    qDeleteAll(sentences_);
    buttons_.clear();
    sentences_.clear();
    const int indicator = style()->pixelMetric(QStyle::PM_ExclusiveIndicatorWidth, nullptr, this) +
                          style()->pixelMetric(QStyle::PM_RadioButtonLabelSpacing, nullptr, this);
    for (int index = 0; index < labels_.size(); ++index) {
        const int row = 3 * (index / columns_);  // Below each row of cells, one of sentences and a gap.
        const int column = index % columns_;
        auto* const button = new QRadioButton(labels_.at(index), this);
        connect(button, &QRadioButton::clicked, this, &RadioMatrix::action);
        connect(button, &QRadioButton::toggled, this, &RadioMatrix::keepTabStopOnSelection);
        grid_->addWidget(button, row, column);
        buttons_.push_back(button);
        if (index < descriptions_.size()) {
            auto* const sentence = new QLabel(descriptions_.at(index), this);
            sentence->setWordWrap(true);
            sentence->setIndent(indicator);
            button->setAccessibleDescription(descriptions_.at(index));
            grid_->addWidget(sentence, row + 1, column);
            grid_->setRowMinimumHeight(row + 2,
                                       index + columns_ < labels_.size() ? fontMetrics().height() / 2 : 0);
            sentences_.push_back(sentence);
        }
    }
}

/// Tab reaches the selected cell alone. Qt sees to that only when a cell gets the focus, which none does
/// while the matrix is disabled.
void RadioMatrix::keepTabStopOnSelection() {
    const bool isAnySelected = selectedIndex() >= 0;
    for (QRadioButton* const button : buttons_) {
        button->setFocusPolicy(button->isChecked() || !isAnySelected ? Qt::StrongFocus : Qt::ClickFocus);
    }
}

int RadioMatrix::selectedIndex() const {
    const auto selected =
        std::find_if(buttons_.begin(), buttons_.end(), [](auto* button) { return button->isChecked(); });
    return selected == buttons_.end() ? -1 : static_cast<int>(selected - buttons_.begin());
}

int RadioMatrix::selectedRow() const {
    const int index = selectedIndex();
    return index < 0 ? -1 : index / columns_;
}

int RadioMatrix::selectedColumn() const {
    const int index = selectedIndex();
    return index < 0 ? -1 : index % columns_;
}

QRadioButton* RadioMatrix::cellAt(int row, int column) const {
    const int index = row * columns_ + column;
    const bool exists =
        row >= 0 && column >= 0 && column < columns_ && index < static_cast<int>(buttons_.size());
    return exists ? buttons_[static_cast<std::size_t>(index)] : nullptr;
}

void RadioMatrix::selectCellAtRow(int row, int column) {
    if (QRadioButton* const cell = cellAt(row, column)) {
        cell->setChecked(true);
    }
}

void RadioMatrix::setState(int state, int row, int column) {
    if (QRadioButton* const cell = cellAt(row, column)) {
        cell->setChecked(state != 0);
    }
}
