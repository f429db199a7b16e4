// The hand-off of the user's choice: pages write a file in the documents folder, which the steps of the
// installation read. Main thread.

#pragma once

#include <QString>

#include <vector>

class InstallerPane;

/// Creates the documents folder if it is missing. Returns null if the folder is writable, otherwise a message
/// for the user that says what is wrong.
[[nodiscard]] QString prepareHandOffFolder();

/// The path of the hand-off file, which is missing if no network printer was chosen.
[[nodiscard]] QString handOffFile();

/// What became of the user's choice.
class HandOff {
  public:
    /// `pages` must outlive its use. `folderProblem` is the result of prepareHandOffFolder().
    HandOff(std::vector<InstallerPane*> pages, QString folderProblem);

    /// Whether the user chose a network printer.
    [[nodiscard]] bool isChosen() const;

    /// Why the file doesn't hold the choice, or an earlier one if none was made; null if all is well.
    [[nodiscard]] QString problem() const;

  private:
    std::vector<InstallerPane*> pages_;
    QString folderProblem_;
};
