// The texts of belun-verify, in English or Chinese.
#pragma once

#include "verify/Judgement.h"
#include "verify/Options.h"
#include "verify/ShownText.h"

#include <string>

#include <QCoreApplication>
#include <QString>

namespace verify {

/// Returns a text in the user's language. lupdate extracts the texts from the calls of functions
/// with this name; the context is always "verify".
inline QString translate(const char* context, const char* text, const char* comment = nullptr)
{
    return QCoreApplication::translate(context, text, comment);
}

/// The texts of the program, as UTF-8. English texts are ASCII, apart from the names, arguments and
/// system messages in them.
class Texts
{
public:
    /// `letters`: the characters that names are shown in. `timeout` in seconds.
    Texts(Letters letters, int timeout) : m_letters(letters), m_timeout(timeout) {}

    /// Returns the line of a recording, without its line ending.
    std::string line(const Recording& recording) const;
    /// Returns the last line of the report, without its line ending.
    std::string summary(const Summary& summary) const;
    /// Returns the error that ended the comparison early; empty if there is none.
    std::string failure(const Summary& summary) const;
    /// Returns the text of the progress. `seconds`: the time that Step::Content has taken so far.
    std::string progress(const Advance& advance, double seconds) const;

    std::string wrongOption(const WrongOption& wrong) const;
    std::string noDesktop(const std::string& path) const;
    static std::string help();
    static std::string cannotWrite(int systemError);
    static std::string interrupted();
    static std::string pressEnter();

private:
    QString shown(const std::string& text) const;
    QString nameOf(const Recording& recording) const;
    QString reason(const Recording& recording) const;
    QString trouble(const CameraError& error) const;
    QString namesOf(const Summary& summary) const;
    QString roomText(const Summary& summary) const;

    const Letters m_letters;
    const int m_timeout;
};

} // namespace verify
