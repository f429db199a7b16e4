// A plug-in without a page; PLUGIN_IID says for whom it is made. Where it finds the installer's window, it
// stands for the user: goes on to the network page and says that the printer is on the network.

#include "InstallerPlugins/InstallerPluginFactory.h"

#include <QApplication>
#include <QPushButton>
#include <QRadioButton>
#include <QTimer>

#include <cstdio>

class TestPlugin : public QObject, public InstallerPluginFactory {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID PLUGIN_IID)
    Q_INTERFACES(InstallerPluginFactory)

  public:
    TestPlugin() { std::fputs("the plug-in was run\n", stderr); }

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

#include "TestPlugin.moc"
