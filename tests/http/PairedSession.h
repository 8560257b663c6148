// A session without a network.
#pragma once

#include "http/HTTPSession.h"
#include "tests/kit/SocketPair.h"

#include <utility>

#include <fcntl.h>

/// A session on the product's end of a socket pair.
class PairedSession : public support::SocketPair
{
public:
    explicit PairedSession(int type = SOCK_STREAM) : SocketPair(type)
    {
        session.socketDescriptor = std::exchange(product, -1);
    }

    /// Makes every receive or send of the session that would block fail.
    void failInsteadOfWaiting() { ::fcntl(session.socketDescriptor, F_SETFL, O_NONBLOCK); }

    HTTPSession session;
};
