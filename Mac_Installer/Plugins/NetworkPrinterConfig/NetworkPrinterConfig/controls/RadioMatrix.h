// Radio buttons in rows and columns, of which one is selected. Selecting a cell from the program is silent;
// every selection by the user sends the action, and so does a click on the selected cell.

#pragma once

#include <QStringList>
#include <QWidget>

class QAbstractButton;
class QButtonGroup;
class QGridLayout;

class RadioMatrix : public QWidget {
    Q_OBJECT
    /// The cells' labels with their mnemonics, row by row. For the form; set once, after the columns.
    Q_PROPERTY(QStringList cells READ cells WRITE setCells)
    /// A sentence below each cell, at most as many as cells. For the form; set once, after the cells.
    Q_PROPERTY(QStringList descriptions READ descriptions WRITE setDescriptions)

  public:
    explicit RadioMatrix(QWidget* parent = nullptr);

    [[nodiscard]] QStringList cells() const { return labels_; }
    [[nodiscard]] QStringList descriptions() const { return descriptions_; }
    void setColumns(int columns) { columns_ = columns; }
    void setCells(const QStringList& labels);
    void setDescriptions(const QStringList& descriptions);

    /// Row and column of the selected cell, from 0; -1 when none is.
    [[nodiscard]] int selectedRow() const;
    [[nodiscard]] int selectedColumn() const;

    /// Selects a cell, which deselects the one that was. Does nothing for a place without a cell.
    void selectCellAtRow(int row, int column) { setState(1, row, column); }

    /// Switches a cell on (1) or off (0); the selected cell stays on until another is selected.
    void setState(int state, int row, int column);

    /// The buttons, row by row.
    [[nodiscard]] QList<QAbstractButton*> buttons() const;

    /// The button at a place, or null.
    [[nodiscard]] QAbstractButton* cellAt(int row, int column) const;

  signals:
    void action();

  private:
    /// Below each row of cells there is one of sentences and a gap.
    [[nodiscard]] int gridRow(int index) const { return 3 * (index / columns_); }
    void keepTabStopOnSelection();

    QStringList labels_;
    QStringList descriptions_;
    int columns_ = 1;
    QGridLayout* grid_;
    QButtonGroup* group_;       // the cells, numbered row by row
    bool isSelecting_ = false;  // the program selects
    bool wasSelected_ = false;  // before the press that is under way
};
