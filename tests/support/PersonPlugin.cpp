// Stands for the person before the installer's window: goes on to the network page, says that the printer is
// on the network, and then lets things happen. Brings no page of its own.

#include "InstallerPlugins/InstallerPluginFactory.h"

#include <QApplication>
#include <QObject>
#include <QPushButton>
#include <QRadioButton>
#include <QTimer>

class PersonPlugin : public QObject, public InstallerPluginFactory {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID InstallerPluginFactory_iid)
    Q_INTERFACES(InstallerPluginFactory)

  public:
    [[nodiscard]] InstallerPane* createPane(QObject* parent) override {
        QTimer::singleShot(0, parent, [] {  // Once the window is there.
            for (const QWidget* const window : QApplication::topLevelWidgets()) {
                if (auto* const next = window->findChild<QPushButton*>(QStringLiteral("next"))) {
                    next->click();
                    const auto* const types =
                        window->findChild<QWidget*>(QStringLiteral("radiobtnPrinterType"));
                    types->findChildren<QRadioButton*>().constLast()->click();
                    return;
                }
            }
        });
        return nullptr;
    }
};

#include "PersonPlugin.moc"
