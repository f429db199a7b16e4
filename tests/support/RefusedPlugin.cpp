// A plug-in that the installer has no use for; PLUGIN_IID says for whom it is made.

#include "InstallerPlugins/InstallerPluginFactory.h"

#include <QObject>

#include <cstdio>

class RefusedPlugin : public QObject, public InstallerPluginFactory {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID PLUGIN_IID)
    Q_INTERFACES(InstallerPluginFactory)

  public:
    RefusedPlugin() { std::fputs("the plug-in was run\n", stderr); }
    [[nodiscard]] InstallerPane* createPane(QObject* /*parent*/) override { return nullptr; }
};

#include "RefusedPlugin.moc"
