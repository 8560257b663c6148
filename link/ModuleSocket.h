// The connections of one link thread: making them, waking them, keeping them.
#pragma once

#include <atomic>
#include <vector>

class QThread;

namespace vehicle {

/// The sockets of one link thread. By design a connection that ended stays open when the next one
/// is made; all that were handed to keep() are closed with this object. The stopping calls may come
/// from any thread, everything else is the link thread's.
class ModuleSocket
{
public:
    /// `moduleName` stands in the log lines; it outlives the object.
    explicit ModuleSocket(const char* moduleName) : m_moduleName(moduleName) {}
    ~ModuleSocket();
    ModuleSocket(const ModuleSocket&) = delete;
    ModuleSocket& operator=(const ModuleSocket&) = delete;

    /// A new TCP socket, bound to any local address and connected to the module. Connecting is
    /// tried again and again on that socket, with no pause and no limit, until it succeeds or a
    /// stop is requested: a module that is down keeps one core busy. The descriptor is the
    /// caller's; it is negative when the system gave none.
    int connectTo(const char* ip, int port);

    /// Takes over a descriptor of connectTo(); it is closed with this object.
    void keep(int descriptor);

    /// Asks the link thread to end. It sees that when the call it waits in returns.
    void requestStop() noexcept { m_stopRequested = true; }
    bool stopRequested() const noexcept { return m_stopRequested; }

    /// Asks the link thread to end and shuts the newest socket down every few milliseconds until it
    /// has: one shutdown ends a pending connect or receive, but the next connect blocks again.
    void stopAndWait(QThread& linkThread);

private:
    const char* m_moduleName;
    std::atomic<bool> m_stopRequested{false};
    std::atomic<int> m_newest{-1}; // written by the link thread, read by the one that stops it
    std::vector<int> m_kept;
};

/// Writes the local address of a connected socket, dotted and with its terminating zero, into `ip`,
/// which holds at least 16 characters, and returns the text's length. When the system does not tell
/// the address, "Get IP failed" goes to standard output and the address reads 0.0.0.0.
int localAddress(int descriptor, char* ip);

/// For a link thread: sending on a connection that the module has closed fails from now on without
/// a signal, which would end a program that does not ignore it.
void blockPipeSignal();

/// Sends one frame of one payload byte. The result is not looked at: a connection that fails is
/// noticed by the next receive.
void sendFrame(int descriptor, char type, char data);

} // namespace vehicle
