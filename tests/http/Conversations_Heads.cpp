#include "tests/http/Conversations.h"

// An unfinished last line is parsed like a finished one. A line without ": " is stored under the
// empty name: "{: }".
std::vector<Conversation> headConversations()
{
    std::vector<Conversation> all;
    const auto add = [&all](const char* name, bool endsByItself, std::vector<Piece> pieces,
                            const std::string& unread = "", const HTTPResponse& before = {},
                            const std::string& closedAtStart = "true") {
        all.push_back(
            {name, Reader::Head, before, endsByItself, closedAtStart, std::move(pieces), unread});
    };

    add("status, length, empty line", true,
        {{"HTTP/1.1", "true {: }"},
         {" 200", "true"},
         {" OK\r\n", "true status=200"},
         {"Content-Length:", "true status=200 {: }"},
         {" ", "true status=200 {Content-Length: }"},
         {"1", "true status=200 length=1 {Content-Length: 1}"},
         {"2\r\n", "true status=200 length=12 {Content-Length: 12}"},
         {"\r", "true status=200 length=12 {: , Content-Length: 12}"},
         {"\nbody", "true status=200 length=12 {Content-Length: 12}"}},
        "body");
    add("reason of several words", true,
        {{"HTTP/1.1", "true {: }"},
         {" 404", "true"},
         {" Not Found\r\n", "true status=404"},
         {"\r", "true status=404 {: }"},
         {"\n", "true status=404"}});
    add("reason empty, its space there", true,
        {{"HTTP/1.1", "true {: }"},
         {" 404", "true"},
         {" \r\n", "true status=404"},
         {"\r", "true status=404 {: }"},
         {"\n", "true status=404"}});
    HTTPResponse status200;
    status200.statusCode = 200;
    add("404 without reason keeps the status", true,
        {{"HTTP/1.1", "true status=200 {: }"},
         {" 404\r\n", "true status=200"},
         {"\r", "true status=200 {: }"},
         {"\n", "true status=200"}},
        "", status200, "true status=200");
    add("404 without reason leaves a new status at 0", true,
        {{"HTTP/1.0", "true {: }"}, {" 404\r\n", "true"}, {"\r", "true {: }"}, {"\n", "true"}});
    add("two spaces before the status make it 0", true,
        {{"HTTP/1.1", "true status=200 {: }"},
         {" ", "true status=200"},
         {" 404 x\r\n", "true"},
         {"\r", "true {: }"},
         {"\n", "true"}},
        "", status200, "true status=200");
    add("status of letters is 0", true,
        {{"HTTP/1.1", "true status=200 {: }"},
         {" abc", "true status=200"},
         {" OK\r\n", "true"},
         {"\r", "true {: }"},
         {"\n", "true"}},
        "", status200, "true status=200");
    add("negative status", true,
        {{"HTTP/1.1", "true {: }"},
         {" -7", "true"},
         {" x\r\n", "true status=-7"},
         {"\r", "true status=-7 {: }"},
         {"\n", "true status=-7"}});
    add("word that only begins like the status line", true,
        {{"HTTPS", "true {: }"},
         {" 201", "true"},
         {" x\r\n", "true status=201"},
         {"\r", "true status=201 {: }"},
         {"\n", "true status=201"}});
    add("status word in lower case is a header without separator", true,
        {{"http/1.1 200 OK\r\n", "true {: }"}, {"\r", "true {: }"}, {"\n", "true {: }"}});
    add("second status line wins", true,
        {{"HTTP/1.1", "true {: }"},
         {" 100", "true"},
         {" Continue\r\n", "true status=100"},
         {"HTTP/1.1", "true status=100 {: }"},
         {" 200", "true status=100"},
         {" OK\r\n", "true status=200"},
         {"\r", "true status=200 {: }"},
         {"\n", "true status=200"}});
    add("status line after a header", true,
        {{"A:", "true {: }"},
         {" ", "true {A: }"},
         {"b\r\n", "true {A: b}"},
         {"HTTP/1.1", "true {: , A: b}"},
         {" 200", "true {A: b}"},
         {" OK\r\n", "true status=200 {A: b}"},
         {"\r", "true status=200 {: , A: b}"},
         {"\n", "true status=200 {A: b}"}});
    add("header whose name begins like the status line", true,
        {{"HTTP-X:", "true {: }"},
         {" 5", "true"},
         {" 6\r\n", "true status=5"},
         {"\r", "true status=5 {: }"},
         {"\n", "true status=5"}});

    add("empty head", true, {{"\r", "true {: }"}, {"\nHTTP", "true"}}, "HTTP");
    add("nothing but a body", false, {{"<html>", "true {: }"}});
    add("bare line feeds end lines but no head", false,
        {{"HTTP/1.1", "true {: }"},
         {" 200", "true"},
         {" OK\n", "true status=200"},
         {"A:", "true status=200 {: }"},
         {" ", "true status=200 {A: }"},
         {"b\n", "true status=200 {A: b}"},
         {"\nbody", "true status=200 {: , A: b}"}});
    add("two carriage returns are no empty line", false,
        {{"A:", "true {: }"},
         {" ", "true {A: }"},
         {"b\r\n", "true {A: b}"},
         {"\r\r\n", "true {: , A: b}"}});
    add("spaces are no empty line", false, {{" \r\n", "true {: }"}, {"\t\r\n", "true {: }"}});
    add("carriage returns around a line are trimmed", true,
        {{"\r\rA:", "true {: }"},
         {" ", "true {A: }"},
         {"b", "true {A: b}"},
         {"\r\r\n", "true {A: b}"},
         {"\r", "true {: , A: b}"},
         {"\n", "true {A: b}"}});
    add("spaces and tabs are not trimmed", true,
        {{" A", "true {: }"},
         {" :", "true {: }"},
         {" ", "true { A : }"},
         {"\t", "true { A : \\x09}"},
         {" ", "true { A : \\x09 }"},
         {"\r\n", "true { A : \\x09 }"},
         {"\r", "true {: ,  A : \\x09 }"},
         {"\n", "true { A : \\x09 }"}});

    add("length in lower case is kept but means nothing", true,
        {{"content-length:", "true {: }"},
         {" ", "true {content-length: }"},
         {"5\r\n", "true {content-length: 5}"},
         {"\r", "true {: , content-length: 5}"},
         {"\n", "true {content-length: 5}"}});
    add("colon without a space keeps an empty name", true,
        {{"Content-Length:5\r\n", "true {: }"}, {"\r", "true {: }"}, {"\n", "true {: }"}});
    add("value holding the separator", true,
        {{"A:", "true {: }"},
         {" ", "true {A: }"},
         {"b", "true {A: b}"},
         {":", "true {A: b:}"},
         {" ", "true {A: b: }"},
         {"c\r\n", "true {A: b: c}"},
         {"\r", "true {: , A: b: c}"},
         {"\n", "true {A: b: c}"}});
    add("line that begins with the separator", true,
        {{":", "true {: }"},
         {" ", "true {: }"},
         {"x\r\n", "true {: x}"},
         {"\r", "true {: }"},
         {"\n", "true {: x}"}});
    add("repeated name keeps the last value", true,
        {{"Content-Length:", "true {: }"},
         {" ", "true {Content-Length: }"},
         {"5\r\n", "true length=5 {Content-Length: 5}"},
         {"Content-Length:", "true length=5 {: , Content-Length: 5}"},
         {" ", "true {Content-Length: }"},
         {"7\r\n", "true length=7 {Content-Length: 7}"},
         {"\r", "true length=7 {: , Content-Length: 7}"},
         {"\n", "true length=7 {Content-Length: 7}"}});
    add("length that is no number", true,
        {{"Content-Length:", "true {: }"},
         {" ", "true {Content-Length: }"},
         {"x\r\n", "true {Content-Length: x}"},
         {"\r", "true {: , Content-Length: x}"},
         {"\n", "true {Content-Length: x}"}});
    add("negative length is read unsigned", true,
        {{"Content-Length:", "true {: }"},
         {" ", "true {Content-Length: }"},
         {"-", "true {Content-Length: -}"},
         {"1\r\n", "true length=4294967295 {Content-Length: -1}"},
         {"\r", "true length=4294967295 {: , Content-Length: -1}"},
         {"\n", "true length=4294967295 {Content-Length: -1}"}});
    add("length with something after it", true,
        {{"Content-Length:", "true {: }"},
         {" ", "true {Content-Length: }"},
         {"5", "true length=5 {Content-Length: 5}"},
         {";", "true length=5 {Content-Length: 5;}"},
         {"6\r\n", "true length=5 {Content-Length: 5;6}"},
         {"\r", "true length=5 {: , Content-Length: 5;6}"},
         {"\n", "true length=5 {Content-Length: 5;6}"}});

    add("chunked", true,
        {{"Transfer-Encoding:", "true {: }"},
         {" ", "true {Transfer-Encoding: }"},
         {"c", "true {Transfer-Encoding: c}"},
         {"h", "true {Transfer-Encoding: ch}"},
         {"u", "true {Transfer-Encoding: chu}"},
         {"n", "true {Transfer-Encoding: chun}"},
         {"k", "true {Transfer-Encoding: chunk}"},
         {"e", "true {Transfer-Encoding: chunke}"},
         {"d\r\n", "true chunked {Transfer-Encoding: chunked}"},
         {"\r", "true chunked {: , Transfer-Encoding: chunked}"},
         {"\n", "true chunked {Transfer-Encoding: chunked}"}});
    add("chunked in capitals means nothing", true,
        {{"Transfer-Encoding:", "true {: }"},
         {" ", "true {Transfer-Encoding: }"},
         {"C", "true {Transfer-Encoding: C}"},
         {"h", "true {Transfer-Encoding: Ch}"},
         {"u", "true {Transfer-Encoding: Chu}"},
         {"n", "true {Transfer-Encoding: Chun}"},
         {"k", "true {Transfer-Encoding: Chunk}"},
         {"e", "true {Transfer-Encoding: Chunke}"},
         {"d\r\n", "true {Transfer-Encoding: Chunked}"},
         {"\r", "true {: , Transfer-Encoding: Chunked}"},
         {"\n", "true {Transfer-Encoding: Chunked}"}});
    add("name of the coding in lower case means nothing", true,
        {{"transfer-encoding:", "true {: }"},
         {" ", "true {transfer-encoding: }"},
         {"c", "true {transfer-encoding: c}"},
         {"h", "true {transfer-encoding: ch}"},
         {"u", "true {transfer-encoding: chu}"},
         {"n", "true {transfer-encoding: chun}"},
         {"k", "true {transfer-encoding: chunk}"},
         {"e", "true {transfer-encoding: chunke}"},
         {"d\r\n", "true {transfer-encoding: chunked}"},
         {"\r", "true {: , transfer-encoding: chunked}"},
         {"\n", "true {transfer-encoding: chunked}"}});
    add("list of codings means nothing", true,
        {{"Transfer-Encoding:", "true {: }"},
         {" ", "true {Transfer-Encoding: }"},
         {"x", "true {Transfer-Encoding: x}"},
         {",", "true {Transfer-Encoding: x,}"},
         {"c", "true {Transfer-Encoding: x,c}"},
         {"h", "true {Transfer-Encoding: x,ch}"},
         {"u", "true {Transfer-Encoding: x,chu}"},
         {"n", "true {Transfer-Encoding: x,chun}"},
         {"k", "true {Transfer-Encoding: x,chunk}"},
         {"e", "true {Transfer-Encoding: x,chunke}"},
         {"d\r\n", "true {Transfer-Encoding: x,chunked}"},
         {"\r", "true {: , Transfer-Encoding: x,chunked}"},
         {"\n", "true {Transfer-Encoding: x,chunked}"}});
    HTTPResponse chunked;
    chunked.chunked = true;
    add("other coding does not undo chunked", true,
        {{"Transfer-Encoding:", "true chunked {: }"},
         {" ", "true chunked {Transfer-Encoding: }"},
         {"g\r\n", "true chunked {Transfer-Encoding: g}"},
         {"\r", "true chunked {: , Transfer-Encoding: g}"},
         {"\n", "true chunked {Transfer-Encoding: g}"}},
        "", chunked, "true chunked");

    add("bytes outside ASCII", true,
        {{"\xC4\xFF:", "true {: }"},
         {" ", "true {\\xC4\\xFF: }"},
         {"\x80", "true {\\xC4\\xFF: \\x80}"},
         {"\x8D\r\n", "true {\\xC4\\xFF: \\x80\\x8D}"},
         {"\r", "true {: , \\xC4\\xFF: \\x80\\x8D}"},
         {"\n", "true {\\xC4\\xFF: \\x80\\x8D}"}});
    add("zero bytes", true,
        {{std::string("\0:", 2), "true {: }"},
         {" ", "true {\\x00: }"},
         {std::string("\0", 1), "true {\\x00: \\x00}"},
         {"1\r\n", "true {\\x00: \\x001}"},
         {"\r", "true {: , \\x00: \\x001}"},
         {"\n", "true {\\x00: \\x001}"}});
    return all;
}
