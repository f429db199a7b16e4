// The page's own controls, apart from what a user does with them (test_InputPaths).

#include "NetworkPrinterConfig/controls/ComboBox.h"
#include "NetworkPrinterConfig/controls/RadioMatrix.h"
#include "support/TestMain.h"

#include <QAbstractButton>
#include <QApplication>
#include <QImage>
#include <QTest>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace {

/// Relative luminance as in WCAG 2.1.
double luminance(const QColor& colour) {
    const auto linear = [](float part) {
        return part <= 0.03928F ? part / 12.92F : std::pow((part + 0.055F) / 1.055F, 2.4F);
    };
    return 0.2126F * linear(colour.redF()) + 0.7152F * linear(colour.greenF()) +
           0.0722F * linear(colour.blueF());
}

double contrast(const QColor& one, const QColor& other) {
    const auto [darker, lighter] = std::minmax({luminance(one), luminance(other)});
    return (lighter + 0.05) / (darker + 0.05);
}

}  // namespace

class TestControls : public QObject {
    Q_OBJECT

  private slots:
    void fillingAListIsNoSelection() {
        ComboBox list;
        QStringList told;  // what is selected, each time that it is told
        connect(&list, &ComboBox::selectionDidChange, this,
                [&] { told += list.objectValueOfSelectedItem(); });
        list.addItemWithObjectValue(u"first"_s);
        QVERIFY(list.objectValueOfSelectedItem().isNull());
        list.selectItemAtIndex(0);
        list.selectItemAtIndex(0);
        list.addItemsWithObjectValues({u"second"_s, u""_s});
        QCOMPARE(list.objectValueOfSelectedItem(), u"first"_s);
        list.selectItemAtIndex(2);
        QVERIFY(!list.objectValueOfSelectedItem().isNull());  // An empty item is not none.
        list.removeAllItems();
        QVERIFY(list.objectValueOfSelectedItem().isNull());
        QCOMPARE(told.join(u'|'), u"first|"_s);
    }

    void anUncheckedCircleStandsOutFromTheWindow_data() {
        QTest::addColumn<QColor>("window");
        QTest::addColumn<QColor>("text");
        QTest::addColumn<double>("least");
        QTest::newRow("dark") << QColor(32, 35, 38) << QColor(252, 252, 252) << 3.0;
        QTest::newRow("black") << QColor(Qt::black) << QColor(Qt::white) << 3.0;
        QTest::newRow("light, as the style draws it") << QColor(239, 240, 241) << QColor(Qt::black) << 2.0;
    }
    void anUncheckedCircleStandsOutFromTheWindow() {
        QFETCH(QColor, window);
        QFETCH(QColor, text);
        QFETCH(double, least);
        QApplication::setStyle(u"Fusion"_s);
        QPalette palette(text, window, text, window, window, text, window);
        RadioMatrix matrix;
        matrix.setPalette(palette);
        matrix.setCells({u"x"_s});
        const QImage picture = matrix.cellAt(0, 0)->grab().toImage();
        double best = 1;
        for (int x = 0; x < 16; ++x) {  // Across the circle.
            best = std::max(best, contrast(picture.pixelColor(x, picture.height() / 2), window));
        }
        QVERIFY2(best >= least, qPrintable(QString::number(best)));
    }
};

QUAZEL_TEST_MAIN(TestControls, QApplication)

#include "test_Controls.moc"
