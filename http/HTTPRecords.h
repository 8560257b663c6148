// The records that the HTTP client works on. They are plain values owned by the caller; the library
// fills them and never resets them.
#pragma once

#include <cstdint>
#include <map>
#include <string>

/// The request methods. Any other value is sent as an empty method word.
enum HTTP_REQ_TYPE : int {
    HTTP_REQ_GET = 1,
    HTTP_REQ_POST = 2,
    HTTP_REQ_PUT = 3,
    HTTP_REQ_DELETE = 4,
};

/// Header lines, name to value, in byte-wise order of the names. A name stands once.
using HTTPHeaders = std::map<std::string, std::string>;

/// What to ask for. The caller sets `url` and, if it likes, `headers`; HTTPClient::parseUrl writes
/// `host`, `port` and `path`, and leaves what the address does not name as it was.
struct HTTPRequest
{
    std::string version = "HTTP/1.1"; ///< Protocol word at the end of the request line.
    std::string url;                  ///< Address to fetch, with its scheme.
    std::string host;                 ///< Host name or dotted IPv4 address.
    int port = 80;                    ///< TCP port; its low 16 bits are used.
    std::string path = "/";           ///< Path with its query, sent as it stands.
    HTTPHeaders headers = {
        {"Accept", "*/*"},
        {"Accept-Language", "zh-CN"},
        {"User-Agent", "SDK C++ http client"},
        {"Connection", "Keep-Alive"},
    }; ///< Header lines beside the host line; none is added or left out by the library.
};

/// What came back. Reused without a reset it carries every field over to the next exchange: the
/// received count goes on growing, and a body once chunked makes all later ones chunked.
struct HTTPResponse
{
    int statusCode = 0;              ///< Number of the status line.
    bool chunked = false;            ///< The answer announced the chunked transfer coding.
    bool lastChunkSeen = false;      ///< A chunk of size zero was read.
    std::uint32_t contentLength = 0; ///< Announced length in bytes; 0 when none was announced.
    std::uint32_t received = 0;      ///< Body bytes received so far; wraps at 2^32.
    int chunkLeft = 0;               ///< Bytes of the current chunk still to be read.
    HTTPHeaders headers;             ///< Every header line ever received with this record.
};

/// One part of a multipart body.
struct HTTPMultipartPart
{
    HTTPHeaders headers;
    std::string content;
};

/// A multipart body: its boundary without the leading dashes, and its parts in ascending key order.
struct HTTPMultipart
{
    std::string boundary;
    std::map<int, HTTPMultipartPart> parts;
};
