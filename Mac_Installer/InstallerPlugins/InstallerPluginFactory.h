// The interface through which a page plug-in provides its page.
//
// A plug-in is a shared object whose root QObject implements InstallerPluginFactory and names
// InstallerPluginFactory_iid in its Q_PLUGIN_METADATA. The IID ends in the contract version; plug-ins built
// for another version are reported and not loaded.

#pragma once

#include <QtPlugin>

class InstallerPane;
class QObject;

class InstallerPluginFactory {
  public:
    virtual ~InstallerPluginFactory() = default;

    /// Creates the page as a child of `parent`, with awakeFromNib() called; null on failure. Main thread;
    /// called once.
    [[nodiscard]] virtual InstallerPane* createPane(QObject* parent) = 0;
};

#define InstallerPluginFactory_iid "com.tovik.quazel.InstallerPluginFactory/1.1"

Q_DECLARE_INTERFACE(InstallerPluginFactory, InstallerPluginFactory_iid)
