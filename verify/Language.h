// The user's language.
#pragma once

#include "verify/ShownText.h"

#include <QTranslator>

namespace verify {

/// Returns which characters the terminal can show: UTF-8 if the environment names a UTF-8 locale,
/// even if that locale is not installed, otherwise ASCII.
Letters terminalLetters();

/// Loads the Chinese texts if the user's language is Chinese and the terminal can show them.
/// Returns whether they were loaded; without them, the texts are the English ones in the code.
bool loadLanguage(QTranslator& translator, Letters letters);

} // namespace verify
