// Radio buttons in rows and columns, of which one is selected. Selecting a cell from the program is silent; a
// person's click sends the action, on the selected cell too.

#pragma once

#include <QStringList>
#include <QWidget>

#include <vector>

class QGridLayout;
class QLabel;
class QRadioButton;

class RadioMatrix : public QWidget {
    Q_OBJECT
    /// The cells' labels with their mnemonics, row by row.
    Q_PROPERTY(QStringList cells READ cells WRITE setCells)
    /// A sentence below each cell; fewer than cells leaves the rest without.
    Q_PROPERTY(QStringList descriptions READ descriptions WRITE setDescriptions)
    Q_PROPERTY(int columns READ columns WRITE setColumns)

  public:
    explicit RadioMatrix(QWidget* parent = nullptr);

    [[nodiscard]] QStringList cells() const { return labels_; }
    [[nodiscard]] QStringList descriptions() const { return descriptions_; }
    [[nodiscard]] int columns() const { return columns_; }
    void setCells(const QStringList& labels);
    void setDescriptions(const QStringList& descriptions);
    void setColumns(int columns);

    /// Row and column of the selected cell, from 0; -1 when none is.
    [[nodiscard]] int selectedRow() const;
    [[nodiscard]] int selectedColumn() const;

    /// Selects a cell, and so takes the selection from the one that had it. Does nothing for a place without
    /// a cell.
    void selectCellAtRow(int row, int column);

    /// Switches a cell on (1) or off (0).
    void setState(int state, int row, int column);

    /// The buttons, row by row.
    [[nodiscard]] const std::vector<QRadioButton*>& buttons() const { return buttons_; }

    /// The button at a place, or null.
    [[nodiscard]] QRadioButton* cellAt(int row, int column) const;

  signals:
    void action();

  private:
    void rebuild();
    void keepTabStopOnSelection();
    [[nodiscard]] int selectedIndex() const;

    QStringList labels_;
    QStringList descriptions_;
    int columns_ = 1;
    QGridLayout* grid_;
    std::vector<QRadioButton*> buttons_;  // children, row by row
    std::vector<QLabel*> sentences_;      // children
};
