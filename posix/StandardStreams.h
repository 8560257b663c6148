// Standard streams that are never a socket or a file of the program's own.
#pragma once

namespace sys {

/// Opens closed standard streams on the null device: input for reading, output and errors for
/// writing. A socket or a recording would otherwise take their place and receive what is printed.
/// To be called before anything else is opened.
void openClosedStandardStreams();

} // namespace sys
