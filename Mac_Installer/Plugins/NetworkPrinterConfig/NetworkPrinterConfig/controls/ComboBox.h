// A drop-down list of texts. Filling and emptying it is no selection; only a chosen item is. Without the
// focus the closed list ignores the wheel, which then scrolls the page.

#pragma once

#include <QComboBox>
#include <QString>
#include <QStringList>

class ComboBox : public QComboBox {
    Q_OBJECT

  public:
    explicit ComboBox(QWidget* parent = nullptr);

    /// Leaves the list empty and nothing selected. Sends nothing.
    void removeAllItems();

    /// Add at the end; what is selected stays so, nothing included. Send nothing.
    void addItemWithObjectValue(const QString& value);
    void addItemsWithObjectValues(const QStringList& values);

    /// Selects an item, counted from 0; sends selectionDidChange before it returns, unless it was selected
    /// already.
    void selectItemAtIndex(int index);

    /// The selected item's text, or null when nothing is selected.
    [[nodiscard]] QString objectValueOfSelectedItem() const;

    /// Does nothing while the list is not operable: an assistive program may ask all the same.
    void showPopup() override;

  signals:
    void selectionDidChange();
    void willPopUp();

  protected:
    void wheelEvent(QWheelEvent* event) override;
};
