#include "Installer/PluginLoader.h"

#include "InstallerPlugins/InstallerPane.h"
#include "InstallerPlugins/InstallerPluginFactory.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QJsonObject>
#include <QPluginLoader>

#include <memory>

namespace {

QString translated(const char* text) {
    return QCoreApplication::translate("PluginLoader", text);
}

/// Adds the page from one file to `pages`. Returns null, or what is wrong with the file.
QString loadPage(const QString& path, QObject* parent, std::vector<InstallerPane*>& pages) {
    if (!QFileInfo(path).isFile()) {
        return translated("is not a regular file");  // Opening a FIFO would block.
    }
    QPluginLoader loader(path);
    // Check the metadata first: code built for another version of the contract must not run.
    const QString contract = loader.metaData().value(QStringLiteral("IID")).toString();
    const QString ours = QStringLiteral(InstallerPluginFactory_iid);
    if (contract.isEmpty()) {
        return translated("is not a plug-in (%1)").arg(loader.errorString());
    }
    if (contract != ours) {
        return translated(R"(is made for "%1", not for "%2")").arg(contract, ours);
    }
    auto* const factory = qobject_cast<InstallerPluginFactory*>(loader.instance());
    if (factory == nullptr) {
        return translated("can't be loaded (%1)").arg(loader.errorString());
    }
    std::unique_ptr<InstallerPane> page(factory->createPane(parent));
    if (!page || page->contentWidget() == nullptr) {
        return translated("did not create a page");
    }
    pages.push_back(page.release());
    return {};
}

}  // namespace

LoadedPages loadPages(const QString& folder, QObject* parent) {
    const QDir directory(folder);
    if (!directory.isReadable()) {
        return {{}, {translated("%1: is not a readable folder").arg(folder)}};
    }
    LoadedPages loaded;
    for (const QString& name : directory.entryList(QDir::Files | QDir::System | QDir::Hidden, QDir::Name)) {
        const QString path = directory.absoluteFilePath(name);
        const QString problem = loadPage(path, parent, loaded.pages);
        if (!problem.isNull()) {
            loaded.problems += QStringLiteral("%1: %2").arg(path, problem);
        }
    }
    return loaded;
}
