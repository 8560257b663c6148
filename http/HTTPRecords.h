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

/// Header lines, name to value, in byte-wise order of the names. Names are unique.
using HTTPHeaders = std::map<std::string, std::string>;

/// The request. The caller sets `url` and, optionally, `headers`; HTTPClient::parseUrl writes
/// `host`, `port` and `path`, and leaves a port or path that the address does not contain
/// unchanged.
struct HTTPRequest
{
    std::string version = "HTTP/1.1"; ///< Protocol word at the end of the request line.
    std::string url;                  ///< Address to fetch, with its scheme.
    std::string host;                 ///< Host name or dotted IPv4 address.
    int port = 80;                    ///< TCP port; the connection uses its low 16 bits.
    std::string path = "/";           ///< Path with its query, sent unchanged.
    HTTPHeaders headers = {
        {"Accept", "*/*"},
        {"Accept-Language", "zh-CN"},
        {"User-Agent", "SDK C++ http client"},
        {"Connection", "Keep-Alive"},
    }; ///< Header lines other than the host line; the library adds and removes none.
};

/// The response. If it is reused without a reset, every field is carried over to the next exchange:
/// the received count keeps growing, and after one chunked body all later ones are read as chunked.
struct HTTPResponse
{
    int statusCode = 0;              ///< Number in the status line.
    bool chunked = false;            ///< The answer announced the chunked transfer coding.
    bool lastChunkSeen = false;      ///< A chunk of size zero was read.
    std::uint32_t contentLength = 0; ///< Announced length in bytes; 0 if none was announced.
    std::uint32_t received = 0;      ///< Body bytes received so far; wraps at 2^32.
    int chunkLeft = 0;               ///< Bytes of the current chunk that are not read yet.
    HTTPHeaders headers;             ///< Header lines of all answers; of each name, the last one.
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
