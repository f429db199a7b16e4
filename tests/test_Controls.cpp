// The page's controls and input checks, apart from what a user does with them (test_InputPaths).

#include "NetworkPrinterConfig/IPAddressTextValidator.h"
#include "NetworkPrinterConfig/controls/RadioMatrix.h"
#include "support/TestMain.h"

#include <QAbstractButton>
#include <QApplication>
#include <QImage>
#include <QTest>

#include <algorithm>

using namespace Qt::StringLiterals;

class TestControls : public QObject {
    Q_OBJECT

  private slots:
    void knowsAddresses() {
        const IPAddressTextValidator validator;
        QVERIFY(!validator.validate(QString()));
        // The end anchor also stands before one line end of any kind, which other engines do not do.
        for (const QString& text : {u""_s, u"0.0.0.0"_s, u"255.255.255.255"_s, u"192.168.001.010"_s,
                                    u"1.2.3.4\n"_s, u"1.2.3.4\r\n"_s, u"1.2.3.4\u2028"_s}) {
            QVERIFY2(validator.validate(text), qPrintable(text));
        }
        for (const QString& text :
             {u"256.1.1.1"_s, u"1.2.3.260"_s, u"1.2.3"_s, u"1.2.3.4.5"_s, u"1..2.3"_s, u"1a2a3a4"_s,
              u" 1.2.3.4"_s, u"1.2.3.4 "_s, u"1.2.3.\u0664"_s, u"1.2.3.4\n\n"_s, u"1.2.3.4\n1.2.3.4"_s}) {
            QVERIFY2(!validator.validate(text), qPrintable(text));
        }
    }

    void anUncheckedCircleStandsOutFromADarkWindow() {
        QApplication::setStyle(u"Fusion"_s);
        const QColor window(32, 35, 38);
        RadioMatrix matrix;
        matrix.setPalette(QPalette(Qt::white, window, Qt::white, window, window, Qt::white, window));
        matrix.setCells({u"x"_s});
        const QImage picture = matrix.cellAt(0, 0)->grab().toImage();
        int lightest = 0;
        for (int x = 0; x < 16; ++x) {  // Across the circle.
            lightest = std::max(lightest, picture.pixelColor(x, picture.height() / 2).lightness());
        }
        QVERIFY2(lightest > 110, qPrintable(QString::number(lightest)));  // A contrast of 3 in WCAG 2.1.
    }
};

QUAZEL_TEST_MAIN(TestControls, QApplication)

#include "test_Controls.moc"
