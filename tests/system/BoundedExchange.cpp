#include "BoundedExchange.h"

#include <chrono>
#include <future>

#include <QElapsedTimer>
#include <QTest>

namespace {

constexpr std::chrono::seconds exchangeLimit(10);

} // namespace

Outcome bounded(RealServer& server, const std::function<Outcome()>& exchange)
{
    QElapsedTimer timer;
    timer.start();
    auto running = std::async(std::launch::async, exchange);
    if (running.wait_for(exchangeLimit) != std::future_status::ready) {
        server.stop();
        QTest::qFail("the exchange timed out", __FILE__, __LINE__);
    }
    Outcome outcome = running.get();
    outcome.milliseconds = timer.elapsed();
    return outcome;
}
