// A plug-in without a page, for the contract PLUGIN_IID. If that is not the installer's contract, none of its
// code may run: it ends the process.

#include "InstallerPlugins/InstallerPluginFactory.h"

#include <cstdlib>

class TestPlugin : public QObject, public InstallerPluginFactory {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID PLUGIN_IID)
    Q_INTERFACES(InstallerPluginFactory)

  public:
    TestPlugin() {
        if (qstrcmp(PLUGIN_IID, qobject_interface_iid<InstallerPluginFactory*>()) != 0) {
            std::_Exit(99);
        }
    }

    [[nodiscard]] InstallerPane* createPane(QObject* /*parent*/) override { return nullptr; }
};

#include "TestPlugin.moc"
