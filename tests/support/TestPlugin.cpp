// A plug-in without a page, which says on standard output that its code runs.

#include "InstallerPlugins/InstallerPluginFactory.h"

#include <cstdio>

class TestPlugin : public QObject, public InstallerPluginFactory {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID InstallerPluginFactory_iid)
    Q_INTERFACES(InstallerPluginFactory)

  public:
    TestPlugin() { std::puts("running"); }

    [[nodiscard]] InstallerPane* createPane(QObject* /*parent*/) override { return nullptr; }
};

#include "TestPlugin.moc"
