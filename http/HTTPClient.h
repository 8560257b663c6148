// A small blocking HTTP/1.1 client for devices on the local network.
//
// Where the bodies live:
//   HTTPClient_Url.cpp          parseUrl, hostToLong
//   HTTPClient_RequestHead.cpp  makeHeader, sendHeader, sendBody
//   HTTPClient_Response.cpp     readHeader, parseLine, readBody
//   HTTPClient_Exchange.cpp     get, startGet, getData, stopGet, post, startPost, postData,
//                               stopPost
//   HTTPClient_Multipart.cpp    makeMultipartBody
#pragma once

#include "http/HTTPRecords.h"
#include "http/HTTPSession.h"

#include <string>

/// The operations of the client. It holds no data: everything works on the records and the session
/// that are handed in. Failures are results, never exceptions and never messages. An answer's
/// status is no failure; look at HTTPResponse::statusCode. A text to append to may be any text,
/// also one that the same call reads.
class HTTPClient
{
public:
    // --- whole exchanges ---------------------------------------------------------------------

    /// One GET over a connection of its own. The body is appended to `body`, `response` is filled
    /// on top of what it held. False for a refused address, a failed connection or sending, or a
    /// body that did not arrive whole; what did arrive is in `body`.
    bool get(HTTPRequest& request, HTTPResponse& response, std::string& body);

    /// One POST of `data` over a connection of its own. "Content-Length" and "Content-Type" are the
    /// caller's to put into the request's headers. The answer's body is read only when the answer
    /// announces a length, and is appended to `body`. False when nothing could be sent.
    bool post(HTTPRequest& request, HTTPResponse& response, const std::string& data,
              std::string& body);

    // --- a GET in steps, on the caller's session: startGet, getData once, stopGet -------------

    /// Sends the request and reads the answer's head. The session stays open, also after a failure.
    bool startGet(HTTPSession& session, HTTPResponse& response, HTTPRequest& request);
    /// Reads the body until it is complete; see readBody.
    bool getData(HTTPSession& session, HTTPResponse& response, std::string& body);
    /// Closes the session.
    void stopGet(HTTPSession& session);

    // --- a POST in steps: startPost, postData any number of times, stopPost -------------------

    /// Sends the request's head. The session stays open, also after a failure.
    bool startPost(HTTPSession& session, HTTPRequest& request);
    /// Sends a piece of the body; see sendBody.
    bool postData(HTTPSession& session, const std::string& data);
    /// Reads the answer, its body only when a length is announced, and closes the session.
    void stopPost(HTTPSession& session, HTTPResponse& response, std::string& body);

    // --- the steps ----------------------------------------------------------------------------

    /// Splits the request's `url` into `host`, `port` and `path`. What the address does not name
    /// keeps its value. False, and nothing written, for any scheme but plain http and for an
    /// address with a colon behind its first slash.
    bool parseUrl(HTTPRequest& request);

    /// IPv4 address of a host in network byte order: the resolver's first one for a name, 0 when it
    /// has none; for anything without letters whatever `inet_addr` makes of it.
    unsigned int hostToLong(std::string host);

    /// Appends the request's head to `out`: request line, host line (with the port unless it is
    /// 80), the header map, and the empty line. Nothing is escaped or added.
    void makeHeader(HTTP_REQ_TYPE& type, HTTPRequest& request, std::string& out);

    /// Resolves the request's host, connects the session and sends the head completely.
    bool sendHeader(HTTP_REQ_TYPE& type, HTTPSession& session, HTTPRequest& request);

    /// Sends `data` completely. False when a send fails.
    bool sendBody(HTTPSession& session, const std::string& data);

    /// Reads status line and header lines up to the empty line or the end of the connection into
    /// `response`. Always true: an answer without a head is an answer.
    bool readHeader(HTTPSession& session, HTTPResponse& response);

    /// Appends the two halves of a head's line to `name` and `value`: a status line is split at its
    /// first space, any other line at its first ": ". Without that, nothing is appended.
    void parseLine(const std::string& line, std::string& name, std::string& value);

    /// Reads a body, plain up to the announced length or chunked, and appends it to `body`. A plain
    /// body without a length ends with the first bytes received. False when the connection fails or
    /// ends before the body does.
    bool readBody(HTTPSession& session, HTTPResponse& response, std::string& body);

    /// Appends a multipart body to `out`, its parts in ascending key order.
    void makeMultipartBody(HTTPMultipart& multipart, std::string& out);
};
