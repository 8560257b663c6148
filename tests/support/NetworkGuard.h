// Whether tests may use the devices' addresses.
#pragma once

#include <QString>

namespace support {

/// Empty when the three device addresses are on the loopback interface and no other interface is
/// up, else what is missing.
QString whyNotInPrivateNetwork();

} // namespace support
