// Scripts for modules that send nothing or only the given bytes, and then keep receiving.
#pragma once

#include "tests/kit/ScriptedServer.h"

#include <QByteArray>

/// Keeps receiving until the server ends, so that answers are recorded.
inline void hold(support::Peer& peer)
{
    peer.holdOpen();
}

/// Returns a script that sends the bytes and then keeps receiving.
inline support::ScriptedServer::Script sendAndHold(const QByteArray& bytes)
{
    return [bytes](support::Peer& peer) {
        peer.send(bytes);
        peer.holdOpen();
    };
}
