#include "tests/kit/TestMain.h"

#include "tests/kit/MessageLog.h"
#include "tests/kit/NetworkGuard.h"

#include <clocale>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <vector>

#include <unistd.h>

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

namespace support {

namespace {

#ifdef BELUN_EXPECT_SIGNED_CHAR
static_assert(std::numeric_limits<char>::is_signed == BELUN_EXPECT_SIGNED_CHAR);
#endif

constexpr std::size_t outputBufferSize = 65536;

} // namespace

TestEnvironment::TestEnvironment()
{
    std::signal(SIGPIPE, SIG_IGN);
    std::setvbuf(stdout, nullptr, _IOFBF, outputBufferSize);
    qputenv("TZ", "UTC");
    qputenv("LC_ALL", "C.UTF-8");
    std::setlocale(LC_ALL, "");
    qputenv("QT_QPA_PLATFORM", "offscreen");
    for (const char* name : {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "QT_LOGGING_RULES"}) {
        qunsetenv(name);
    }
    QTemporaryDir folder;
    folder.setAutoRemove(false);
    m_home = folder.path();
    if (!folder.isValid() || !QDir(m_home).mkdir(QStringLiteral("Desktop"))) {
        qFatal("no home folder for the test: %s", qPrintable(folder.errorString()));
    }
    qputenv("HOME", m_home.toLocal8Bit());
    qputenv("XDG_RUNTIME_DIR", m_home.toLocal8Bit());
    // Fontconfig stores font data in this folder that the system's cache lacks.
    qputenv("XDG_CACHE_HOME", m_caches.path().toLocal8Bit());
}

TestEnvironment::~TestEnvironment()
{
    QDir(m_home).removeRecursively();
}

int runTest(QObject& test, int argc, char** argv, bool needsNetwork)
{
    if (needsNetwork) {
        const QString reason = whyNotInPrivateNetwork();
        if (!reason.isEmpty()) {
            std::fprintf(stderr, "%s\nRun this test with tools/private-network.\n",
                         qPrintable(reason));
            return EXIT_FAILURE;
        }
    }
    std::vector<char*> arguments(argv, argv + argc);
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    // Qt 6 also handles SIGPIPE, although it is ignored, and stops the process to print a stack
    // trace.
    char withoutCrashHandler[] = "-nocrashhandler";
    arguments.push_back(withoutCrashHandler);
#endif
    // qInit() installs Qt Test's message handler. Ours is installed afterwards and passes messages
    // on to that handler.
    QTest::qInit(&test, static_cast<int>(arguments.size()), arguments.data());
    MessageLog::instance().install();
    const int failed = QTest::qRun();
    const QStringList stray = MessageLog::instance().uninstall();
    QTest::qCleanup();
    for (const QString& line : stray) {
        std::fprintf(stderr, "FAIL!  : unexpected message from another thread: %s\n",
                     qPrintable(line));
    }
    return failed != 0 || !stray.isEmpty() ? EXIT_FAILURE : EXIT_SUCCESS;
}

} // namespace support
