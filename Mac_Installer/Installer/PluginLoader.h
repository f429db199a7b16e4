// Finds the page plug-ins in a folder and creates their pages.

#pragma once

#include <QString>
#include <QStringList>

#include <vector>

class InstallerPane;
class QObject;

struct LoadedPages {
    std::vector<InstallerPane*> pages;  ///< In file name order; children of the given parent.
    QStringList problems;  ///< One line per file that is not a usable plug-in: its name and the reason.
};

/// Tries to load each file of `folder`. An unreadable folder, a file that is not a usable plug-in or one
/// built for another version of the contract is added to the problems; the other files are still loaded. Main
/// thread.
[[nodiscard]] LoadedPages loadPages(const QString& folder, QObject* parent);
