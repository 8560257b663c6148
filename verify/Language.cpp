#include "verify/Language.h"

#include <cstdlib>
#include <initializer_list>

#include <QByteArray>
#include <QLocale>

namespace verify {

namespace {

/// Returns the value of the first variable that is not empty; an empty text if there is none.
QByteArray firstOf(std::initializer_list<const char*> variables)
{
    for (const char* variable : variables) {
        QByteArray value = qgetenv(variable);
        if (!value.isEmpty()) {
            return value;
        }
    }
    return {};
}

} // namespace

Letters terminalLetters()
{
    const QByteArray locale = firstOf({"LC_ALL", "LC_CTYPE", "LANG"}).toUpper();
    return locale.contains("UTF-8") || locale.contains("UTF8") ? Letters::Utf8 : Letters::Ascii;
}

bool loadLanguage(QTranslator& translator, Letters letters)
{
    const QStringList languages = QLocale::system().uiLanguages();
    const bool chinese =
        !languages.isEmpty() && QLocale(languages.first()).language() == QLocale::Chinese;
    return chinese && letters == Letters::Utf8 &&
           translator.load(QStringLiteral(":/verify/belun_verify_chinese.qm"));
}

} // namespace verify
