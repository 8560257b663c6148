// The user's language.
#pragma once

#include "verify/ShownText.h"

#include <QTranslator>

namespace verify {

/// Which letters the terminal takes, by the environment: UTF-8 if the locale says so. A locale that
/// is named but not installed counts, too.
Letters terminalLetters();

/// Loads the Chinese texts if the user reads Chinese and the terminal can show them. Returns
/// whether it did; the texts of the code are English.
bool loadLanguage(QTranslator& translator, Letters letters);

} // namespace verify
