#include "link/VehicleFrame.h"

namespace vehicle {

namespace {

constexpr std::uint8_t outgoingSecondByte = 0xAF;
constexpr std::uint8_t versionReportType = 0x00;
constexpr std::uint8_t checksumBase = 0x5A;

/// Returns the value of two bytes, high byte first. Both bytes are signed, which is deliberate: a
/// byte of 0x80 or more is negative, so 01 90 is 144 and not 400.
int signedPair(const Received& received, std::size_t offset)
{
    const auto high = static_cast<std::int8_t>(received[offset]);
    const auto low = static_cast<std::int8_t>(received[offset + 1]);
    return high * 256 + low;
}

} // namespace

std::optional<VersionReport> decodeVersionReport(const Received& received)
{
    if (received[0] != controlStartByte || received[2] != versionReportType) {
        return std::nullopt;
    }
    return VersionReport{static_cast<std::int8_t>(received[4]), signedPair(received, 5),
                         signedPair(received, 7), signedPair(received, 9),
                         signedPair(received, 11)};
}

bool isHeartbeat(const Received& received, std::uint8_t startByte)
{
    return received[0] == startByte && received[2] == static_cast<std::uint8_t>(heartbeatType);
}

OutgoingFrame encodeFrame(char type, char data)
{
    const auto typeByte = static_cast<std::uint8_t>(type);
    const auto dataByte = static_cast<std::uint8_t>(data);
    return {controlStartByte, outgoingSecondByte,
            typeByte,         0x01,
            dataByte,         static_cast<std::uint8_t>(typeByte + dataByte + checksumBase)};
}

} // namespace vehicle
