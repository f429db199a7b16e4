// The page's localized texts, carried in its own resources: qtTrId() finds them once they are loaded.

#pragma once

/// Makes the texts known to the application, once however often it is called. Main thread, with a
/// QCoreApplication.
void loadPageStrings();
