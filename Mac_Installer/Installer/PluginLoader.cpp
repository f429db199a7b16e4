#include "Installer/PluginLoader.h"

#include "InstallerPlugins/InstallerPane.h"
#include "InstallerPlugins/InstallerPluginFactory.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QJsonObject>
#include <QPluginLoader>

namespace {

QString say(const char* text) {
    return QCoreApplication::translate("PluginLoader", text);
}

/// Loads the page from one file; null with `problem` set on failure.
InstallerPane* loadPage(const QString& path, QObject* parent, QString& problem) {
    if (!QFileInfo(path).isFile()) {
        problem = say("is not a regular file");  // Opening a FIFO would block.
        return nullptr;
    }
    QPluginLoader loader(path);
    // Read the metadata before running any code of the file: other contract versions must not be loaded.
    const QString contract = loader.metaData().value(QStringLiteral("IID")).toString();
    if (contract.isEmpty()) {
        problem = say("is not a plug-in (%1)").arg(loader.errorString());
        return nullptr;
    }
    if (contract != QStringLiteral(InstallerPluginFactory_iid)) {
        problem = say(R"(is made for "%1", not for "%2")")
                      .arg(contract, QStringLiteral(InstallerPluginFactory_iid));
        return nullptr;
    }
    auto* const factory = qobject_cast<InstallerPluginFactory*>(loader.instance());
    if (factory == nullptr) {
        problem = say("can't be loaded (%1)").arg(loader.errorString());
        return nullptr;
    }
    InstallerPane* const pane = factory->createPane(parent);
    if (pane == nullptr || pane->contentWidget() == nullptr) {
        problem = say("did not create a page");
        delete pane;
        return nullptr;
    }
    return pane;
}

}  // namespace

LoadedPages loadPages(const QString& folder, QObject* parent) {
    LoadedPages loaded;
    const QDir directory(folder);
    if (!directory.isReadable()) {
        loaded.problems += say("%1: is not a readable folder").arg(folder);
        return loaded;
    }
    const QStringList names = directory.entryList(QDir::Files | QDir::System | QDir::Hidden, QDir::Name);
    for (const QString& name : names) {
        const QString path = directory.absoluteFilePath(name);
        QString problem;
        if (InstallerPane* const pane = loadPage(path, parent, problem)) {
            loaded.pages.push_back(pane);
        } else {
            loaded.problems += QStringLiteral("%1: %2").arg(path, problem);
        }
    }
    return loaded;
}
