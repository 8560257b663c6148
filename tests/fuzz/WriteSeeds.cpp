// Writes the bytes that the peer sends in conversations as seeds for the fuzz targets.
#include "tests/fuzz/Require.h"
#include "tests/kit/ConversationFile.h"

#include <cctype>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <stdexcept>
#include <string>

namespace {

using support::Exchange;

/// The contents of seeds by fuzz target.
using Contents = std::map<std::string, std::string>;

/// The end of a line of numbers: the target adds 1 to the last number to get the size of the
/// pieces.
constexpr char inOnePiece[] = " 511\n";

/// Returns the number after "NAME=", or 0.
std::string numberIn(const std::string& text, const std::string& name)
{
    const std::size_t at = text.find(" " + name + "=");
    const std::size_t begin = at + name.size() + 2;
    return at == std::string::npos ? "0" : text.substr(begin, text.find(' ', begin) - begin);
}

/// Returns what follows the head, or an empty text if the head has no end.
std::string bodyIn(const std::string& answer)
{
    const std::size_t headEnd = answer.find("\r\n\r\n");
    return headEnd == std::string::npos ? "" : answer.substr(headEnd + 4);
}

Contents contentsOf(const Exchange& exchange)
{
    const std::string bytes = support::allBytes(exchange.pieces);
    const std::string operation = exchange.call.substr(0, exchange.call.find(' '));
    if (operation == "readHeader" || operation == "readLine" || operation == "readLimit" ||
        operation == "get" || operation == "post") {
        return {{"AnswerHead", bytes}, {"VerifyAnswer", "\xFF" + bytes}};
    }
    if (operation == "readBody" && exchange.call.find(" chunked") != std::string::npos) {
        return {{"ChunkedBody", bytes}};
    }
    if (operation == "readBody") {
        const std::string numbers =
            numberIn(exchange.call, "length") + " " + numberIn(exchange.call, "received");
        return {{"PlainBody", numbers + inOnePiece + bytes}};
    }
    if (operation == "download") {
        const std::string length = numberIn(" " + exchange.result, "length");
        return {{"DownloadHead", bytes}, {"DownloadBody", length + inOnePiece + bodyIn(bytes)}};
    }
    if (operation == "count") {
        return {{"FileCount", bytes}, {"VerifyCard", bytes}};
    }
    if (operation == "list") {
        return {{"FileList", bytes}, {"VerifyCard", bytes}};
    }
    if (operation == "details") {
        return {{"FileInfo", bytes}, {"VerifyCard", bytes}};
    }
    throw std::runtime_error("no fuzz target for the call: " + exchange.call);
}

/// Returns the name of a conversation as that of a file: "plain: whole answer" as
/// "plain-whole-answer".
std::string fileNameOf(const std::string& name)
{
    std::string fileName;
    for (const char letter : name) {
        const bool kept = std::isalnum(static_cast<unsigned char>(letter)) != 0;
        if (kept || (!fileName.empty() && fileName.back() != '-')) {
            fileName += kept ? letter : '-';
        }
    }
    return fileName;
}

void write(const std::filesystem::path& path, const std::string& bytes)
{
    if (std::filesystem::exists(path)) {
        throw std::runtime_error("two conversations give " + path.string());
    }
    std::filesystem::create_directories(path.parent_path());
    std::ofstream file(path, std::ios::binary);
    if (!(file << bytes << std::flush)) {
        throw std::runtime_error("cannot write " + path.string());
    }
}

void writeSeeds(const std::filesystem::path& seeds, const std::string& folder)
{
    const support::Conversations conversations = support::readConversations(folder);
    if (!conversations.error.empty()) {
        throw std::runtime_error(conversations.error);
    }
    for (const support::Conversation& conversation : conversations.all) {
        std::string name = fileNameOf(conversation.name);
        for (const Exchange& exchange : conversation.exchanges) {
            for (const auto& [target, bytes] : contentsOf(exchange)) {
                if (bytes.size() <= fuzz::longestInput) {
                    write(seeds / target / name, bytes);
                }
            }
            name += "-next";
        }
    }
}

} // namespace

int main(int argc, char* argv[])
{
    if (argc < 3) {
        std::cerr << "usage: " << argv[0] << " SEEDS CONVERSATIONS...\n";
        return 2;
    }
    try {
        std::filesystem::remove_all(argv[1]); // removes seeds of deleted conversations
        for (int folder = 2; folder < argc; ++folder) {
            writeSeeds(argv[1], argv[folder]);
        }
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
    return 0;
}
