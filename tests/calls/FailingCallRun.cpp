// Runs one user session of the window with a simulated vehicle and one injected failure:
//   failing_call_run [CALL NUMBER ERROR]
// Each step after linking is attempted up to three times, as a user would retry it: the injected
// failure may make an attempt fail. Prints how often each call was made and what went wrong. The
// exit status is 0 if nothing went wrong, 1 if something did, and 2 if the session could not start.
// A run that hangs is ended by SIGALRM.
#include "app/ProcessSetup.h"
#include "tests/calls/FailingCall.h"
#include "tests/kit/NetworkGuard.h"
#include "tests/kit/OpenDescriptors.h"
#include "tests/kit/SimulatedCard.h"
#include "tests/kit/SimulatorProcess.h"
#include "tests/kit/TestMain.h"
#include "tests/kit/TimeFactor.h"
#include "tests/kit/UserWindow.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <functional>

#include <unistd.h>

#include <QApplication>
#include <QDir>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QMessageBox>
#include <QTemporaryDir>
#include <QTimer>

namespace {

constexpr unsigned int runLimit = 60; // seconds
constexpr int stepLimit = 10'000;     // milliseconds, like the next two
constexpr int versionsLimit = 1'000;
constexpr int closingLimit = 2'000;
constexpr int attempts = 3;
const QList<CardFile> files = {{"A.MP4", 5'000}, {"B.MP4", 5'001}};

bool isRight = true;

void complain(const QString& what)
{
    isRight = false;
    std::printf("wrong: %s\n", qPrintable(what));
}

/// An event filter that closes every message box that opens, and counts them. The session's boxes
/// only report success.
class BoxCloser : public QObject
{
public:
    BoxCloser() { qApp->installEventFilter(this); }
    int seen() const { return m_seen; }

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        auto* box = qobject_cast<QMessageBox*>(watched);
        if (box != nullptr && event->type() == QEvent::Show) {
            ++m_seen;
            QTimer::singleShot(0, box, &QDialog::accept);
        }
        return false;
    }

private:
    int m_seen = 0;
};

QString desktop()
{
    return QDir::homePath() + "/Desktop";
}

class Run
{
public:
    explicit Run(UserWindow& user) : m_user(user) {}

    void play()
    {
        link();
        step(
            "browse", [this] { browse(); }, [this] { return isListed(); });
        step(
            "download", [this] { download(); }, [] { return isDownloaded(); });
        step(
            "delete", [this] { deleteFirst(); }, [this] { return m_user.table().rowCount() == 1; });
        step(
            "format", [this] { m_user.clickFormat(); }, [this] { return isFormatted(); });
    }

private:
    /// Takes the step until it succeeds, at most three times.
    void step(const char* name, const std::function<void()>& take,
              const std::function<bool()>& succeeded)
    {
        for (int attempt = 0; attempt < attempts; ++attempt) {
            if (!support::eventually([this] { return m_user.showsLinkSuccess(); }, stepLimit)) {
                complain(QStringLiteral("no link before: %1").arg(name));
                return;
            }
            take();
            if (succeeded()) {
                return;
            }
        }
        complain(QStringLiteral("timed out: %1").arg(name));
    }

    void link()
    {
        m_user.clickLink();
        // A link thread whose socket cannot be created tries to connect forever. It then reports
        // neither versions nor a failure, so the result of this wait is ignored.
        const QStringList none = {QString(), QString(), QString(), QString(), QString()};
        support::eventually([&] { return m_user.versions() != none; }, versionsLimit);
    }

    void browse() { m_user.clickBrowse(); }

    bool isListed() const
    {
        return m_user.names() == QStringList{files[0].name, files[1].name} &&
               !m_user.row(0).contains(QString()) && !m_user.row(1).contains(QString());
    }

    void download()
    {
        m_user.chooseRows({0, 1});
        m_user.clickDownload();
        if (!support::eventually([this] { return m_user.isIdle(); }, stepLimit)) {
            complain("a download does not end");
        }
    }

    static bool isDownloaded()
    {
        return std::all_of(files.begin(), files.end(), [](const CardFile& file) {
            return seenFile(desktop() + "/DCIM/" + file.name, file.content()) == "whole";
        });
    }

    void deleteFirst()
    {
        m_user.chooseRows({0});
        m_user.clickDelete();
    }

    bool isFormatted() const { return m_boxes.seen() > 0 && m_user.table().rowCount() == 0; }

    UserWindow& m_user;
    BoxCloser m_boxes;
};

/// Reports every file and folder that exists in the home folder or was opened, except for the two
/// expected recordings and their folders.
void checkFolders()
{
    const QString folder = desktop() + "/DCIM";
    QDirIterator walk(QDir::homePath(),
                      QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                      QDirIterator::Subdirectories);
    QStringList expected = {desktop(), folder};
    for (const CardFile& file : files) {
        expected += folder + '/' + file.name;
    }
    while (walk.hasNext()) {
        if (!expected.contains(walk.next())) {
            complain("made: " + walk.filePath());
        }
    }
    for (const std::string& path : calls::paths()) {
        const QString given = QString::fromStdString(path);
        if (!expected.contains(QDir::cleanPath(given))) {
            complain("opened: " + given);
        }
    }
}

void runAndClose(SimulatorProcess& simulator)
{
    const int before = support::openDescriptors();
    UserWindow user;
    Run(user).play();
    QElapsedTimer clock;
    clock.start();
    user.destroy();
    if (clock.elapsed() > closingLimit * support::timeFactor()) {
        complain(QStringLiteral("closing took %1 ms").arg(clock.elapsed()));
    }
    if (support::openDescriptors() > before) {
        complain("descriptors stay open");
    }
    checkFolders();
    if (!simulator.end()) {
        complain(simulator.error());
    }
}

void tellCounts()
{
    const auto counts = calls::counts();
    for (std::size_t call = 0; call < counts.size(); ++call) {
        std::printf("calls: %s %d\n", calls::names[call], counts[call]);
    }
    std::printf("failed: %s\n", calls::hasFailed() ? "yes" : "no");
}

} // namespace

int main(int argc, char** argv)
{
    ::alarm(runLimit);
    app::setUpProcess();
    const support::TestEnvironment environment;
    const QApplication application(argc, argv);
    const QString reason = support::whyNotInPrivateNetwork();
    if (!reason.isEmpty() || (argc != 1 && argc != 4) ||
        (argc == 4 && !calls::failFromNowOn(argv[1], std::atoi(argv[2]), argv[3]))) {
        std::fprintf(stderr, "failing_call_run: %s\n", qPrintable(reason));
        return 2;
    }
    const QTemporaryDir card;
    SimulatorProcess simulator;
    if (!writeCard(card.path(), files) ||
        !simulator.start({"--card", card.path(), "--heartbeat", "100"})) {
        std::fprintf(stderr, "failing_call_run: %s\n", qPrintable(simulator.error()));
        return 2;
    }
    runAndClose(simulator);
    tellCounts();
    return isRight ? EXIT_SUCCESS : EXIT_FAILURE;
}
