// The user's language.
#pragma once

#include "verify/ShownText.h"

#include <QTranslator>

namespace verify {

/// Returns which characters the terminal can show, according to the environment: UTF-8 if the
/// locale's name says so, even if that locale is not installed.
Letters terminalLetters();

/// Loads the Chinese texts if the user's language is Chinese and the terminal can show them, and
/// returns whether it did; the texts in the code are English.
bool loadLanguage(QTranslator& translator, Letters letters);

} // namespace verify
