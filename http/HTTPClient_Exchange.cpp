// Complete exchanges, in one call or in steps.
#include "http/HTTPClient.h"

namespace {

/// Parses the address, connects and sends the head. Does not close the session.
bool sendRequest(HTTPClient& client, HTTP_REQ_TYPE type, HTTPSession& session, HTTPRequest& request)
{
    return client.parseUrl(request) && client.sendHeader(type, session, request);
}

} // namespace

bool HTTPClient::get(HTTPRequest& request, HTTPResponse& response, std::string& body)
{
    HTTPSession session;
    return startGet(session, response, request) && getData(session, response, body);
}

bool HTTPClient::startGet(HTTPSession& session, HTTPResponse& response, HTTPRequest& request)
{
    return sendRequest(*this, HTTP_REQ_GET, session, request) && readHeader(session, response);
}

bool HTTPClient::getData(HTTPSession& session, HTTPResponse& response, std::string& body)
{
    return readBody(session, response, body);
}

void HTTPClient::stopGet(HTTPSession& session)
{
    session.closeSession();
}

bool HTTPClient::post(HTTPRequest& request, HTTPResponse& response, const std::string& data,
                      std::string& body)
{
    HTTPSession session;
    if (!startPost(session, request) || !postData(session, data)) {
        return false;
    }
    stopPost(session, response, body);
    return true;
}

bool HTTPClient::startPost(HTTPSession& session, HTTPRequest& request)
{
    return sendRequest(*this, HTTP_REQ_POST, session, request);
}

bool HTTPClient::postData(HTTPSession& session, const std::string& data)
{
    return sendBody(session, data);
}

void HTTPClient::stopPost(HTTPSession& session, HTTPResponse& response, std::string& body)
{
    readHeader(session, response);
    if (response.contentLength != 0) {
        readBody(session, response, body);
    }
    session.closeSession();
}
