// Plays conversations of `download NAME` with the camera, in the private network.
//
// A result begins with the fields of the head that are not zero and ends with the local file: its
// content in quotes, or `no file`. Between them, `progress` lists the signals, each as
// RECEIVED/ANNOUNCED, and `prints` states what the download wrote to standard output. Only
// conversations with pauses state the progress; in all other conversations, each piece that ends in
// the saved body must be reported once.
#pragma once

#include "tests/kit/ConversationFile.h"

#include <string>
#include <vector>

#include <QByteArray>

struct resp_header;

/// Describes the fields that are not zero: "status=200 type=video/mp4 length=5".
QByteArray describe(const resp_header& head);

/// Makes the call of an exchange in a download thread, with a camera that sends the answer in these
/// pieces, each after the client has received the previous one, and then closes, resets or waits,
/// as the exchange states. Returns the result.
std::string played(const support::Exchange& exchange, const std::vector<std::string>& pieces);
