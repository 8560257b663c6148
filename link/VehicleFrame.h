// The frames of the vehicle link, both directions:
//
//   byte  meaning
//   0     start byte: AA from the control module and in everything this program sends,
//         BB from the ground module
//   1     AF in what this program sends; not examined on receipt
//   2     type: 00 version report (module to program), 04 heartbeat (both directions)
//   3     payload length: 01 in what this program sends; not examined on receipt
//   4...  payload
//   last  checksum: (type + payload byte + 5A) modulo 256 in what this program sends
//
// Version report: byte 4 is the hardware type. The hardware, software, protocol and bootloader
// versions follow, each as two signed bytes with the high byte first.
//
// A frame is recognised only at the start of a receive, that is, of the bytes that one recv call
// returned. A second frame in the same receive is ignored. If a frame is split between two
// receives, the bytes missing from its first part count as zeros, and its second part is parsed as
// a new frame.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace vehicle {

constexpr std::uint8_t controlStartByte = 0xAA;
constexpr std::uint8_t groundStartByte = 0xBB;
constexpr char heartbeatType = 0x04;
constexpr char heartbeatAnswerPayload = 0x01;

constexpr std::size_t receiveLimit = 100;
/// The bytes of one receive, padded with zeros, so that parsing a frame never reads outside the
/// buffer and the fields missing from a short receive are zero.
using Received = std::array<std::uint8_t, receiveLimit>;

/// The values of a version report; versions are in hundredths.
struct VersionReport
{
    std::int8_t hardType;
    int hardVer;
    int softVer;
    int protocolVer;
    int bootVer;
};

/// Returns the version report if the bytes begin with one from the control module, else nothing.
std::optional<VersionReport> decodeVersionReport(const Received& received);

/// Returns whether the bytes begin with a heartbeat of the module with this start byte.
bool isHeartbeat(const Received& received, std::uint8_t startByte);

using OutgoingFrame = std::array<std::uint8_t, 6>;

/// Returns the frame with a type and one payload byte, including the checksum.
OutgoingFrame encodeFrame(char type, char data);

} // namespace vehicle
