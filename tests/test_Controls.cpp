// The page's own controls: what a person does sends, what the program does is silent.

#include "NetworkPrinterConfig/controls/ComboBox.h"
#include "NetworkPrinterConfig/controls/RadioMatrix.h"
#include "NetworkPrinterConfig/controls/TextField.h"
#include "support/TestMain.h"

#include <QApplication>
#include <QRadioButton>
#include <QSignalSpy>
#include <QTest>

namespace {

QStringList texts(std::initializer_list<const char*> list) {
    QStringList result;
    for (const char* const text : list) {
        result += QString::fromLatin1(text);
    }
    return result;
}

void clickOn(const RadioMatrix& matrix, int row, int column) {
    QTest::mouseClick(matrix.cellAt(row, column), Qt::LeftButton, {}, QPoint(5, 5));
}

}  // namespace

class TestControls : public QObject {
    Q_OBJECT

  private slots:
    void onlyAPersonsClickSendsTheMatrixAction() {
        RadioMatrix matrix;
        matrix.setCells(texts({"a", "b", "c", "d"}));
        matrix.setColumns(2);
        matrix.show();
        QVERIFY(QTest::qWaitForWindowActive(&matrix));
        QSignalSpy actions(&matrix, &RadioMatrix::action);
        QCOMPARE(matrix.selectedRow(), -1);
        QCOMPARE(matrix.selectedColumn(), -1);
        matrix.selectCellAtRow(1, 0);
        matrix.setState(1, 1, 0);
        matrix.selectCellAtRow(2, 0);  // No such cells.
        matrix.selectCellAtRow(0, 2);
        QCOMPARE(matrix.selectedRow(), 1);
        QCOMPARE(matrix.selectedColumn(), 0);
        QCOMPARE(actions.count(), 0);

        clickOn(matrix, 0, 1);
        QCOMPARE(matrix.selectedRow(), 0);
        QCOMPARE(matrix.selectedColumn(), 1);
        QCOMPARE(actions.count(), 1);
        clickOn(matrix, 0, 1);  // The selected cell sends, too.
        QCOMPARE(actions.count(), 2);
        QTest::keyClick(matrix.cellAt(0, 1), Qt::Key_Down);
        QCOMPARE(matrix.selectedRow(), 1);
        QCOMPARE(actions.count(), 3);

        matrix.setEnabled(false);
        clickOn(matrix, 0, 0);
        QCOMPARE(matrix.selectedRow(), 1);
        QCOMPARE(actions.count(), 3);
    }

    void fillingAListIsNoSelection() {
        ComboBox list;
        list.show();
        QSignalSpy selections(&list, &ComboBox::selectionDidChange);
        list.addItemWithObjectValue(QStringLiteral("first"));
        QVERIFY(list.objectValueOfSelectedItem().isNull());
        QCOMPARE(selections.count(), 0);
        list.selectItemAtIndex(0);
        list.selectItemAtIndex(0);
        list.addItemsWithObjectValues(texts({"second", ""}));
        QCOMPARE(list.objectValueOfSelectedItem(), QStringLiteral("first"));
        QCOMPARE(selections.count(), 1);
        QTest::keyClick(&list, Qt::Key_Down);
        QCOMPARE(list.objectValueOfSelectedItem(), QStringLiteral("second"));
        QCOMPARE(selections.count(), 2);
        QTest::keyClick(&list, Qt::Key_Down);
        QVERIFY(!list.objectValueOfSelectedItem().isNull());  // An empty item is not none.
        list.removeAllItems();
        QVERIFY(list.objectValueOfSelectedItem().isNull());
        QCOMPARE(selections.count(), 3);
        list.addItemWithObjectValue(QStringLiteral("first"));
        list.selectItemAtIndex(0);
        QCOMPARE(selections.count(), 4);
    }

    void aListTellsBeforeItPopsUp() {
        ComboBox list;
        list.addItemWithObjectValue(QStringLiteral("first"));
        list.show();
        QSignalSpy popUps(&list, &ComboBox::willPopUp);
        QTest::mouseClick(&list, Qt::LeftButton);
        QCOMPARE(popUps.count(), 1);
        list.hidePopup();
    }

    void editingBeginsOncePerEdit() {
        TextField field;
        field.show();
        QSignalSpy begun(&field, &TextField::didBeginEditing);
        QSignalSpy ended(&field, &TextField::didEndEditing);
        field.setStringValue(QStringLiteral("program"));
        QCOMPARE(begun.count(), 0);
        QTest::keyClicks(&field, QStringLiteral("12"));
        QCOMPARE(begun.count(), 1);
        QTest::keyClick(&field, Qt::Key_Return);
        QCOMPARE(ended.count(), 1);
        QTest::keyClicks(&field, QStringLiteral("34"));
        QCOMPARE(begun.count(), 2);
        field.setStringValue(QString());
        QVERIFY(!field.stringValue().isNull());
        QCOMPARE(ended.count(), 1);
    }
};

QUAZEL_TEST_MAIN(TestControls, QApplication)

#include "test_Controls.moc"
