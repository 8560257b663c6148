// Scripts for modules that send nothing, or nothing more.
#pragma once

#include "tests/support/ScriptedServer.h"

#include <QByteArray>

/// Keeps receiving until the server ends, so that answers are recorded.
inline void hold(support::Peer& peer)
{
    peer.holdOpen();
}

/// Sends the bytes, then holds.
inline support::ScriptedServer::Script sendAndHold(const QByteArray& bytes)
{
    return [bytes](support::Peer& peer) {
        peer.send(bytes);
        peer.holdOpen();
    };
}
