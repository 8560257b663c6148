// The environment of every test class, and the registration of the classes of a test program.
#pragma once

#include <QCoreApplication>
#include <QObject>
#include <QString>
#include <QTemporaryDir>
#include <QTest>
#ifdef QT_WIDGETS_LIB
#include <QApplication>
#endif

namespace support {

/// The same environment for every run: offscreen windows, UTC, the C locale with UTF-8, SIGPIPE
/// ignored, standard output fully buffered as on a pipe, and a temporary home folder in HOME with
/// an empty folder Desktop. The user's files are not used.
class TestEnvironment
{
public:
    TestEnvironment();
    ~TestEnvironment(); ///< Removes the home folder and the cache folder.
    TestEnvironment(const TestEnvironment&) = delete;
    TestEnvironment& operator=(const TestEnvironment&) = delete;

private:
    QString m_home;
    QTemporaryDir m_caches;
};

/// Runs the test object's functions. A Qt warning or critical message fails the function in which
/// it occurs; QTest::ignoreMessage has no effect. With `needsNetwork` no function is run outside a
/// private network.
int runTest(QObject& test, int argc, char** argv, bool needsNetwork);

#ifdef QT_WIDGETS_LIB
using TestApplication = QApplication;
#else
using TestApplication = QCoreApplication;
#endif

/// A function that runs one test class with a program's arguments, the first of which is the
/// program's name.
using TestRun = int (*)(int argc, char** argv);

template <class Test, bool NeedsNetwork>
int runTestClass(int argc, char** argv)
{
    const TestEnvironment environment;
    const TestApplication application(argc, argv);
    Test test;
    return runTest(test, argc, argv, NeedsNetwork);
}

/// The registration of a class with the test program that its file belongs to.
class TestRegistration
{
public:
    TestRegistration(const char* className, TestRun run);
};

} // namespace support

/// Adds a test class to its program, with a QApplication if Widgets are linked, otherwise with a
/// QCoreApplication.
#define BELUN_TEST(Class)                                                                          \
    static const support::TestRegistration registration##Class(                                    \
        #Class, support::runTestClass<Class, false>);

/// Like BELUN_TEST, for a test that uses the devices' addresses: it refuses to start outside a
/// private network.
#define BELUN_NETWORK_TEST(Class)                                                                  \
    static const support::TestRegistration registration##Class(                                    \
        #Class, support::runTestClass<Class, true>);
