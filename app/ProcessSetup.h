// Process setup before anything else runs.
#pragma once

namespace app {

/// Opens closed standard streams on the null device. Ignores SIGPIPE, since writing to a connection
/// that a device has closed would otherwise end the program. Raises the soft limit on open
/// descriptors to the hard one, since reconnections and downloads leave descriptors open by design.
void setUpProcess();

} // namespace app
