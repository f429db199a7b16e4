// The last step: shows the network printer in the hand-off file, and whether it is set up.

#pragma once

#include "InstallerPlugins/InstallerPane.h"

class InstallationPane;
class QLabel;

class SummaryPane : public InstallerPane {
    Q_OBJECT

  public:
    /// `installation` is the page before, or null if there is none; it must outlive this page's use.
    /// `problem` says why no choice can be saved, or is null.
    explicit SummaryPane(const InstallationPane* installation, QString problem = {},
                         QObject* parent = nullptr);

    [[nodiscard]] QString title() const override { return tr("Summary"); }
    void didEnterPane(InstallerDirection direction) override;

  private:
    const InstallationPane* installation_;
    QString problem_;
    QLabel* text_;  // child of the content widget
};
