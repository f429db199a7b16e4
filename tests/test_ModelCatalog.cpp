// Which model texts of a printer are the series', and which model each of them is.

#include "discovery/ModelCatalog.h"
#include "support/TestMain.h"

#include <QTest>

class TestModelCatalog : public QObject {
    Q_OBJECT

  private slots:
    void recognises() {
        for (const QByteArray model : {"KV210", "KV260", "KV410", "KV460"}) {
            for (const QByteArray& text : {"TVK " + model, "TVK " + model + "N", model, model + "N"}) {
                QVERIFY2(IsQuazel(text), text);
                QCOMPARE(modelNameOfAcceptedText(text), model);
            }
        }
    }

    void refuses() {
        for (const char* const text :
             {"", "KV", "KV210n", "kv210", "KV210 ", " KV210", "KV210NN", "TVK  KV210", "TVK KV210n",
              "tvk KV210", "TVKKV210", "TVK", "KV220", "TVK KV460N;"}) {
            QVERIFY2(!IsQuazel(text), text);
        }
        QVERIFY(!isSeriesPpdFileName(nullptr));
    }
};

QUAZEL_TEST_MAIN(TestModelCatalog, QCoreApplication)

#include "test_ModelCatalog.moc"
