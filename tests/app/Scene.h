// A session at the window: both modules, the camera, and the window on screen.
#pragma once

#include "tests/kit/FakeVehicle.h"
#include "tests/kit/UserWindow.h"

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <vector>

#include <QByteArray>
#include <QList>
#include <QString>

using Texts = QList<QByteArray>;

inline const QByteArray heartbeat = QByteArray::fromHex("aaaf04010000"); ///< The control module's.
inline const QByteArray groundHeartbeat = QByteArray::fromHex("bbaf04010000");
inline const QByteArray heartbeatAnswer = QByteArray::fromHex("aaaf0401015f");
inline const QByteArray versionReport = QByteArray::fromHex("aaaf000907012c02580064000a00");

inline const Texts fiveFiles{"a.mp4", "b.mp4", "c.mp4", "d.mp4", "e.mp4"};

/// Return the target of the request that downloads or deletes a file.
QByteArray downloadOf(const QByteArray& name);
QByteArray deleteOf(const QByteArray& name);

/// Returns a request of a camera command, byte for byte.
QByteArray commandHead(const QByteArray& target);

/// Returns the folder of the downloaded recordings.
QString recordingsFolder();
/// Returns the downloaded recording of that name, or "no file".
QByteArray recording(const QString& name);

/// The vehicle of one test function. The destructor fails the test if the camera could not answer a
/// request, and removes the recordings.
struct Devices
{
    Devices();
    ~Devices();
    Devices(const Devices&) = delete;
    Devices& operator=(const Devices&) = delete;

    /// Sends a heartbeat on the newest control link and waits for its answer.
    void exchangeHeartbeat() const;

    /// Makes the camera send a recording in these parts, and wait at a gate after each but the
    /// last.
    void sendInParts(const QByteArray& name, const Texts& parts);
    /// Makes the camera send "from NAME" as that recording, and wait after the first five bytes.
    void stall(const QByteArray& name);
    /// Returns the gate after a part of a recording, counted from 0.
    fake::Gate& gate(const QByteArray& name, std::size_t part = 0) const;

private:
    // Declared before the camera, because the camera's threads wait at the gates.
    std::map<QByteArray, std::vector<std::unique_ptr<fake::Gate>>> m_gates;

public:
    // A test may reset each of these to simulate a device that is switched off.
    std::optional<fake::Module> ground;
    std::optional<fake::Module> control;
    std::optional<fake::Camera> camera;
};

/// The vehicle and the window on screen. The window is destroyed first.
struct Scene : Devices
{
    Scene() = default;
    /// Links the window, lists a card with these files and discards the requests made so far.
    explicit Scene(const Texts& card);

    /// Links, and waits until both link threads are connected.
    void link() const;
    /// Closes the control link, and waits until the window shows the loss and the link thread has
    /// reconnected.
    void loseLink() const;
    /// Links, loses the control link, links again, and waits until all four threads are connected.
    /// Their connections have the numbers 2 and 4 at the control module, 1 and 3 at the ground
    /// module.
    void linkTwice() const;
    /// Downloads these rows, and waits until that recording stalls after five bytes.
    void downloadUntilStalled(const QList<int>& rows, const QByteArray& name);
    /// Lets the stalled recording end, waits until the window is idle, and compares the file.
    void finishDownload(const QByteArray& name) const;

    UserWindow user;
};
