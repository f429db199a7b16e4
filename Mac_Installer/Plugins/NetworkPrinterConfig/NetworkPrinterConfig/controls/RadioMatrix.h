// A grid of radio buttons, of which one is selected. Programmatic selection emits nothing; every selection by
// the user emits action(), as does a click on the selected cell.

#pragma once

#include "NetworkPrinterConfig/controls/GroupBox.h"

#include <QStringList>

class QAbstractButton;
class QButtonGroup;
class QGridLayout;

class RadioMatrix : public PlainGroup {
    Q_OBJECT

  public:
    explicit RadioMatrix(QWidget* parent = nullptr);

    void setColumns(int columns) { columns_ = columns; }

    /// The cells' labels with mnemonics, row by row. Set once, after the columns.
    void setCells(const QStringList& labels);

    /// A description below each cell, at most one per cell. Set once, after the cells.
    void setDescriptions(const QStringList& descriptions);

    /// Row and column of the selected cell, from 0; -1 if none is selected.
    [[nodiscard]] int selectedRow() const;
    [[nodiscard]] int selectedColumn() const;

    /// Selects a cell, which must exist, and deselects the previous one.
    void selectCellAtRow(int row, int column) { setState(1, row, column); }

    /// Checks (1) or unchecks (0) a cell; the selected cell stays checked until another is selected.
    void setState(int state, int row, int column);

    /// The button of a cell, which must exist.
    [[nodiscard]] QAbstractButton* cellAt(int row, int column) const;

  signals:
    void action();

  protected:
    bool event(QEvent* event) override;

  private:
    /// Each row of cells is followed by a row of descriptions and a gap.
    [[nodiscard]] int gridRow(int index) const { return 3 * (index / columns_); }
    void keepTabStopOnSelection();
    void keepLockedTextReadable();

    int columns_ = 1;
    QGridLayout* grid_;
    QButtonGroup* group_;       // the cells, numbered row by row
    bool wasSelected_ = false;  // whether the cell was selected before the current press
};
