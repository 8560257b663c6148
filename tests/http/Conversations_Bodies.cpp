#include "tests/http/Conversations.h"

namespace {

class Collector
{
public:
    Collector(Reader reader, HTTPResponse before, std::string closedAtStart)
        : m_reader(reader), m_before(std::move(before)), m_closedAtStart(std::move(closedAtStart))
    {
    }

    /// A body whose end the parser detects.
    void complete(const char* name, std::vector<Piece> pieces, const std::string& unread = "")
    {
        all.push_back({name, m_reader, m_before, true, m_closedAtStart, std::move(pieces), unread});
    }
    /// A body that ends only with the connection.
    void open(const char* name, std::vector<Piece> pieces)
    {
        all.push_back({name, m_reader, m_before, false, m_closedAtStart, std::move(pieces), ""});
    }

    std::vector<Conversation> all;

private:
    Reader m_reader;
    HTTPResponse m_before;
    std::string m_closedAtStart;
};

/// The end of a chunked body of five bytes "hello", after the line ending of its chunk.
std::vector<Piece> withEnd(std::vector<Piece> pieces)
{
    pieces.push_back({"h", "false chunked received=1 left=4 \"h\""});
    pieces.push_back({"e", "false chunked received=2 left=3 \"he\""});
    pieces.push_back({"l", "false chunked received=3 left=2 \"hel\""});
    pieces.push_back({"l", "false chunked received=4 left=1 \"hell\""});
    pieces.push_back({"o", "false chunked received=5 \"hello\""});
    // A lone carriage return is a size line without digits, that is, the last chunk.
    pieces.push_back({"\r", "false chunked last received=5 \"hello\""});
    pieces.push_back({"\n", "false chunked received=5 \"hello\""});
    pieces.push_back({"0\r\n", "false chunked last received=5 \"hello\""});
    pieces.push_back({"\r\n", "true chunked last received=5 \"hello\""});
    return pieces;
}

} // namespace

std::vector<Conversation> plainConversations()
{
    HTTPResponse length5;
    length5.contentLength = 5;
    Collector body(Reader::Body, length5, "false length=5");
    body.complete("body of its announced length", {{"h", "false length=5 received=1 \"h\""},
                                                   {"e", "false length=5 received=2 \"he\""},
                                                   {"l", "false length=5 received=3 \"hel\""},
                                                   {"l", "false length=5 received=4 \"hell\""},
                                                   {"o", "true length=5 received=5 \"hello\""}});
    body.complete("body of line ends and bytes outside ASCII",
                  {{"\r", "false length=5 received=1 \"\\r\""},
                   {"\n", "false length=5 received=2 \"\\r\\n\""},
                   {std::string("\0", 1), "false length=5 received=3 \"\\r\\n\\x00\""},
                   {"\xFF", "false length=5 received=4 \"\\r\\n\\x00\\xFF\""},
                   {"\x80", "true length=5 received=5 \"\\r\\n\\x00\\xFF\\x80\""}});
    body.open("body one byte short", {{"h", "false length=5 received=1 \"h\""},
                                      {"e", "false length=5 received=2 \"he\""},
                                      {"l", "false length=5 received=3 \"hel\""},
                                      {"l", "false length=5 received=4 \"hell\""}});

    Collector answer(Reader::Answer, {}, "false");
    answer.complete("whole answer",
                    {{"HTTP/1.1", "false {: }"},
                     {" 200", "false"},
                     {" OK\r\n", "false status=200"},
                     {"Content-Length:", "false status=200 {: }"},
                     {" ", "false status=200 {Content-Length: }"},
                     {"5\r\n", "false status=200 length=5 {Content-Length: 5}"},
                     {"\r", "false status=200 length=5 {: , Content-Length: 5}"},
                     {"\n", "false status=200 length=5 {Content-Length: 5}"},
                     {"h", "false status=200 length=5 received=1 {Content-Length: 5} \"h\""},
                     {"e", "false status=200 length=5 received=2 {Content-Length: 5} \"he\""},
                     {"l", "false status=200 length=5 received=3 {Content-Length: 5} \"hel\""},
                     {"l", "false status=200 length=5 received=4 {Content-Length: 5} \"hell\""},
                     {"o", "true status=200 length=5 received=5 {Content-Length: 5} \"hello\""}});
    answer.open("answer without a body that announces none",
                {{"HTTP/1.1", "false {: }"},
                 {" 204", "false"},
                 {" No Content\r\n", "false status=204"},
                 {"\r", "false status=204 {: }"},
                 {"\n", "false status=204"}});
    answer.open("answer with a length of 0 waits for the server",
                {{"Content-Length:", "false {: }"},
                 {" ", "false {Content-Length: }"},
                 {"0\r\n", "false {Content-Length: 0}"},
                 {"\r", "false {: , Content-Length: 0}"},
                 {"\n", "false {Content-Length: 0}"}});

    std::vector<Conversation> all = std::move(body.all);
    all.insert(all.end(), answer.all.begin(), answer.all.end());
    return all;
}

