// The plug-in: makes the page, with the texts of its own resources, for whoever keeps to the installer's
// contract.

#include "InstallerPlugins/InstallerPluginFactory.h"
#include "NetworkPrinterConfig/NetworkPrinterConfigPane.h"
#include "NetworkPrinterConfig/PageStrings.h"

#include <QObject>

class NetworkPrinterConfigPlugin : public QObject, public InstallerPluginFactory {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID InstallerPluginFactory_iid)
    Q_INTERFACES(InstallerPluginFactory)

  public:
    [[nodiscard]] InstallerPane* createPane(QObject* parent) override {
        loadPageStrings();
        auto* const pane = new NetworkPrinterConfigPane(parent);
        pane->awakeFromNib();
        return pane;
    }
};

#include "NetworkPrinterConfigPlugin.moc"
