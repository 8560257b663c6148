// Measures operations of the window from inside the program.
#include "app/ProcessSetup.h"
#include "bench/Report.h"
#include "bench/WindowUser.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

#include <QApplication>
#include <QMetaObject>
#include <QTimer>

namespace {

constexpr char usage[] =
    "Usage: bench_window JOB [NUMBER]\n"
    "  browse N      browse N times; one line each\n"
    "  download      link, browse, download all recordings\n"
    "  watch         like 'download'; also reports the delays of a timer, and when the full\n"
    "                progress bar was painted\n"
    "  downloads N   link, browse, download all recordings N times; one line each\n"
    "  select N      browse, then collect the selection N times\n"
    "  idle N        keep the window open for N seconds\n"
    "  linked N      link, then keep the window open for N seconds\n"
    "Prints one line of JSON per result. Needs the private network.\n";

/// The delays of a five-millisecond timer in the thread that creates this object.
class TimerDelays : public QObject
{
public:
    TimerDelays()
    {
        m_timer.setTimerType(Qt::PreciseTimer);
        connect(&m_timer, &QTimer::timeout, this, [this] {
            m_delays.push_back(std::max(0.0, (bench::now() - m_last) * 1000 - interval));
            m_last = bench::now();
        });
        m_delays.reserve(100'000);
        m_last = bench::now();
        m_timer.start(interval);
    }

    /// Returns the delay in milliseconds that the given share of all ticks did not exceed.
    double percentile(double share)
    {
        if (m_delays.empty()) {
            return 0;
        }
        std::sort(m_delays.begin(), m_delays.end());
        const auto last = static_cast<double>(m_delays.size() - 1);
        return m_delays[static_cast<std::size_t>(share * last)];
    }

    double ticks() const { return static_cast<double>(m_delays.size()); }

private:
    static constexpr int interval = 5; // milliseconds
    QTimer m_timer;
    double m_last = 0;
    std::vector<double> m_delays;
};

/// An event filter that records when the progress bar was last painted full and how often it was
/// painted.
class FullBar : public QObject
{
public:
    explicit FullBar(QProgressBar& bar) : m_bar(bar) { bar.installEventFilter(this); }

    bool eventFilter(QObject* /*receiver*/, QEvent* event) override
    {
        if (event->type() == QEvent::Paint) {
            ++paints;
            if (m_bar.value() == m_bar.maximum()) {
                shownAt = bench::now();
            }
        }
        return false;
    }

    double shownAt = 0;
    double paints = 0;

private:
    QProgressBar& m_bar;
};

void browse(WindowUser& user, int rounds)
{
    for (int round = 0; round < rounds; ++round) {
        const double begin = bench::now();
        const double cpu = bench::cpuSeconds();
        user.browse();
        bench::report({{"seconds", bench::now() - begin},
                       {"cpu", bench::cpuSeconds() - cpu},
                       {"rows", user.table().rowCount()}});
    }
}

void download(WindowUser& user, int rounds)
{
    user.link();
    user.browse();
    for (int round = 0; round < rounds; ++round) {
        const double begin = bench::now();
        const double cpu = bench::cpuSeconds();
        user.downloadAll();
        bench::report({{"begin", begin},
                       {"seconds", bench::now() - begin},
                       {"cpu", bench::cpuSeconds() - cpu},
                       {"rows", user.table().rowCount()},
                       {"residentKilobytes", bench::residentKilobytes()},
                       {"peakKilobytes", bench::peakKilobytes()}});
    }
}

/// Downloads while a timer runs, and reports the delays of the timer and when the full bar was last
/// painted. topic_alive.py compares this time with the last modification of the file.
void watch(WindowUser& user)
{
    user.link();
    user.browse();
    TimerDelays delays;
    FullBar full(user.bar());
    const double begin = bench::now();
    user.downloadAll();
    bench::report({{"begin", begin},
                   {"seconds", bench::now() - begin},
                   {"median", delays.percentile(0.5)},
                   {"percentile99", delays.percentile(0.99)},
                   {"longest", delays.percentile(1)},
                   {"ticks", delays.ticks()},
                   {"paints", full.paints},
                   {"shownAt", full.shownAt}});
}

void select(WindowUser& user, int rounds)
{
    user.browse();
    user.table().selectAll();
    const double begin = bench::now();
    for (int round = 0; round < rounds; ++round) {
        QMetaObject::invokeMethod(&user.window(), "GetSelectedFiles", Qt::DirectConnection);
    }
    bench::report(
        {{"seconds", (bench::now() - begin) / rounds}, {"rows", user.table().rowCount()}});
}

bool run(WindowUser& user, const char* job, int number)
{
    if (std::strcmp(job, "browse") == 0) {
        browse(user, number);
    } else if (std::strcmp(job, "download") == 0) {
        download(user, 1);
    } else if (std::strcmp(job, "watch") == 0) {
        watch(user);
    } else if (std::strcmp(job, "downloads") == 0) {
        download(user, number);
    } else if (std::strcmp(job, "select") == 0) {
        select(user, number);
    } else if (std::strcmp(job, "idle") == 0 || std::strcmp(job, "linked") == 0) {
        if (std::strcmp(job, "linked") == 0) {
            user.link();
        }
        bench::report({{"begin", bench::now()}});
        WindowUser::wait(number * 1000);
    } else {
        return false;
    }
    return true;
}

} // namespace

int main(int argc, char* argv[])
{
    if (argc < 2 || std::strcmp(argv[1], "--help") == 0) {
        std::fputs(usage, stderr);
        return 2;
    }
    app::setUpProcess();
    QApplication application(argc, argv);
    WindowUser user;
    if (!run(user, argv[1], argc > 2 ? std::atoi(argv[2]) : 1)) {
        std::fputs(usage, stderr);
        return 2;
    }
    return 0;
}
