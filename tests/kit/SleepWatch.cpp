#include "tests/kit/SleepWatch.h"

#include <fstream>
#include <string>

#include <unistd.h>

#include <QObject>
#include <QTest>
#include <QThread>

namespace support {

namespace {

constexpr int looks = 5; // consecutive checks, because a thread also sleeps briefly on a mutex

} // namespace

bool threadIsAsleep(int id)
{
    std::ifstream file("/proc/self/task/" + std::to_string(id) + "/stat");
    std::string line;
    std::getline(file, line);
    const std::size_t name = line.rfind(')'); // "number (name) state ..."
    return name != std::string::npos && line.compare(name, 3, ") S") == 0;
}

SleepWatch::SleepWatch(QThread& thread)
    : m_connection(QObject::connect(
          &thread, &QThread::started, &thread, [this] { m_id = static_cast<int>(::gettid()); },
          Qt::DirectConnection))
{
}

SleepWatch::~SleepWatch()
{
    QObject::disconnect(m_connection);
}

bool SleepWatch::waitUntilAsleep() const
{
    int seen = 0;
    return QTest::qWaitFor([&] {
        seen = isAsleep() ? seen + 1 : 0;
        return seen >= looks;
    });
}

} // namespace support
