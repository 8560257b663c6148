// Commits the error named by the argument, so that a test can check that it is reported.
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <string>

#include <QCoreApplication>
#include <QThread>

namespace {

/// A thread that shares a plain number with the creating thread, as the link threads share their
/// heartbeat count, but without a suppression.
class CountingThread : public QThread
{
public:
    int plantedCount = 0;

protected:
    void run() override
    {
        for (int i = 0; i < 1000; ++i) {
            ++plantedCount;
        }
    }
};

void race(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    CountingThread thread;
    thread.start();
    do {
        ++thread.plantedCount;
    } while (!thread.wait(1));
    std::printf("%d\n", thread.plantedCount);
}

void leak()
{
    volatile char* block = new char[100];
    block[0] = 'x';
}

void readBehindTheEnd(int argc)
{
    const std::string text(static_cast<std::size_t>(argc) + 30, 'x');
    const char* volatile end = text.data() + text.size();
    std::printf("%d\n", end[1]);
}

void countTooFar(int argc)
{
    volatile int most = INT_MAX;
    std::printf("%d\n", most + argc);
}

} // namespace

int main(int argc, char** argv)
{
    const std::string mistake = argc == 2 ? argv[1] : "";
    if (mistake == "race") {
        race(argc, argv);
    } else if (mistake == "leak") {
        leak();
    } else if (mistake == "overrun") {
        readBehindTheEnd(argc);
    } else if (mistake == "overflow") {
        countTooFar(argc);
    }
    return EXIT_SUCCESS;
}
