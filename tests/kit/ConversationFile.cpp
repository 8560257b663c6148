#include "tests/kit/ConversationFile.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>

namespace support {

namespace {

struct WrongLine
{
    const char* reason;
};

void require(bool condition, const char* reason)
{
    if (!condition) {
        throw WrongLine{reason};
    }
}

std::string unescaped(const std::string& text)
{
    static const std::regex token(R"([^\\]+|\\(?:([rns\\])|x([0-9A-F]{2})|\(([0-9]{1,6}) (.)\)))");
    std::string bytes;
    std::smatch part;
    for (auto at = text.begin(); at != text.end(); at = part[0].second) {
        require(
            std::regex_search(at, text.end(), part, token, std::regex_constants::match_continuous),
            "unknown escape");
        if (part[1].matched) {
            bytes += "\r\n \\"[std::string("rns\\").find(part[1])];
        } else if (part[2].matched) {
            bytes += static_cast<char>(std::stoi(part[2], nullptr, 16));
        } else if (part[3].matched) {
            bytes.append(std::stoul(part[3]), *part[4].first);
        } else {
            bytes += part[0];
        }
    }
    return bytes;
}

/// A parser for one file. take() must be called with each line in order, and then with an empty
/// line.
class Parser
{
public:
    Parser(const std::string& file, std::vector<Conversation>& all)
        : m_prefix(file + ": "), m_all(all)
    {
    }

    void take(const std::string& line)
    {
        static const std::regex comment("(?:# *(.*))?");
        static const std::regex client(R"(client (.*?)(?: +\| (.*))?)");
        static const std::string outcome = R"re(= (.+?)(?: unread (".*"))?)re";
        static const std::regex sent(R"(<(?: +(\S.*?))??(?: +! (\w+))?(?: +\| (.*))?(?: +)" +
                                     outcome + ")?");
        static const std::regex asIn("then as in: (.*)");
        static const std::regex result(outcome);

        if (line.rfind('<', 0) == 0 && m_continues && !call().result.empty()) {
            beginCall("", "");
        }
        const bool belongsToCall = line.find_first_of("<t=") == 0;
        const bool callIsOpen = !m_all.empty() && call().result.empty();
        require(!belongsToCall || callIsOpen, "no client line above");
        require(belongsToCall || !callIsOpen, "the result is missing above");
        std::smatch part;
        if (std::regex_match(line, part, comment)) {
            m_name = part[1];
            m_continues = false;
            return;
        }
        m_lines[m_name].push_back(line);
        if (std::regex_match(line, part, client)) {
            beginCall(part[1], part[2]);
        } else if (std::regex_match(line, part, sent)) {
            addPiece(unescaped(part[1]), part[2], part[3]);
            if (part[4].matched) {
                endCall(part[4], part[5]);
            }
        } else if (std::regex_match(line, part, asIn)) {
            const std::vector<std::string> lines = m_lines[part[1]];
            require(lines.size() > 2 && part[1] != m_name, "no such conversation above");
            std::for_each(lines.begin() + 2, lines.end(), [this](const auto& one) { take(one); });
        } else if (std::regex_match(line, part, result)) {
            endCall(part[1], part[2]);
        } else {
            throw WrongLine{"not understood; lines begin with # client < = then"};
        }
    }

private:
    Exchange& call() { return m_all.back().exchanges.back(); }

    void beginCall(const std::string& text, const std::string& closedAtStart)
    {
        if (!m_continues) {
            require(!m_name.empty(), "no name in a comment right above");
            m_all.push_back({m_prefix + m_name, {}});
        }
        const bool mayEnd = !closedAtStart.empty() || m_all.back().mayEndAnywhere();
        require(!m_continues || !mayEnd, "| in a conversation of several calls");
        m_all.back().exchanges.push_back({text, closedAtStart, {}, {}, false, false, {}, {}});
        m_continues = true;
    }

    void addPiece(const std::string& bytes, const std::string& action, const std::string& closed)
    {
        const std::vector<Piece>& above = call().pieces;
        require(above.empty() || above.back().closed.empty() == call().closedAtStart.empty(),
                "the line above must state a result after |, as client does, or none");
        require(action.empty() || action == "close" || action == "reset" || action == "pause",
                "unknown action");
        call().pieces.push_back({bytes, closed});
        call().peerCloses = action == "close";
        call().peerResets = action == "reset";
        if (action == "pause") {
            call().pauses.push_back(allBytes(call().pieces).size());
        }
    }

    void endCall(const std::string& result, const std::string& unread)
    {
        require(!call().pieces.empty() && call().pieces.back().closed.empty(),
                "no < above, or | in the last one");
        call().pieces.back().closed = call().result = result;
        call().unread = unread;
    }

    const std::string m_prefix;
    std::vector<Conversation>& m_all;
    std::map<std::string, std::vector<std::string>> m_lines; // of each conversation, by its name
    std::string m_name;
    bool m_continues = false; // the next call belongs to the same conversation
};

} // namespace

Conversations readConversations(const std::string& path)
{
    std::error_code error;
    std::set<std::filesystem::path> files(std::filesystem::directory_iterator(path, error), {});
    if (std::filesystem::is_regular_file(path, error)) {
        files.insert(path);
    }
    Conversations conversations;
    for (const std::filesystem::path& file : files) {
        Parser parser(file.stem(), conversations.all);
        std::ifstream lines(file);
        std::string line;
        const bool isPage = file.extension() == ".md";
        bool inside = !isPage;
        int number = 1;
        try {
            for (; std::getline(lines, line); ++number) {
                if (isPage && line.rfind("```", 0) == 0) {
                    inside = line == "```conversation";
                    parser.take("");
                } else if (inside) {
                    parser.take(line);
                }
            }
            parser.take("");
        } catch (const WrongLine& wrong) {
            return {{}, file.string() + ":" + std::to_string(number) + ": " + wrong.reason};
        }
    }
    conversations.error = conversations.all.empty() ? path + ": no conversation" : "";
    return conversations;
}

} // namespace support
