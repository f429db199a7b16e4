// The page's translated texts, carried in its own resources.

#pragma once

#include <QString>

/// Loads the texts in the user's language, or in English, for this page and its form; once however often it
/// is called. Main thread, with a QCoreApplication.
void loadTranslations();

/// The text for an id such as "PaneTitle", or the id itself when there is none. Only this plug-in's own texts
/// count: another one may use the same id. Main thread, after loadTranslations().
[[nodiscard]] QString translatedText(const char* id);
