// What every test class runs in. A test program holds all classes of one folder.
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

/// Makes every run the same: windows offscreen, UTC, the C locale with UTF-8, SIGPIPE ignored,
/// standard output fully buffered as on a pipe, and a home folder of the test's own, with an empty
/// folder Desktop, in HOME. Caches are kept in another folder: what is in the home, the program made.
/// Nothing of the user's is touched.
class TestEnvironment
{
public:
    TestEnvironment();
    ~TestEnvironment(); ///< Removes both folders.
    TestEnvironment(const TestEnvironment&) = delete;
    TestEnvironment& operator=(const TestEnvironment&) = delete;

private:
    QString m_home;
    QTemporaryDir m_caches;
};

/// Runs the test object's functions. A warning of Qt's, or anything worse, that no ExpectedWarning
/// waits for fails the function it comes in; QTest::ignoreMessage does not help. With
/// `needsNetwork` nothing runs unless this is the private network.
int runTest(QObject& test, int argc, char** argv, bool needsNetwork);

#ifdef QT_WIDGETS_LIB
using TestApplication = QApplication;
#else
using TestApplication = QCoreApplication;
#endif

/// Runs one test class with the arguments of a program; the first is the program's name.
using TestRun = int (*)(int argc, char** argv);

template <class Test, bool NeedsNetwork>
int runTestClass(int argc, char** argv)
{
    const TestEnvironment environment;
    const TestApplication application(argc, argv);
    Test test;
    return runTest(test, argc, argv, NeedsNetwork);
}

/// Makes a class known to the test program that its file is part of.
class TestRegistration
{
public:
    TestRegistration(const char* className, TestRun run);
};

} // namespace support

/// Adds a test class to its program: with a QApplication where Widgets are linked, else with a
/// QCoreApplication.
#define BELUN_TEST(Class)                                                                          \
    static const support::TestRegistration registration##Class(                                    \
        #Class, support::runTestClass<Class, false>);

/// The same for a test that uses the devices' addresses: it refuses to start outside the private
/// network.
#define BELUN_NETWORK_TEST(Class)                                                                  \
    static const support::TestRegistration registration##Class(                                    \
        #Class, support::runTestClass<Class, true>);
