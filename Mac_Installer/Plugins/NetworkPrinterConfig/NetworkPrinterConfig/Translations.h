// The page's translations, embedded as resources.

#pragma once

#include <QString>

/// Loads the translations for the user's language, or English, for the page and its form. Repeated calls have
/// no effect. Main thread, with a QCoreApplication.
void loadTranslations();

/// The text for an id such as "PaneTitle", or the id itself if there is none. Searches only this plug-in's
/// translations, as other plug-ins may use the same id. Main thread, after loadTranslations().
[[nodiscard]] QString translatedText(const char* id);
