#include "NetworkPrinterConfig/Translations.h"

#include <QCoreApplication>
#include <QLocale>
#include <QPointer>
#include <QTranslator>

namespace {

QPointer<QTranslator> translator;  // owned by the application

}  // namespace

void loadTranslations() {
    if (translator) {
        return;
    }
    Q_INIT_RESOURCE(networkprinterconfig);  // Static libraries don't register their resources automatically.
    translator = new QTranslator(QCoreApplication::instance());
    const QString folder = QStringLiteral(":/networkprinterconfig");
    const QString name = QStringLiteral("NetworkPrinterConfig");
    if (translator->load(QLocale(), name, QStringLiteral("_"), folder) ||
        translator->load(name + QStringLiteral("_en"), folder)) {
        QCoreApplication::installTranslator(translator);
    }
}

QString translatedText(const char* id) {
    const QString text = translator ? translator->translate("", id) : QString();
    return text.isEmpty() ? QString::fromLatin1(id) : text;
}
