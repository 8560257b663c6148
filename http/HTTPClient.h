// A small blocking HTTP/1.1 client for devices on the local network.
//
// The functions are defined in:
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
/// session passed in. Failed exchanges are reported by return values, never by exceptions or
/// messages. An answer with any status is a success; see HTTPResponse::statusCode. The text that a
/// call appends to may be one of the texts that the same call reads.
class HTTPClient
{
public:
    // --- whole exchanges ---------------------------------------------------------------------

    /// Performs one GET over a new connection. Appends the body to `body`, and updates `response`
    /// without resetting it. Returns false if the address is rejected, if connecting or sending
    /// fails, or if readBody fails; whatever was received of the body is in `body` even then.
    bool get(HTTPRequest& request, HTTPResponse& response, std::string& body);

    /// Performs one POST of `data` over a new connection. The caller sets "Content-Length" and
    /// "Content-Type" in the request's headers. The answer's body is read, and appended to `body`,
    /// only if `response.contentLength` is not 0 after the head has been read. Returns false if
    /// the request could not be sent completely.
    bool post(HTTPRequest& request, HTTPResponse& response, const std::string& data,
              std::string& body);

    // --- a GET in steps, on the caller's session: startGet, getData once, stopGet -------------

    /// Sends the request and reads the answer's head. Does not close the session, even after a
    /// failure.
    bool startGet(HTTPSession& session, HTTPResponse& response, HTTPRequest& request);
    /// Reads the body; see readBody.
    bool getData(HTTPSession& session, HTTPResponse& response, std::string& body);
    /// Closes the session.
    void stopGet(HTTPSession& session);

    // --- a POST in steps: startPost, postData any number of times, stopPost -------------------

    /// Sends the request's head. Does not close the session, even after a failure.
    bool startPost(HTTPSession& session, HTTPRequest& request);
    /// Sends a piece of the body; see sendBody.
    bool postData(HTTPSession& session, const std::string& data);
    /// Reads the answer, with its body under the same condition as post, and closes the session.
    void stopPost(HTTPSession& session, HTTPResponse& response, std::string& body);

    // --- the steps ----------------------------------------------------------------------------

    /// Splits the request's `url` into `host`, `port` and `path`; without a port or path in the
    /// URL, that field keeps its value. Returns false and changes nothing if the URL does not begin
    /// with "http://", if nothing follows this prefix, or if a slash precedes the first colon in
    /// the remaining part.
    bool parseUrl(HTTPRequest& request);

    /// Returns the IPv4 address of a host in network byte order. A host that contains an ASCII
    /// letter or one of the characters between "Z" and "a" is a name: returns the first address
    /// that gethostbyname() returns, or 0 if there is none. For any other host, returns the result
    /// of inet_addr().
    unsigned int hostToLong(std::string host);

    /// Appends the request's head to `out`: request line, host line (with the port unless it is
    /// 80), the header map, and the empty line. Nothing is escaped, and no other line is added.
    void makeHeader(HTTP_REQ_TYPE& type, HTTPRequest& request, std::string& out);

    /// Resolves the request's host, connects the session and sends the head completely. Returns
    /// false if connecting or sending fails.
    bool sendHeader(HTTP_REQ_TYPE& type, HTTPSession& session, HTTPRequest& request);

    /// Sends `data` completely. Returns false if a send fails.
    bool sendBody(HTTPSession& session, const std::string& data);

    /// Reads the status line and header lines up to the empty line or the end of the connection
    /// into `response`. Always returns true: an answer without a head counts as valid. If memory
    /// runs out, the head ends there.
    bool readHeader(HTTPSession& session, HTTPResponse& response);

    /// Appends the two parts of a line of the head to `name` and `value`, without the line ending.
    /// Splits a line that begins with "HTTP" at its first space, and any other line at its first
    /// colon that is followed by a space. Appends nothing if the line does not contain that
    /// separator.
    void parseLine(const std::string& line, std::string& name, std::string& value);

    /// Reads a body and appends it to `body`. A chunked body ends with the line after its last
    /// chunk. A plain body ends when `response.received` reaches the announced length, but not
    /// before the first receive; without a length, or with the length 0, it ends with the first
    /// receive. Returns false if the connection fails or closes before that end, or if memory runs
    /// out.
    bool readBody(HTTPSession& session, HTTPResponse& response, std::string& body);

    /// Appends a multipart body to `out`, with its parts in ascending key order.
    void makeMultipartBody(HTTPMultipart& multipart, std::string& out);
};
