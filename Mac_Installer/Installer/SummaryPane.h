// The last step: shows the content of the hand-off file, as the later installation steps will read it.

#pragma once

#include "InstallerPlugins/InstallerPane.h"

class QLabel;

class SummaryPane : public InstallerPane {
    Q_OBJECT

  public:
    explicit SummaryPane(QObject* parent = nullptr);

    [[nodiscard]] QString title() const override { return tr("Summary"); }
    void didEnterPane(InstallerDirection direction) override;

  private:
    QLabel* text_;  // child of the content widget
};
