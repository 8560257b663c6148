// Checks whether tests may use the devices' addresses.
#pragma once

#include <QString>

namespace support {

/// Returns an empty text if the three device addresses are on the loopback interface and no other
/// interface is up, otherwise a message that says what is wrong.
QString whyNotInPrivateNetwork();

} // namespace support
