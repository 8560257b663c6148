// Plays the conversations of one receive whole, byte by byte, split into two receives and closed
// after every byte.
#include "tests/kit/TestMain.h"
#include "tests/link/LinkConversations.h"
#include "tests/link/LinkPlay.h"

#include <map>
#include <string>
#include <utility>
#include <vector>

#include <QTest>

using support::Conversation;
using support::Exchange;

namespace {

/// Returns an exchange with one receive.
Exchange receiving(const std::string& bytes, const std::string& result, bool closes = false)
{
    return {"", {}, {{bytes, {}}}, {}, closes, false, result, {}};
}

/// Returns the result of a receive followed by what happens when the module closes.
std::string closedAfter(const std::string& result, const Module& module)
{
    const std::string afterClose = module.afterClose.toStdString();
    return result == "nothing" ? afterClose : result + ", " + afterClose;
}

/// What each receive means to the link of a module.
class Meanings
{
public:
    explicit Meanings(const Module& module) : m_module(module)
    {
        for (const Conversation& conversation : linkConversations(module.name).all) {
            const Exchange& exchange = conversation.exchanges.front();
            const std::string bytes = allBytes(exchange.pieces);
            for (std::size_t count = 1; conversation.mayEndAnywhere() && count <= bytes.size();
                 ++count) {
                m_stated[bytes.substr(0, count)] =
                    support::closedBehind(exchange.pieces, exchange.closedAtStart, count);
            }
        }
    }

    /// Returns the result that a conversation states for a receive of exactly these bytes. If none
    /// does, returns "nothing" for bytes that do not begin with the start byte, otherwise an error.
    std::string of(const std::string& bytes) const
    {
        const auto stated = m_stated.find(bytes);
        if (stated != m_stated.end()) {
            return stated->second;
        }
        return bytes.front() == m_module.startByte ? "stated by no conversation" : "nothing";
    }

private:
    const Module& m_module;
    std::map<std::string, std::string> m_stated;
};

} // namespace

class VehicleFrame_EveryCutTest : public QObject
{
    Q_OBJECT

private slots:
    void receivedWholeByteByByteAndCutAnywhere_data();
    void receivedWholeByteByByteAndCutAnywhere();
    void closedAnywhere_data() { receivedWholeByteByByteAndCutAnywhere_data(); }
    void closedAnywhere();
};

void VehicleFrame_EveryCutTest::receivedWholeByteByByteAndCutAnywhere_data()
{
    addConversations("", true);
}

void VehicleFrame_EveryCutTest::receivedWholeByteByByteAndCutAnywhere()
{
    QFETCH(Conversation, conversation);
    const Meanings meanings(moduleOf(conversation));
    const std::string bytes = allBytes(conversation.exchanges.front().pieces);
    std::vector<std::vector<std::string>> plays{{bytes}, support::singleBytes(bytes)};
    for (std::size_t position = 1; position < bytes.size(); ++position) {
        plays.push_back(support::cut(bytes, {position}));
    }
    LinkPlay play(moduleOf(conversation));
    for (const std::vector<std::string>& receives : plays) {
        for (const std::string& receive : receives) {
            const std::string meaning = meanings.of(receive);
            const QString happened = play.happensIn(receiving(receive, meaning));
            if (happened != QString::fromStdString(meaning)) {
                qInfo("%zu receives, the first of %zu bytes", receives.size(),
                      receives.front().size());
            }
            QCOMPARE(happened, QString::fromStdString(meaning));
        }
    }
    QCOMPARE(play.happensAfterwards(), QString("nothing"));
}

void VehicleFrame_EveryCutTest::closedAnywhere()
{
    QFETCH(Conversation, conversation);
    const Module& module = moduleOf(conversation);
    const Exchange& exchange = conversation.exchanges.front();
    const std::string bytes = allBytes(exchange.pieces);
    LinkPlay play(module);
    for (std::size_t count = 0; count <= bytes.size(); ++count) {
        const std::string expected = closedAfter(
            support::closedBehind(exchange.pieces, exchange.closedAtStart, count), module);
        const QString happened = play.happensIn(receiving(bytes.substr(0, count), expected, true));
        if (happened != QString::fromStdString(expected)) {
            qInfo("closed after %zu of %zu bytes", count, bytes.size());
        }
        QCOMPARE(happened, QString::fromStdString(expected));
    }
}

BELUN_NETWORK_TEST(VehicleFrame_EveryCutTest)
#include "VehicleFrame_EveryCutTest.moc"
