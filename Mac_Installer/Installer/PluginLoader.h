// Finds the page plug-ins in a folder and makes their pages.

#pragma once

#include <QString>
#include <QStringList>

#include <vector>

class InstallerPane;
class QObject;

struct LoadedPages {
    std::vector<InstallerPane*> pages;  ///< In the order of their file names; children of the given parent.
    QStringList problems;  ///< One line for each file that is no usable plug-in: its name and the reason.
};

/// Tries each file of `folder`. A file that is no usable plug-in, or was made for another version of the
/// contract, becomes a problem, and the rest still load; so does a folder that can't be read. Main thread.
[[nodiscard]] LoadedPages loadPages(const QString& folder, QObject* parent);
