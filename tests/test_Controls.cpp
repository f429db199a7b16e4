// The page's own controls: what a person does sends, what the program does is silent.

#include "NetworkPrinterConfig/controls/ComboBox.h"
#include "NetworkPrinterConfig/controls/RadioMatrix.h"
#include "NetworkPrinterConfig/controls/TextField.h"
#include "support/TestMain.h"

#include <QApplication>
#include <QRadioButton>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;

class TestControls : public QObject {
    Q_OBJECT

  private slots:
    void onlyAPersonsClickSendsTheMatrixAction() {
        RadioMatrix matrix;
        matrix.setCells({u"a"_s, u"b"_s, u"c"_s, u"d"_s});
        matrix.setColumns(2);
        matrix.show();
        QVERIFY(QTest::qWaitForWindowActive(&matrix));
        const QSignalSpy actions(&matrix, &RadioMatrix::action);
        // Row and column of the selection, and how many actions were sent.
        const auto state = [&] {
            return QList<qsizetype>{matrix.selectedRow(), matrix.selectedColumn(), actions.count()};
        };
        const auto click = [&](int row, int column) {
            QTest::mouseClick(matrix.cellAt(row, column), Qt::LeftButton, {}, QPoint(5, 5));
            return state();
        };
        QCOMPARE(state(), QList<qsizetype>({-1, -1, 0}));
        matrix.selectCellAtRow(1, 0);
        matrix.setState(1, 1, 0);
        matrix.selectCellAtRow(2, 0);  // No such cells.
        matrix.selectCellAtRow(0, 2);
        QCOMPARE(state(), QList<qsizetype>({1, 0, 0}));
        QCOMPARE(click(0, 1), QList<qsizetype>({0, 1, 1}));
        QCOMPARE(click(0, 1), QList<qsizetype>({0, 1, 2}));  // The selected cell sends, too.
        QTest::keyClick(matrix.cellAt(0, 1), Qt::Key_Down);
        QCOMPARE(state(), QList<qsizetype>({1, 1, 3}));
        matrix.setEnabled(false);
        QCOMPARE(click(0, 0), QList<qsizetype>({1, 1, 3}));
    }

    void fillingAListIsNoSelection() {
        ComboBox list;
        list.show();
        QStringList told;  // what is selected, each time that it is told
        connect(&list, &ComboBox::selectionDidChange, this,
                [&] { told += list.objectValueOfSelectedItem(); });
        list.addItemWithObjectValue(u"first"_s);
        QVERIFY(list.objectValueOfSelectedItem().isNull());
        list.selectItemAtIndex(0);
        list.selectItemAtIndex(0);
        list.addItemsWithObjectValues({u"second"_s, u""_s});
        QCOMPARE(list.objectValueOfSelectedItem(), u"first"_s);
        QTest::keyClick(&list, Qt::Key_Down);
        QTest::keyClick(&list, Qt::Key_Down);
        QVERIFY(!list.objectValueOfSelectedItem().isNull());  // An empty item is not none.
        list.removeAllItems();
        QVERIFY(list.objectValueOfSelectedItem().isNull());
        list.addItemWithObjectValue(u"again"_s);
        list.selectItemAtIndex(0);
        QCOMPARE(told.join(u'|'), u"first|second||again"_s);
    }

    void editingBeginsOncePerEdit() {
        TextField field;
        field.show();
        const QSignalSpy begun(&field, &TextField::didBeginEditing);
        const QSignalSpy ended(&field, &TextField::didEndEditing);
        field.setStringValue(u"program"_s);
        QCOMPARE(begun.count(), 0);
        QTest::keyClicks(&field, u"12"_s);
        QCOMPARE(begun.count(), 1);
        QTest::keyClick(&field, Qt::Key_Return);
        QTest::keyClicks(&field, u"34"_s);
        field.setStringValue(QString());
        QVERIFY(!field.stringValue().isNull());
        QCOMPARE(begun.count(), 2);
        QCOMPARE(ended.count(), 1);
    }
};

QUAZEL_TEST_MAIN(TestControls, QApplication)

#include "test_Controls.moc"
