#include "NetworkPrinterConfig/PageStrings.h"

#include <QCoreApplication>
#include <QLocale>
#include <QTranslator>

namespace {

void installStrings(const QString& language) {
    auto* const translator = new QTranslator(QCoreApplication::instance());
    const QString file = QStringLiteral(":/networkprinterconfig/NetworkPrinterConfig_%1.qm").arg(language);
    if (translator->load(file)) {
        QCoreApplication::installTranslator(translator);
    } else {
        delete translator;
    }
}

}  // namespace

void loadPageStrings() {
    // A function's static is set up once; the texts of a static library are not there before they are asked
    // for.
    static const bool loaded = [] {
        Q_INIT_RESOURCE(networkprinterconfig);
        installStrings(QStringLiteral("en"));  // What stands where a language of the person's has no text.
        const QString language = QLocale().name().section(QLatin1Char('_'), 0, 0);
        if (language != QStringLiteral("en")) {
            installStrings(language);
        }
        return true;
    }();
    Q_UNUSED(loaded)
}
