// A small blocking HTTP/1.1 client for devices on the local network.
//
// The bodies are in:
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

/// The operations of the client. The class has no data: everything works on the records and the
/// session passed in. Failures are reported by return values, never by exceptions or messages. The
/// status of an answer is not a failure; see HTTPResponse::statusCode. A text that a call appends
/// to may be one that the same call reads.
class HTTPClient
{
public:
    // --- whole exchanges ---------------------------------------------------------------------

    /// Performs one GET over a new connection. Appends the body to `body` and fills `response` on
    /// top of its previous contents. Returns false for a rejected address, if connecting or sending
    /// fails, or if the connection ends before the body does; what was received is still in `body`.
    /// A body without a length ends with the first receive; see readBody.
    bool get(HTTPRequest& request, HTTPResponse& response, std::string& body);

    /// Performs one POST of `data` over a new connection. The caller sets "Content-Length" and
    /// "Content-Type" in the request's headers. The answer's body is read only if the answer
    /// announces a length, and is appended to `body`. Returns false if the request could not be
    /// sent completely.
    bool post(HTTPRequest& request, HTTPResponse& response, const std::string& data,
              std::string& body);

    // --- a GET in steps, on the caller's session: startGet, getData once, stopGet -------------

    /// Sends the request and reads the answer's head. The session stays open, even after a failure.
    bool startGet(HTTPSession& session, HTTPResponse& response, HTTPRequest& request);
    /// Reads the body until it is complete; see readBody.
    bool getData(HTTPSession& session, HTTPResponse& response, std::string& body);
    /// Closes the session.
    void stopGet(HTTPSession& session);

    // --- a POST in steps: startPost, postData any number of times, stopPost -------------------

    /// Sends the request's head. The session stays open, even after a failure.
    bool startPost(HTTPSession& session, HTTPRequest& request);
    /// Sends a piece of the body; see sendBody.
    bool postData(HTTPSession& session, const std::string& data);
    /// Reads the answer, with its body only if a length is announced, and closes the session.
    void stopPost(HTTPSession& session, HTTPResponse& response, std::string& body);

    // --- the steps ----------------------------------------------------------------------------

    /// Splits the request's `url` into `host`, `port` and `path`; a port or path missing from the
    /// address keeps its value. Returns false and writes nothing if the address is not "http://"
    /// followed by something, or if its first colon after that comes after the first slash.
    bool parseUrl(HTTPRequest& request);

    /// Returns the IPv4 address of a host in network byte order: for a name the first one that the
    /// resolver returns, or 0 if there is none; for a host without letters, and without the
    /// characters between "Z" and "a", the result of `inet_addr`.
    unsigned int hostToLong(std::string host);

    /// Appends the request's head to `out`: request line, host line (with the port unless it is
    /// 80), the header map, and the empty line. Nothing is escaped, and no other line is added.
    void makeHeader(HTTP_REQ_TYPE& type, HTTPRequest& request, std::string& out);

    /// Resolves the request's host, connects the session and sends the head completely.
    bool sendHeader(HTTP_REQ_TYPE& type, HTTPSession& session, HTTPRequest& request);

    /// Sends `data` completely. Returns false if a send fails.
    bool sendBody(HTTPSession& session, const std::string& data);

    /// Reads the status line and header lines up to the empty line or the end of the connection
    /// into `response`. Always returns true: an answer without a head is valid. If memory runs out,
    /// the head ends there.
    bool readHeader(HTTPSession& session, HTTPResponse& response);

    /// Appends the two parts of a head's line to `name` and `value`: a status line is split at its
    /// first space, any other line at its first ": ". Without that separator nothing is appended.
    void parseLine(const std::string& line, std::string& name, std::string& value);

    /// Reads a body, plain up to the announced length or chunked, and appends it to `body`. A plain
    /// body without a length ends with the first receive. Returns false if the connection fails or
    /// closes before the end of the body, or if memory runs out.
    bool readBody(HTTPSession& session, HTTPResponse& response, std::string& body);

    /// Appends a multipart body to `out`, with its parts in ascending key order.
    void makeMultipartBody(HTTPMultipart& multipart, std::string& out);
};
