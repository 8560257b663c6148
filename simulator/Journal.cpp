#include "simulator/Journal.h"

#include "simulator/Text.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>

#include <fcntl.h>

namespace simulator {

namespace {

std::string timeText()
{
    std::timespec now{};
    std::timespec_get(&now, TIME_UTC);
    std::tm parts{};
    ::gmtime_r(&now.tv_sec, &parts);
    char text[64];
    const std::size_t length = std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S", &parts);
    std::snprintf(text + length, sizeof text - length, ".%06ldZ", now.tv_nsec / 1000);
    return text;
}

} // namespace

JournalLine::JournalLine(std::string_view device, int connection, std::string_view event)
    : m_text("{\"time\":" + jsonString(timeText()))
{
    text("device", device);
    if (connection != 0) {
        number("connection", static_cast<std::uint64_t>(connection));
    }
    text("event", event);
}

JournalLine& JournalLine::text(std::string_view name, std::string_view value)
{
    m_text += "," + jsonString(name) + ":" + jsonString(value);
    return *this;
}

JournalLine& JournalLine::number(std::string_view name, std::uint64_t value)
{
    m_text += "," + jsonString(name) + ":" + std::to_string(value);
    return *this;
}

JournalLine& JournalLine::bytes(std::string_view value)
{
    return text("bytes", hexText(value));
}

std::string Journal::open(const std::string& path, bool full)
{
    m_full = full;
    m_file = FileDescriptor(
        ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_APPEND | O_CLOEXEC, 0666));
    return m_file.valid() ? std::string() : path + ": " + std::strerror(errno);
}

void Journal::write(const JournalLine& line)
{
    if (!m_file.valid()) {
        return;
    }
    const std::string text = line.finished() + "\n";
    std::size_t done = 0;
    while (done < text.size()) {
        const ssize_t count = ::write(m_file.get(), text.data() + done, text.size() - done);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0) {
            if (!m_failed) {
                std::fprintf(stderr, "belun-simulator: journal: %s\n", std::strerror(errno));
                m_failed = true;
            }
            return;
        }
        done += static_cast<std::size_t>(count);
    }
}

} // namespace simulator