std::vector<Conversation> chunkedConversations()
{
    HTTPResponse chunked;
    chunked.chunked = true;
    Collector body(Reader::Body, chunked, "false chunked");
    body.complete("one chunk", withEnd({{"5\r\n", "false chunked left=5"}}));
    body.complete("two chunks, the second of line ends",
                  {{"2\r\n", "false chunked left=2"},
                   {"a", "false chunked received=1 left=1 \"a\""},
                   {"b", "false chunked received=2 \"ab\""},
                   {"\r", "false chunked last received=2 \"ab\""},
                   {"\n", "false chunked received=2 \"ab\""},
                   {"2\r\n", "false chunked received=2 left=2 \"ab\""},
                   {"\r", "false chunked received=3 left=1 \"ab\\r\""},
                   {"\n", "false chunked received=4 \"ab\\r\\n\""},
                   {"\r", "false chunked last received=4 \"ab\\r\\n\""},
                   {"\n", "false chunked received=4 \"ab\\r\\n\""},
                   {"0\r\n", "false chunked last received=4 \"ab\\r\\n\""},
                   {"\r\n", "true chunked last received=4 \"ab\\r\\n\""}});
    body.complete("chunk of bytes outside ASCII",
                  {{"3\r\n", "false chunked left=3"},
                   {std::string("\0", 1), "false chunked received=1 left=2 \"\\x00\""},
                   {"\xFF", "false chunked received=2 left=1 \"\\x00\\xFF\""},
                   {"\x80", "false chunked received=3 \"\\x00\\xFF\\x80\""},
                   {"\r", "false chunked last received=3 \"\\x00\\xFF\\x80\""},
                   {"\n", "false chunked received=3 \"\\x00\\xFF\\x80\""},
                   {"0\r\n", "false chunked last received=3 \"\\x00\\xFF\\x80\""},
                   {"\r\n", "true chunked last received=3 \"\\x00\\xFF\\x80\""}});
    body.complete("no chunk but the last",
                  {{"0\r\n", "false chunked last"}, {"\r\n", "true chunked last"}});
    body.complete("bytes of the next answer stay unread",
                  {{"0\r\n", "false chunked last"}, {"\r\nHTTP", "true chunked last"}}, "HTTP");
    body.complete("one trailer line is taken, the empty line stays",
                  {{"0\r\n", "false chunked last"}, {"A: b\r\n\r\n", "true chunked last"}},
                  "\\r\\n");
    body.complete("trailers beyond the first stay",
                  {{"0\r\n", "false chunked last"}, {"A: b\r\nC: d\r\n\r\n", "true chunked last"}},
                  "C: d\\r\\n\\r\\n");
    body.open("closed after the last chunk's size line", {{"0\r\n", "false chunked last"}});
    body.open("closed before the last chunk", {{"1\r\n", "false chunked left=1"},
                                               {"a", "false chunked received=1 \"a\""},
                                               {"\r", "false chunked last received=1 \"a\""},
                                               {"\n", "false chunked received=1 \"a\""}});

    const std::string head = "{Transfer-Encoding: chunked}";
    Collector answer(Reader::Answer, {}, "false");
    answer.complete("whole chunked answer",
                    {{"HTTP/1.1", "false {: }"},
                     {" 200", "false"},
                     {" OK\r\n", "false status=200"},
                     {"Transfer-Encoding:", "false status=200 {: }"},
                     {" ", "false status=200 {Transfer-Encoding: }"},
                     {"c", "false status=200 {Transfer-Encoding: c}"},
                     {"h", "false status=200 {Transfer-Encoding: ch}"},
                     {"u", "false status=200 {Transfer-Encoding: chu}"},
                     {"n", "false status=200 {Transfer-Encoding: chun}"},
                     {"k", "false status=200 {Transfer-Encoding: chunk}"},
                     {"e", "false status=200 {Transfer-Encoding: chunke}"},
                     {"d\r\n", "false status=200 chunked " + head},
                     {"\r", "false status=200 chunked {: , Transfer-Encoding: chunked}"},
                     {"\n", "false status=200 chunked " + head},
                     {"2\r\n", "false status=200 chunked left=2 " + head},
                     {"o", "false status=200 chunked received=1 left=1 " + head + " \"o\""},
                     {"k", "false status=200 chunked received=2 " + head + " \"ok\""},
                     {"\r", "false status=200 chunked last received=2 " + head + " \"ok\""},
                     {"\n", "false status=200 chunked received=2 " + head + " \"ok\""},
                     {"0\r\n", "false status=200 chunked last received=2 " + head + " \"ok\""},
                     {"\r\n", "true status=200 chunked last received=2 " + head + " \"ok\""}});

    std::vector<Conversation> all = std::move(body.all);
    all.insert(all.end(), answer.all.begin(), answer.all.end());
    return all;
}

