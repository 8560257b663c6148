#include "tests/card/AnswerCuts.h"

#include "http/HTTPClient.h"
#include "tests/kit/PieceSender.h"
#include "tests/kit/SocketPair.h"

#include <cstdint>
#include <utility>

#include <QString>
#include <QTest>

using support::Delivery;

namespace {

const std::string noAnswer = "no answer";

std::string outcome(std::size_t announced, const Delivery& delivery, const AnswerReader& read)
{
    support::SocketPair pair;
    HTTPSession session;
    session.socketDescriptor = std::exchange(pair.product, -1); // closed by the session
    support::PieceSender sender(pair.test, session.socketDescriptor, delivery);
    HTTPClient client;
    HTTPResponse response;
    response.contentLength = static_cast<std::uint32_t>(announced);
    std::string body;
    const bool received = client.readBody(session, response, body);
    sender.finish();
    return received ? read(body) : noAnswer;
}

void compare(const std::string& actual, const std::string& expected, const char* how,
             std::size_t position)
{
    const auto text = [](const std::string& bytes) { return QString::fromStdString(bytes); };
    QVERIFY2(actual == expected, qPrintable(QStringLiteral("%1 %2: \"%3\" instead of \"%4\"")
                                                .arg(QLatin1String(how))
                                                .arg(position)
                                                .arg(text(actual), text(expected))));
}

} // namespace

void checkEveryCut(const std::vector<support::Piece>& pieces, const AnswerReader& read)
{
    const std::string bytes = support::allBytes(pieces);
    const std::string& whole = pieces.back().closed;
    const auto upTo = [&](std::size_t count) {
        return support::closedBehind(pieces, noAnswer, count);
    };
    compare(outcome(bytes.size(), {{bytes}}, read), whole, "whole,", bytes.size());
    compare(outcome(bytes.size(), {support::singleBytes(bytes)}, read), whole, "byte by byte,",
            bytes.size());
    compare(outcome(0, {support::singleBytes(bytes)}, read), upTo(1),
            "byte by byte without a length,", bytes.size());
    for (std::size_t position = 1; position < bytes.size() && !QTest::currentTestFailed();
         ++position) {
        const Delivery cut{support::cut(bytes, {position})};
        compare(outcome(bytes.size(), cut, read), whole, "split after", position);
        compare(outcome(0, cut, read), upTo(position), "without a length split after", position);
    }
    for (std::size_t count = 0; count <= bytes.size() && !QTest::currentTestFailed(); ++count) {
        const Delivery closed{{bytes.substr(0, count)}, true};
        compare(outcome(bytes.size(), closed, read), count < bytes.size() ? noAnswer : whole,
                "closed after", count);
        compare(outcome(0, closed, read), upTo(count), "without a length closed after", count);
    }
}
