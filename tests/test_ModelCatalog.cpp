// Which model texts of a printer are the series', and which model each of them is.

#include "discovery/ModelCatalog.h"
#include "support/Fixtures.h"
#include "support/TestMain.h"

#include <QTest>

#include <unistd.h>

#include <cstdio>

class TestModelCatalog : public QObject {
    Q_OBJECT

  private slots:
    void recognises_data() {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QByteArray>("model");  // Null: not of the series.
        for (const QByteArray model : {"KV210", "KV260", "KV410", "KV460"}) {
            for (const QByteArray& accepted : {"TVK " + model, "TVK " + model + "N", model, model + "N"}) {
                QTest::newRow(accepted) << accepted << model;
            }
        }
        for (const char* const rejected :
             {"", "KV", "KV210n", "kv210", "KV210 ", " KV210", "KV210NN", "TVK  KV210", "TVK KV210n",
              "tvk KV210", "TVKKV210", "TVK", "KV220", "TVK KV460N;", "%s%n"}) {
            QTest::newRow(qPrintable(QStringLiteral("not \"%1\"").arg(QLatin1String(rejected))))
                << QByteArray(rejected) << QByteArray();
        }
    }
    void recognises() {
        QFETCH(QByteArray, text);
        QFETCH(QByteArray, model);
        bool accepted = false;
        QCOMPARE(standardOutputOf([&] { accepted = IsQuazel(text); }), "PrinterInfo.szModel " + text + "\n");
        QCOMPARE(accepted, !model.isNull());
        if (accepted) {
            QCOMPARE(QByteArray(modelNameOfAcceptedText(text)), model);
        }
    }

  private:
    template <class Call>
    QByteArray standardOutputOf(const Call& call) {
        const QString path = folder_.filePath(QStringLiteral("output"));
        writeFile(path, "");
        std::fflush(stdout);
        const int previous = ::dup(STDOUT_FILENO);
        std::FILE* const file = std::fopen(qUtf8Printable(path), "w");
        ::dup2(::fileno(file), STDOUT_FILENO);
        call();
        std::fflush(stdout);
        ::dup2(previous, STDOUT_FILENO);
        ::close(previous);
        std::fclose(file);
        return contentOf(path);
    }

    QTemporaryDir folder_;
};

QUAZEL_TEST_MAIN(TestModelCatalog, QCoreApplication)

#include "test_ModelCatalog.moc"
