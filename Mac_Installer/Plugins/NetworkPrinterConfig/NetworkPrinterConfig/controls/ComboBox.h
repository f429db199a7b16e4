// A drop-down list of texts. Filling or emptying it does not emit selectionDidChange. The closed list leaves
// Return to the window, and without focus the wheel, so that the page scrolls instead.

#pragma once

#include <QComboBox>

class ComboBox : public QComboBox {
    Q_OBJECT

  public:
    explicit ComboBox(QWidget* parent = nullptr);

    /// Empties the list and clears the selection. Emits nothing.
    void removeAllItems();

    /// Append to the list; the selection, or its absence, is kept. Emit nothing.
    void addItemWithObjectValue(const QString& value) { addItemsWithObjectValues({value}); }
    void addItemsWithObjectValues(const QStringList& values);

    /// Selects an item, counted from 0; emits selectionDidChange before it returns, unless already selected.
    void selectItemAtIndex(int index) { setCurrentIndex(index); }

    /// The selected item's text, or null if none is selected.
    [[nodiscard]] QString objectValueOfSelectedItem() const { return currentText(); }

    /// Does nothing while the list is not operable, as assistive technology may call it at any time.
    void showPopup() override;

  signals:
    void selectionDidChange();
    void willPopUp();

  protected:
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
};
