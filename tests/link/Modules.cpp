#include "tests/link/Modules.h"

#include "link/ControlClientThread.h"
#include "link/GroundClientThread.h"

namespace {

template <class Thread>
std::unique_ptr<ModuleClientThread> newThread(QObject* parent)
{
    return std::make_unique<Thread>(parent);
}

} // namespace

const Module& controlModule()
{
    static const Module module{
        "control",
        "192.168.1.149",
        '\xAA',
        "ControlClientThread",
        {"signal void VersionInfo(char hardType, int hardVer, int softVer, int ProtocolVer, "
         "int BootVer)",
         "signal void updateLinkedFlag(bool flag)", "slot void heartBeatTimer()"},
        {"ControlClientThread run begin", "control new socket begin", "control new socket bind ok",
         "control new socket success", "Control host IP: 192.168.1.149 length: 13"},
        "lost, logs \"control nRead = 0\", connects",
        newThread<ControlClientThread>};
    return module;
}

const Module& groundModule()
{
    static const Module module{
        "ground",
        "192.168.1.148",
        '\xBB',
        "GroundClientThread",
        {"slot void ModuleNameInit(char* modulename)", "slot void heartBeatTimer()"},
        {"GroundClientThread run begin", "ground new socket begin", "ground new socket bind ok",
         "ground new socket success", "Ground host IP: 192.168.1.148 length: 13"},
        "connects",
        newThread<GroundClientThread>};
    return module;
}

const Module& moduleOf(const support::Conversation& conversation)
{
    const bool isControl = conversation.exchanges.front().call.rfind("control", 0) == 0;
    return isControl ? controlModule() : groundModule();
}
