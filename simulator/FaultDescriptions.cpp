#include "simulator/FaultTable.h"

namespace simulator {

namespace {

constexpr long long dayInMilliseconds = 86'400'000;
constexpr long long anyLength = 1'000'000'000'000;
const std::string modules = "control|ground";
const std::string bothModules = "control,ground";
const std::string devices = "control|ground|camera";
const std::string allDevices = "control,ground,camera";

FaultDescription plain(std::string name, std::string result)
{
    return {std::move(name), FaultValue::None, {}, {}, 0, 0, std::move(result)};
}

FaultDescription words(std::string name, std::string known, std::string preset, std::string result)
{
    return {std::move(name),  FaultValue::Words, std::move(known), std::move(preset), 0, 0,
            std::move(result)};
}

FaultDescription number(std::string name, std::string unit, std::string preset, long long minimum,
                        long long maximum, std::string result)
{
    return {std::move(name), FaultValue::Number, std::move(unit), std::move(preset), minimum,
            maximum,         std::move(result)};
}

FaultDescription text(std::string name, std::string preset, std::string result)
{
    return {std::move(name), FaultValue::Text, "TEXT", std::move(preset), 0, 0, std::move(result)};
}

} // namespace

// Adding a fault: one row here, and one question to the table where its effect happens.
// NOLINTNEXTLINE(readability-function-size): one table
const std::vector<FaultDescription>& faultDescriptions()
{
    static const std::vector<FaultDescription> rows = {
        words("only", "control|ground|cgi|count|list|info|delete|deleteall|format|recording|other",
              "", "limits the other faults to these modules, and to these camera requests"),

        // Reaching a device
        words("refuse", devices, allDevices, "new connections are refused, open ones live on"),
        words("silent", devices, allDevices, "connects, but the device says nothing"),
        words("never-accept", devices, allDevices,
              "the handshake completes, but the device never looks at the connection"),
        words("down", devices, allDevices,
              "connecting gets no reply, open ones fall silent, and are reset when it comes back"),
        number("reboot", "SECONDS", "10", 1, 3600,
               "all three devices are down for SECONDS, then back; the fault ends by itself"),
        number("flapping", "MS", "2000", 50, dayInMilliseconds,
               "both modules by turns answer for MS, then reset all and refuse for MS"),

        // Frames of the modules
        words("no-heartbeat", modules, bothModules, "the module sends no heartbeat"),
        number("heartbeat-stops", "SECONDS", "", 0, 86'400,
               "no heartbeat once a connection is SECONDS old"),
        number("heartbeat-pause", "SECONDS", "7", 1, 3600,
               "after the second heartbeat of a connection the next comes SECONDS later"),
        number("heartbeat-interval", "MS", "100", 5, dayInMilliseconds,
               "a heartbeat every MS milliseconds"),
        text("wrong-start", "other",
             "frames begin with this byte (two hex digits), or with the other module's"),
        plain("unknown-type", "a frame of type 7F comes each second besides all else"),
        plain("early-version",
              "the version report comes at once, the first heartbeat a beat later"),
        plain("no-version", "no version report"),
        plain("split-frames", "every frame comes in two segments, 60 ms apart"),
        plain("split-version", "the version report comes in two segments, 60 ms apart"),
        words("two-frames", "heartbeat|version", "heartbeat",
              "heartbeat and version report share a segment, this one first"),
        number("long-chunk", "BYTES", "106", 12, 100'000,
               "each heartbeat fills a segment of BYTES, with a second heartbeat in its last six"),
        plain("high-bit-version", "the versions are FF, 01 90, 80 00, FF FF, 00 80"),
        plain("reset-mid-frame", "the third heartbeat is cut after three bytes by a reset"),
        plain("half-close", "instead of a third heartbeat the module closes its sending side"),

        // Answers of the camera, whatever the request
        number("answer-delay", "MS", "1000", 1, dayInMilliseconds, "the answer comes MS later"),
        plain("link-lost-mid-command",
              "a request resets all module connections; the answer comes half a second later"),
        number("status", "CODE", "404", 100, 999,
               "the answer has this status; from 400 on a short page takes the body's place"),
        plain("no-reason", "the status line has no reason text"),
        plain("lower-case-names", "header names come in lower case"),
        plain("no-length", "the head has no Content-Length"),
        number("wrong-length", "DELTA", "10", -anyLength, anyLength,
               "Content-Length is DELTA more than the body, never below 0"),
        text("length", "4294967296", "Content-Length is this text"),
        plain("empty-answer", "the body is empty, and Content-Length says so"),
        number("chunked", "EXCHANGE", "1", 1, anyLength,
               "the body comes in chunks, from this exchange on (1: the first since the start)"),
        plain("chunk-extension", "chunked, size lines have an extension"),
        plain("chunk-bad-hex", "chunked, the first size line is no number"),
        text("chunk-size", "80000000", "chunked, the first size line is this text"),
        plain("chunk-no-last", "chunked, closed without the last chunk"),
        plain("chunk-trailers", "chunked, two trailer lines follow the last chunk"),
        plain("bare-lf", "lines of the head end in LF alone"),
        plain("odd-head-end", "the head ends in LF LF CR LF"),
        plain("continue-first", "a 100 answer comes before the real one"),
        number("long-header", "BYTES", "102400", 16, 10'000'000,
               "the head has a line of BYTES bytes"),
        number("many-headers", "COUNT", "10000", 1, 1'000'000, "the head has COUNT more lines"),
        plain("long-type", "Content-Type has 200 characters"),
        plain("close-before-head", "closed without an answer"),
        plain("reset-before-head", "reset without an answer"),
        plain("close-in-head", "closed after half of the head"),
        plain("reset-in-head", "reset after half of the head"),
        plain("close-after-head", "closed between head and body"),
        plain("reset-after-head", "reset between head and body"),
        number("close-mid-body", "BYTES", "100", 0, anyLength,
               "closed after BYTES of the body, or half of one no longer than that"),
        number("reset-mid-body", "BYTES", "100", 0, anyLength,
               "reset after BYTES of the body, or half of one no longer than that"),
        number("stall", "PERCENT", "95", 0, 100,
               "nothing comes after PERCENT of the body; the rest when the fault is cleared"),
        plain("split-head", "the head comes in two segments, 100 ms apart"),
        number("byte-by-byte", "MS", "1", 0, 60'000, "the answer comes in single bytes, MS apart"),
        plain("garbage", "4,096 bytes of noise take the place of the answer"),

        // The count
        text("count", "", "the count answer holds this text"),
        number("count-offset", "DELTA", "", -1'000'000, 1'000'000,
               "the count is DELTA more than the card has recordings"),
        plain("no-count-markers", "the count answer is the bare number"),

        // The list, and the card behind it
        number("entries", "COUNT", "128", 0, 1'000'000,
               "the card holds COUNT recordings of 4,000 bytes instead of its own"),
        plain("endless-list", "the list has no end marker: nothing follows the last semicolon"),
        plain("unending-list", "the list announces 2,147,483,647 bytes and goes on and on"),
        plain("no-semicolon", "the entries of the list have no semicolons"),
        plain("no-list-markers", "the entries of the list lack the directory"),
        number("list-padding", "BYTES", "10240", 1, 100'000'000,
               "BYTES letters stand before the first entry of the list"),
        text("name-29", "ZEPNA_20200131_124502_029.MP4", "a recording has a name of 29 bytes"),
        text("name-30", "ZEPNA_20200131_124502_0030.MP4", "a recording has a name of 30 bytes"),
        text("name-300", std::string(296, 'N') + ".MP4", "a recording has a name of 300 bytes"),
        text("name-utf8", "\\xe6\\xb5\\xb7\\xe5\\xba\\x95_01.MP4",
             "a recording has a Chinese name in UTF-8"),
        text("name-space", "REC 20200131 12.MP4", "a recording has spaces in its name"),
        text("name-ampersand", "REC&-name=B&C.MP4", "a recording has & and = in its name"),
        text("name-hash", "REC#1.MP4", "a recording has # in its name"),
        text("name-percent", "REC%41%2F%s.MP4", "a recording has % in its name"),
        text("name-slash", "SUB/REC.MP4", "a recording has / in its name"),
        text("name-dotdot", "../../REC.MP4", "a recording's name leads two folders up"),
        text("name-dots", "..", "a recording is called .."),
        text("name-line-end", "REC\\r\\nX-Injected: 1", "a recording has CR LF in its name"),
        text("name-markup", "<b>REC</b>.MP4", "a recording has markup in its name"),
        text("name-custom", "REC.MP4", "a recording has this name"),

        // The details
        plain("info-reordered", "the details come in the order time, size, create"),
        words("info-missing", "create|size|time", "create,size,time",
              "the details lack these fields"),
        text("info-create", "20200131", "the creation time is this text"),
        text("info-size", "2147483648", "the size is this text"),
        text("info-time", "-1", "the duration is this text"),
        number("info-long", "BYTES", "32", 1, 1'000'000, "each field is BYTES digits long"),
        number("info-fails", "ENTRY", "1", 1, 1'000'000,
               "the details request of the ENTRY-th recording is reset without an answer"),

        // Delete and format
        plain("success-bare", "delete and format answer \"Success\" without its line end"),
        plain("success-and-more", "further bytes follow \"Success\" and its line end"),
        text("error-word", "Error", "delete and format change nothing and answer this word"),
    };
    return rows;
}

} // namespace simulator
