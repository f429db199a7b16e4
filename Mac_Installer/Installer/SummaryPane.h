// The last step: shows the network printer in the hand-off file, and whether it is set up.

#pragma once

#include "Installer/HandOff.h"
#include "InstallerPlugins/InstallerPane.h"

class InstallationPane;
class QLabel;

class SummaryPane : public InstallerPane {
    Q_OBJECT

  public:
    /// `installation` is the page before, or null if there is none; it must outlive this page's use.
    SummaryPane(const InstallationPane* installation, HandOff handOff, QObject* parent = nullptr);

    [[nodiscard]] QString title() const override { return tr("Summary"); }
    void didEnterPane(InstallerDirection direction) override;

  private:
    void show(const QString& result, const QString& printer, const QString& details);

    const InstallationPane* installation_;
    HandOff handOff_;
    // Children of the content widget.
    QLabel* result_;
    QWidget* printer_;
    QLabel* model_;
    QLabel* address_;
    QLabel* details_;
};
