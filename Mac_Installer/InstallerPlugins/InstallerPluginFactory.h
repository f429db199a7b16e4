// How a page plug-in hands its page to the installer.
//
// A plug-in is a shared object whose root QObject implements InstallerPluginFactory and names
// InstallerPluginFactory_iid in its Q_PLUGIN_METADATA. The IID ends in the version of this contract: a
// plug-in built for another one is not loaded, and the installer says so.

#pragma once

#include <QtPlugin>

class InstallerPane;
class QObject;

class InstallerPluginFactory {
  public:
    InstallerPluginFactory() = default;
    InstallerPluginFactory(const InstallerPluginFactory&) = delete;
    InstallerPluginFactory& operator=(const InstallerPluginFactory&) = delete;
    virtual ~InstallerPluginFactory() = default;

    /// Makes the page, its controls connected and awake, as a child of `parent`; null when it can't be made.
    /// Main thread; called once.
    [[nodiscard]] virtual InstallerPane* createPane(QObject* parent) = 0;
};

#define InstallerPluginFactory_iid "com.tovik.quazel.InstallerPluginFactory/1.0"

Q_DECLARE_INTERFACE(InstallerPluginFactory, InstallerPluginFactory_iid)
