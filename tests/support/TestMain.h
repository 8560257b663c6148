// The main function of a test program.
#pragma once

#include <QCoreApplication>
#include <QObject>
#include <QString>
#include <QTest>
#ifdef QT_WIDGETS_LIB
#include <QApplication>
#endif

namespace support {

/// Makes every run the same: windows offscreen, UTC, the C locale with UTF-8, SIGPIPE ignored,
/// standard output fully buffered as on a pipe, and a home folder of the test's own, with an empty
/// folder Desktop, in HOME. Nothing of the user's is touched.
class TestEnvironment
{
public:
    TestEnvironment();
    ~TestEnvironment(); ///< Removes the home folder.
    TestEnvironment(const TestEnvironment&) = delete;
    TestEnvironment& operator=(const TestEnvironment&) = delete;

private:
    QString m_home;
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

template <class Test>
int testMain(int argc, char** argv, bool needsNetwork)
{
    const TestEnvironment environment;
    const TestApplication application(argc, argv);
    Test test;
    return runTest(test, argc, argv, needsNetwork);
}

} // namespace support

/// The main function for a test class: with a QApplication where Widgets are linked, else with a
/// QCoreApplication.
#define BELUN_TEST_MAIN(Class)                                                                     \
    int main(int argc, char** argv)                                                                \
    {                                                                                              \
        return support::testMain<Class>(argc, argv, false);                                        \
    }

/// The same for a test that uses the devices' addresses: it refuses to start outside the private
/// network.
#define BELUN_NETWORK_TEST_MAIN(Class)                                                             \
    int main(int argc, char** argv)                                                                \
    {                                                                                              \
        return support::testMain<Class>(argc, argv, true);                                         \
    }
