#include "tests/kit/StdoutCapture.h"

#include <cstdio>

#include <sys/mman.h>
#include <unistd.h>

#include <QByteArray>
#include <QTest>

namespace support {

StdoutCapture::StdoutCapture()
    : m_collected(::memfd_create("standard output", MFD_CLOEXEC)), m_real(::dup(STDOUT_FILENO))
{
    std::fflush(stdout);
    if (m_collected < 0 || m_real < 0 || ::dup2(m_collected, STDOUT_FILENO) < 0) {
        qFatal("standard output cannot be captured");
    }
}

StdoutCapture::~StdoutCapture()
{
    std::fflush(stdout);
    ::dup2(m_real, STDOUT_FILENO);
    ::close(m_real);
    const QByteArray all = text();
    std::fwrite(all.constData(), 1, static_cast<std::size_t>(all.size()), stdout);
    std::fflush(stdout);
    ::close(m_collected);
}

QByteArray StdoutCapture::text() const
{
    QByteArray all;
    char buffer[4096];
    ssize_t count = 0;
    while ((count = ::pread(m_collected, buffer, sizeof buffer, all.size())) > 0) {
        all.append(buffer, static_cast<int>(count));
    }
    return all;
}

bool StdoutCapture::waitFor(const QByteArray& part, int limit) const
{
    return QTest::qWaitFor([&] { return text().contains(part); }, limit);
}

} // namespace support
