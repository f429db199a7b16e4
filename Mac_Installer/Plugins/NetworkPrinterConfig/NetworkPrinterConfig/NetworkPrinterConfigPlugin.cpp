// Plug-in entry point: creates the page.

#include "InstallerPlugins/InstallerPluginFactory.h"
#include "NetworkPrinterConfig/NetworkPrinterConfigPane.h"

#include <QObject>

class NetworkPrinterConfigPlugin : public QObject, public InstallerPluginFactory {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID InstallerPluginFactory_iid)
    Q_INTERFACES(InstallerPluginFactory)

  public:
    [[nodiscard]] InstallerPane* createPane(QObject* parent) override {
        auto* const pane = new NetworkPrinterConfigPane(parent);
        pane->awakeFromNib();
        return pane;
    }
};

#include "NetworkPrinterConfigPlugin.moc"
