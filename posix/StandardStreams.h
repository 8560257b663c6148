// Keeps sockets and files from becoming standard streams.
#pragma once

namespace sys {

/// Opens closed standard streams on the null device: input for reading, output and errors for
/// writing. Otherwise a socket or a recording could get the descriptor of a standard stream and
/// receive what is printed. Must be called before anything else is opened.
void openClosedStandardStreams();

} // namespace sys
