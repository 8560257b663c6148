#include "verify/CardReader.h"

#include "card/CardAnswers.h"
#include "card/CardCommands.h"
#include "card/FileInfoText.h"
#include "download/DownloadRequest.h"
#include "http/HTTPClient.h"
#include "verify/Numbers.h"

#include <cstddef>

namespace verify {

namespace {

// Limits in bytes, more than any valid answer has. A FAT32 folder has at most 65,536 entries, and a
// long name takes one entry for every 13 characters.
constexpr std::uint64_t countLimit = 4096;
constexpr std::uint64_t listLimit = 16'777'216;
constexpr std::uint64_t detailsLimit = 65536;

QByteArray commandRequest(const char* command, const std::string& argument)
{
    HTTPClient client;
    HTTPRequest request;
    request.url = command;
    client.parseUrl(request);
    // Appended after parseUrl, which would reject a colon in a name.
    request.path += argument;
    HTTP_REQ_TYPE method = HTTP_REQ_GET;
    std::string head;
    client.makeHeader(method, request, head);
    return QByteArray::fromStdString(head);
}

} // namespace

std::optional<CardCount> readCount(const std::string& answer)
{
    const auto text = card::textBetween(answer.c_str(), card::countStart, card::valueEnd);
    const auto number = decimalNumber(text.value_or(std::string_view()));
    if (!number) {
        return std::nullopt;
    }
    return CardCount{std::string(*text), *number};
}

// Stricter than FileListWalk, which searches for a name past the end of an entry and accepts a
// truncated list.
std::optional<std::vector<std::string>> readNames(const std::string& answer)
{
    const std::string_view list = answer.c_str(); // like all answers, up to the first zero byte
    std::vector<std::string> names;
    std::size_t start = 0;
    while (start < list.size() && list[start] != card::listEnd) {
        const std::size_t end = list.find(card::entryEnd, start);
        if (end == std::string_view::npos) {
            return std::nullopt;
        }
        const std::string_view entry = list.substr(start, end - start);
        const std::string_view tag = card::directoryTag;
        const std::size_t place = entry.find(tag);
        names.emplace_back(place == std::string_view::npos ? std::string_view()
                                                           : entry.substr(place + tag.size()));
        start = end + 1;
    }
    if (start == list.size()) {
        return std::nullopt;
    }
    return names;
}

std::optional<std::uint64_t> readSize(const std::string& answer)
{
    const card::ExactSize size = card::exactSize(answer.c_str());
    if (size.reading != card::ExactSize::Reading::Known) {
        return std::nullopt;
    }
    return static_cast<std::uint64_t>(size.bytes);
}

Reply<CardCount> CardReader::count() const
{
    const Reply<std::string> answer = ask(card::fileCountCommand, {}, countLimit);
    if (answer.error) {
        return {answer.error};
    }
    if (auto count = readCount(answer.value)) {
        return {{}, *std::move(count)};
    }
    return {{Trouble::NotUnderstood}};
}

Reply<std::vector<std::string>> CardReader::names(const std::string& countText) const
{
    const Reply<std::string> answer = ask(card::fileListCommand, countText, listLimit);
    if (answer.error) {
        return {answer.error};
    }
    if (auto names = readNames(answer.value)) {
        return {{}, *std::move(names)};
    }
    return {{Trouble::NotUnderstood}};
}

Reply<std::uint64_t> CardReader::size(const std::string& name) const
{
    const Reply<std::string> answer = ask(card::fileInfoCommand, name, detailsLimit);
    if (answer.error) {
        return {answer.error};
    }
    if (const auto size = readSize(answer.value)) {
        return {{}, *size};
    }
    return {{Trouble::NotUnderstood}};
}

Reply<std::optional<std::uint64_t>>
CardReader::content(const std::string& name, std::uint64_t size,
                    const std::function<bool(std::string_view)>& handler) const
{
    Reply<std::optional<std::uint64_t>> reply;
    const QByteArray request = download::requestText(QByteArray(download::recordingUrlPrefix) +
                                                         QByteArray::fromStdString(name),
                                                     download::cameraHost);
    reply.error = m_camera.get(request, Camera::Kind::Recording, size,
                               {[&reply, size](std::optional<std::uint64_t> announced) {
                                    if (announced && *announced != size) {
                                        reply.value = announced;
                                    }
                                    return !reply.value;
                                },
                                handler});
    return reply;
}

Reply<std::string> CardReader::ask(const char* command, const std::string& argument,
                                   std::uint64_t limit) const
{
    Reply<std::string> reply;
    reply.error = m_camera.get(commandRequest(command, argument), Camera::Kind::Command, limit,
                               {[](std::optional<std::uint64_t>) { return true; },
                                [&reply](std::string_view bytes) {
                                    reply.value.append(bytes);
                                    return true;
                                }});
    return reply;
}

} // namespace verify
