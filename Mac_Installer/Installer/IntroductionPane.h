// The first step: explains the installation and reports any problem with this machine.

#pragma once

#include "InstallerPlugins/InstallerPane.h"

#include <QString>

class IntroductionPane : public InstallerPane {
    Q_OBJECT

  public:
    /// `problem` is a message for the user, or null.
    explicit IntroductionPane(const QString& problem, QObject* parent = nullptr);

    [[nodiscard]] QString title() const override { return tr("Introduction"); }
};
