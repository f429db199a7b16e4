// The first step: what will happen, and what is wrong with this machine if anything is.

#pragma once

#include "InstallerPlugins/InstallerPane.h"

#include <QString>

class IntroductionPane : public InstallerPane {
    Q_OBJECT

  public:
    /// `problem` is a sentence for the person, or null.
    explicit IntroductionPane(const QString& problem, QObject* parent = nullptr);

    [[nodiscard]] QString title() const override;
};
