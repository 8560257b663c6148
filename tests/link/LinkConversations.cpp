#include "tests/link/LinkConversations.h"

#include <optional>
#include <regex>

using support::Conversation;
using support::Conversations;
using support::Exchange;
using support::Piece;

namespace {

const std::regex callForm("(?:(control|ground|receiver)(?: after ([0-9]+) ticks?)?)?");

/// Returns the bytes of "AA 78*94", or nothing if the text has another form.
std::optional<std::string> decoded(const std::string& text)
{
    static const std::regex byte(R"(([0-9A-F]{2})(?:\*([0-9]{1,3}))?(?: |$))");
    std::string bytes;
    std::smatch part;
    for (auto at = text.begin(); at != text.end(); at = part[0].second) {
        if (!std::regex_search(at, text.end(), part, byte,
                               std::regex_constants::match_continuous)) {
            return std::nullopt;
        }
        bytes.append(part[2].matched ? std::stoul(part[2]) : 1,
                     static_cast<char>(std::stoi(part[1], nullptr, 16)));
    }
    return bytes;
}

void addConversations(const std::string& path, const std::string& client, Conversations& to)
{
    Conversations read = support::readConversations(path);
    to.error += read.error;
    const std::size_t before = to.all.size();
    for (Conversation& conversation : read.all) {
        for (Exchange& exchange : conversation.exchanges) {
            if (!std::regex_match(exchange.call, callForm)) {
                to.error += conversation.name + ": unknown call: " + exchange.call + "\n";
            }
            for (Piece& piece : exchange.pieces) {
                const std::optional<std::string> bytes = decoded(piece.bytes);
                if (!bytes) {
                    to.error += conversation.name + ": not hexadecimal: " + piece.bytes + "\n";
                }
                piece.bytes = bytes.value_or("");
            }
        }
        if (conversation.exchanges.front().call.rfind(client, 0) == 0) {
            to.all.push_back(conversation);
        }
    }
    if (to.all.size() == before) {
        to.error += path + ": no conversation of " + client + "\n";
    }
}

} // namespace

Conversations linkConversations(const std::string& client)
{
    Conversations conversations;
    addConversations(TEST_DATA "/conversations/link", client, conversations);
    if (client != "receiver") {
        addConversations(LINK_PAGE, client, conversations);
    }
    return conversations;
}

int ticksOf(const Exchange& exchange)
{
    std::smatch part;
    std::regex_match(exchange.call, part, callForm);
    return part[2].matched ? std::stoi(part[2]) : 0;
}