std::vector<Conversation> oddChunkConversations()
{
    HTTPResponse chunked;
    chunked.chunked = true;
    Collector body(Reader::Body, chunked, "false chunked");
    const std::string none = "false chunked";
    const std::string last = "false chunked last";
    const std::string five = "false chunked left=5";

    // Different spellings of 5. A partial line without digits counts as the last chunk.
    body.complete("size with leading zeros", withEnd({{"0000000", last}, {"5\r\n", five}}));
    body.complete("size with an extension", withEnd({{"5;name=value; 7\r\n", five}}));
    body.complete("size with a space after it", withEnd({{"5 \r\n", five}}));
    body.complete("size with text after it", withEnd({{"5 bytes\r\n", five}}));
    body.complete("size with a zero byte after it", withEnd({{std::string("5\0"
                                                                          "7\r\n",
                                                                          5),
                                                              five}}));
    body.complete("size with a byte outside ASCII after it", withEnd({{"5\xFF\r\n", five}}));
    body.complete("size ended by a bare line feed", withEnd({{"5\n", five}}));
    body.complete("size with a space before it", withEnd({{" ", last}, {"5\r\n", five}}));
    body.complete("size with a tab before it", withEnd({{"\t", last}, {"5\r\n", five}}));
    body.complete("size with a plus sign", withEnd({{"+", last}, {"5\r\n", five}}));
    body.complete("size with the prefix of hexadecimal numbers",
                  withEnd({{"0x", last}, {"5\r\n", five}}));
    body.complete("size with the prefix in capitals", withEnd({{"0X", last}, {"5\r\n", five}}));
    body.complete(
        "empty lines before the size",
        withEnd({{"\r", last}, {"\n", none}, {"\r", last}, {"\n", none}, {"5\r\n", five}}));
    body.complete("two carriage returns are a last chunk",
                  {{"\r\r\n", last}, {"5\r\nhello", "true chunked last"}}, "hello");
    body.complete("bare line feed is a last chunk",
                  {{"\n", last}, {"5\r\nhello", "true chunked last"}}, "hello");
    body.complete("letters beyond the digits are a last chunk",
                  {{"g5\r\n", last}, {"\r\n", "true chunked last"}});
    body.complete("semicolon without digits is a last chunk",
                  {{";a=5\r\n", last}, {"\r\n", "true chunked last"}});
    body.complete("bytes outside ASCII are a last chunk", {{"\xFF"
                                                            "5\r\n",
                                                            last},
                                                           {"\r\n", "true chunked last"}});
    body.complete("long zero is a last chunk",
                  {{"00000000000000000000\r\n", last}, {"\r\n", "true chunked last"}});

    // Digits.
    body.open("a with an extension is 10", {{"a;x=5\r\n", "false chunked left=10"}});
    body.open("A is 10", {{"A\r\n", "false chunked left=10"}});
    body.open("f is 15", {{"f\r\n", "false chunked left=15"}});
    body.open("1F is 31", {{"1", "false chunked left=1"}, {"F\r\n", "false chunked left=31"}});
    body.open("eE is 238", {{"e", "false chunked left=14"}, {"E\r\n", "false chunked left=238"}});
    body.open("digits end at a letter", {{"bg\r\n", "false chunked left=11"}});
    body.open("10 is 16", {{"1", "false chunked left=1"}, {"0\r\n", "false chunked left=16"}});
    body.open("largest size there is", {{"7", "false chunked left=7"},
                                        {"f", "false chunked left=127"},
                                        {"f", "false chunked left=2047"},
                                        {"f", "false chunked left=32767"},
                                        {"f", "false chunked left=524287"},
                                        {"f", "false chunked left=8388607"},
                                        {"f", "false chunked left=134217727"},
                                        {"f\r\n", "false chunked left=2147483647"},
                                        {"a", "false chunked received=1 left=2147483646 \"a\""}});

    // A size line with the top bit set is ignored.
    body.complete("size with the top bit set is passed over",
                  withEnd({{"8", "false chunked left=8"},
                           {"0", "false chunked left=128"},
                           {"0", "false chunked left=2048"},
                           {"0", "false chunked left=32768"},
                           {"0", "false chunked left=524288"},
                           {"0", "false chunked left=8388608"},
                           {"0", "false chunked left=134217728"},
                           {"0\r\n", none},
                           {"5\r\n", five}}));
    body.complete("all digits f are passed over", withEnd({{"f", "false chunked left=15"},
                                                           {"f", "false chunked left=255"},
                                                           {"f", "false chunked left=4095"},
                                                           {"f", "false chunked left=65535"},
                                                           {"f", "false chunked left=1048575"},
                                                           {"f", "false chunked left=16777215"},
                                                           {"f", "false chunked left=268435455"},
                                                           {"f\r\n", none},
                                                           {"5\r\n", five}}));
    body.complete("negative size is passed over",
                  withEnd({{"-", last}, {"1\r\n", none}, {"5\r\n", five}}));

    // Chunks whose data does not match the announced length.
    body.complete("data longer than announced, the rest no digits",
                  {{"1\r\n", "false chunked left=1"},
                   {"h", "false chunked received=1 \"h\""},
                   {"xyz\r\n", "false chunked last received=1 \"h\""},
                   {"0\r\n\r\n", "true chunked last received=1 \"h\""}},
                  "\\r\\n");
    body.open("data longer than announced, the rest digits",
              {{"1\r\n", "false chunked left=1"},
               {"h", "false chunked received=1 \"h\""},
               {"e", "false chunked received=1 left=14 \"h\""},
               {"\r\n", "false chunked received=1 left=14 \"h\""},
               {"0", "false chunked received=2 left=13 \"h0\""},
               {"\r", "false chunked received=3 left=12 \"h0\\r\""},
               {"\n", "false chunked received=4 left=11 \"h0\\r\\n\""}});
    body.complete("no line ending after the data",
                  {{"1\r\n", "false chunked left=1"},
                   {"h", "false chunked received=1 \"h\""},
                   {"0\r\n", "false chunked last received=1 \"h\""},
                   {"\r\n", "true chunked last received=1 \"h\""}});
    body.complete("bare line feed after the data is a last chunk",
                  {{"1\n", "false chunked left=1"},
                   {"h", "false chunked received=1 \"h\""},
                   {"\n", "false chunked last received=1 \"h\""},
                   {"0\n\n", "true chunked last received=1 \"h\""}},
                  "\\n");
    return body.all;
}

