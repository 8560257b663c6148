// belun-verify: reports whether the recordings on the camera's card are safe on this computer.
#include "download/DownloadRequest.h"
#include "download/LocalFile.h"
#include "posix/PipeSignalBlock.h"
#include "posix/StandardStreams.h"
#include "verify/Comparison.h"
#include "verify/Console.h"
#include "verify/Json.h"
#include "verify/Language.h"
#include "verify/Options.h"
#include "verify/Texts.h"

#include <variant>

#include <sys/stat.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QStandardPaths>

namespace {

using namespace verify;

bool isFolder(const std::string& path)
{
    struct stat properties
    {
    };
    return ::stat(path.c_str(), &properties) == 0 && S_ISDIR(properties.st_mode);
}

/// Returns the folder for recordings: DCIM in the folder given with --desktop, otherwise the folder
/// that the window uses.
std::string recordingsFolder(const Options& options)
{
    if (!options.desktop.empty()) {
        return options.desktop + "/DCIM/";
    }
    return download::recordingsFolder(
               QStandardPaths::writableLocation(QStandardPaths::DesktopLocation))
        .toStdString();
}

void say(Console& console, const std::string& text)
{
    console.message("belun-verify: " + text);
}

/// The display of the progress on a terminal.
class Progress
{
public:
    Progress(Console& console, const Texts& texts) : m_console(console), m_texts(texts) {}

    void advanced(const Advance& advance)
    {
        if (advance.step == Step::Content && !m_contentClock.isValid()) {
            m_contentClock.start();
        }
        if (m_console.progressIsDue()) {
            const double seconds =
                m_contentClock.isValid() ? static_cast<double>(m_contentClock.elapsed()) / 1000 : 0;
            m_console.progress(m_texts.progress(advance, seconds));
        }
    }

private:
    Console& m_console;
    const Texts& m_texts;
    QElapsedTimer m_contentClock;
};

/// Compares the card with the folder, prints the report and returns the exit status.
int compare(const Options& options, Console& console, const Texts& texts)
{
    const Camera camera(QString::fromLatin1(download::cameraHost), download::cameraPort,
                        std::chrono::seconds(options.timeout));
    LocalFolder folder(recordingsFolder(options));
    Progress progress(console, texts);
    Comparison comparison(CardReader(camera), folder, options.contents, options.names,
                          {[&](const Recording& recording) {
                               console.line(options.json ? jsonLine(recording)
                                                         : texts.line(recording));
                           },
                           [&progress](const Advance& advance) { progress.advanced(advance); }});
    const Summary summary = comparison.run();

    const std::string failure = texts.failure(summary);
    if (!failure.empty()) {
        say(console, failure);
    }
    const std::string text = texts.summary(summary);
    console.line(options.json ? jsonLine(summary, text, failure) : text);
    return statusOf(summary.verdict);
}

int run(const Options& options, Console& console, const Texts& texts)
{
    switch (options.action) {
    case Options::Action::Help:
        console.line(Texts::help());
        return 0;
    case Options::Action::Version:
        console.line("belun-verify " BELUN_VERSION);
        return 0;
    case Options::Action::Compare:
        break;
    }
    if (!options.desktop.empty() && !isFolder(options.desktop)) {
        say(console, texts.noDesktop(options.desktop));
        return wrongOptionStatus;
    }
    return compare(options, console, texts);
}

void waitForEnter(Console& console)
{
    console.message(Texts::pressEnter());
    char byte = 0;
    while (::read(STDIN_FILENO, &byte, 1) == 1 && byte != '\n') {
    }
}

} // namespace

// NOLINTNEXTLINE(bugprone-exception-escape): running out of memory may end the program
int main(int argc, char* argv[])
{
    sys::openClosedStandardStreams();
    const sys::PipeSignalBlock block; // otherwise writing to a closed pipe would end the program
    const QCoreApplication application(argc, argv);
    const Letters letters = terminalLetters();
    QTranslator translator;
    if (loadLanguage(translator, letters)) {
        QCoreApplication::installTranslator(&translator);
    }
    endOnInterruption("belun-verify: " + Texts::interrupted(), interruptedStatus);

    Console console;
    const auto read = readOptions({argv + 1, argv + argc});
    if (const auto* wrong = std::get_if<WrongOption>(&read)) {
        say(console, Texts(letters, Options().timeout).wrongOption(*wrong));
        return wrongOptionStatus;
    }
    const auto& options = std::get<Options>(read);
    int status = run(options, console, Texts(letters, options.timeout));
    if (console.error() != 0) {
        say(console, Texts::cannotWrite(console.error()));
        status = failureStatus;
    }
    if (options.wait) {
        waitForEnter(console);
    }
    return status;
}
