// The last step: what the later steps of the installation were handed, read from the hand-off file as they
// read it.

#pragma once

#include "InstallerPlugins/InstallerPane.h"

class QLabel;

class SummaryPane : public InstallerPane {
    Q_OBJECT

  public:
    explicit SummaryPane(QObject* parent = nullptr);

    [[nodiscard]] QString title() const override;
    void didEnterPane(InstallerDirection direction) override;

  private:
    QLabel* text_;  // child of the content widget
};