std::vector<Conversation> carriedOverConversations()
{
    std::vector<Conversation> all;
    const auto add = [&all](Collector& collector) {
        all.insert(all.end(), collector.all.begin(), collector.all.end());
    };

    HTTPResponse afterChunked;
    afterChunked.chunked = true;
    afterChunked.lastChunkSeen = true;
    afterChunked.received = 7;
    Collector seen(Reader::Body, afterChunked, "false chunked last received=7");
    seen.complete("second chunked body ends after its first line",
                  {{"5\r\nhello\r\n0\r\n\r\n", "true chunked last received=7"}},
                  "hello\\r\\n0\\r\\n\\r\\n");
    seen.complete("second chunked body ends after an empty line, too",
                  {{"\r\n5\r\n", "true chunked last received=7"}}, "5\\r\\n");
    add(seen);

    Collector plainAfterChunked(Reader::Answer, afterChunked, "false chunked last received=7");
    plainAfterChunked.complete(
        "plain answer after a chunked one loses its first line",
        {{"Content-Length:", "false chunked last received=7 {: }"},
         {" ", "false chunked last received=7 {Content-Length: }"},
         {"4\r\n", "false chunked last length=4 received=7 {Content-Length: 4}"},
         {"\r", "false chunked last length=4 received=7 {: , Content-Length: 4}"},
         {"\n", "false chunked last length=4 received=7 {Content-Length: 4}"},
         {"a\nbc", "true chunked last length=4 received=7 {Content-Length: 4}"}},
        "bc");
    add(plainAfterChunked);

    HTTPResponse insideChunk;
    insideChunk.chunked = true;
    insideChunk.chunkLeft = 2;
    Collector left(Reader::Body, insideChunk, "false chunked left=2");
    left.complete("what a broken chunk left is taken from the next body",
                  {{"5", "false chunked received=1 left=1 \"5\""},
                   {"\r", "false chunked received=2 \"5\\r\""},
                   {"\n", "false chunked last received=2 \"5\\r\""},
                   {"hello\r\n", "true chunked last received=2 \"5\\r\""}});
    add(left);

    HTTPResponse chunkedWithLength;
    chunkedWithLength.chunked = true;
    chunkedWithLength.contentLength = 1;
    Collector both(Reader::Body, chunkedWithLength, "false chunked length=1");
    both.complete("chunks count, not the length",
                  {{"2\r\n", "false chunked length=1 left=2"},
                   {"a", "false chunked length=1 received=1 left=1 \"a\""},
                   {"b", "false chunked length=1 received=2 \"ab\""},
                   {"\r", "false chunked last length=1 received=2 \"ab\""},
                   {"\n", "false chunked length=1 received=2 \"ab\""},
                   {"0\r\n", "false chunked last length=1 received=2 \"ab\""},
                   {"\r\n", "true chunked last length=1 received=2 \"ab\""}});
    add(both);

    HTTPResponse grown;
    grown.contentLength = 5;
    grown.received = 3;
    Collector counted(Reader::Body, grown, "false length=5 received=3");
    counted.complete(
        "bytes received before count towards the length",
        {{"h", "false length=5 received=4 \"h\""}, {"e", "true length=5 received=5 \"he\""}});
    add(counted);

    HTTPResponse nearTheTop;
    nearTheTop.contentLength = 1;
    nearTheTop.received = 4294967295;
    Collector wrapped(Reader::Body, nearTheTop, "false length=1 received=4294967295");
    wrapped.complete("received count wraps at 2^32",
                     {{"h", "false length=1 \"h\""}, {"e", "true length=1 received=1 \"he\""}});
    add(wrapped);
    return all;
}
