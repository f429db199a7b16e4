// What a run of the installer, in a window or on a terminal, needs before its pages start, and removes at its
// end.

#pragma once

#include <QLockFile>
#include <QString>
#include <QTemporaryDir>

/// If HOME is not set, sets it from the user's passwd entry. Returns null, or a message for the user if there
/// is no home folder. Call it before any folder is looked up.
[[nodiscard]] QString findHomeFolder();

/// A temporary folder for the files that libcups leaves, set as TMPDIR, and a lock on the documents folder,
/// because two runs would overwrite each other's hand-off file and log. Both are released at the end; a lock
/// left by a crash is ignored. Main thread.
class InstallerRun {
  public:
    /// Creates the temporary folder. Call it after findHomeFolder and before creating the application object:
    /// Qt may start threads, and creates a folder in TMPDIR if there is no runtime folder.
    InstallerRun();

    /// Takes the lock. Returns null, or a message for the user that says which process holds it. Where the
    /// lock can't be created, as in a read-only folder, there is none.
    [[nodiscard]] QString takeLock();

    /// For an end without destructors.
    void removeTemporaryFolder() { temporary_.remove(); }

    /// Empty without the lock.
    [[nodiscard]] QString lockFile() const { return lock_.isLocked() ? lock_.fileName() : QString(); }
    [[nodiscard]] QString temporaryFolder() const { return temporary_.path(); }

  private:
    QLockFile lock_;
    QTemporaryDir temporary_;
};
