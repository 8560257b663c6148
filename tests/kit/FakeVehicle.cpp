#include "tests/kit/FakeVehicle.h"

#include "tests/kit/ScriptEnd.h"

#include <chrono>

#include <QList>
#include <QtGlobal>

using support::Peer;
using support::ScriptedServer;

namespace fake {

namespace {

constexpr std::chrono::seconds patience(10);
constexpr char headEnd[] = "\r\n\r\n";

QByteArray targetOf(const QByteArray& head)
{
    const auto end = head.lastIndexOf(" HTTP/1.1\r\n");
    return head.startsWith("GET ") && end >= 4 ? head.mid(4, end - 4) : QByteArray();
}

} // namespace

void Gate::open()
{
    const std::lock_guard lock(m_mutex);
    m_open = true;
    m_changed.notify_all();
}

bool Gate::pass()
{
    std::unique_lock lock(m_mutex);
    m_reached = true;
    return m_changed.wait_for(lock, patience, [this] { return m_open; });
}

Module::Module(const char* address)
    : m_server(ScriptedServer::Script([](Peer& peer) { peer.serve(); }), address, modulePort)
{
}

Module::Link Module::link() const
{
    const QList<int> open = links();
    if (open.isEmpty()) {
        qFatal("the module has no link");
    }
    return (*this)[open.last()];
}

Camera::Camera()
    : m_server(std::make_unique<ScriptedServer>(
          ScriptedServer::Script([this](Peer& peer) { serve(peer); }), cameraAddress, cameraPort))
{
}

void Camera::on(const QByteArray& targetStart, Answer answer)
{
    const std::lock_guard lock(m_mutex);
    for (auto& [start, old] : m_answers) {
        if (start == targetStart) {
            old = std::move(answer);
            return;
        }
    }
    m_answers.emplace_back(targetStart, std::move(answer));
}

void Camera::answerRaw(const QByteArray& targetStart, const QByteArray& bytes)
{
    on(targetStart, [bytes](Peer& peer) { peer.send(bytes); });
}

void Camera::answer(const QByteArray& targetStart, const QByteArray& body)
{
    answerRaw(targetStart, withLength(body));
}

void Camera::fail(const QByteArray& targetStart)
{
    on(targetStart, [](Peer&) {});
}

void Camera::holdFiles(const QList<QByteArray>& names)
{
    answer(countTarget, "var filecount=\"" + QByteArray::number(names.size()) + "\";\r\n");
    answer(listTarget, fileList(names));
    answer(infoTarget,
           "var create=\"20200131124502\";\r\nvar size=\"1572864\";\r\nvar time=\"37\";\r\n");
}

QList<QByteArray> Camera::heads() const
{
    const std::lock_guard lock(m_mutex);
    return m_heads;
}

QList<QByteArray> Camera::targets() const
{
    QList<QByteArray> targets;
    for (const QByteArray& head : heads()) {
        targets.append(targetOf(head));
    }
    return targets;
}

void Camera::forgetRequests()
{
    const std::lock_guard lock(m_mutex);
    m_heads.clear();
}

QList<QByteArray> Camera::errors() const
{
    const std::lock_guard lock(m_mutex);
    return m_errors;
}

void Camera::note(const QByteArray& error)
{
    const std::lock_guard lock(m_mutex);
    m_errors.append(error);
}

void Camera::serve(Peer& peer)
{
    try {
        peer.receiveUntil(headEnd);
    } catch (const support::ScriptFailed&) {
        // Reported below, unless nothing was received.
    }
    const QByteArray head = peer.received();
    if (!head.endsWith(headEnd)) {
        if (!head.isEmpty()) {
            note("incomplete request head: " + head);
        }
        return;
    }
    const QByteArray target = targetOf(head);
    Answer answer;
    {
        const std::lock_guard lock(m_mutex);
        m_heads.append(head);
        qint64 longest = -1;
        for (const auto& [start, candidate] : m_answers) {
            if (target.startsWith(start) && start.size() > longest) {
                longest = start.size();
                answer = candidate;
            }
        }
    }
    if (!answer) {
        note("no answer for " + target);
        return;
    }
    try {
        answer(peer);
    } catch (const support::ScriptFailed&) {
        // The client may close at any time.
    }
}

QByteArray withLength(const QByteArray& body)
{
    return "HTTP/1.1 200 OK\r\nContent-Length: " + QByteArray::number(body.size()) + "\r\n\r\n" +
           body;
}

QByteArray fileList(const QList<QByteArray>& names)
{
    QByteArray list;
    for (const QByteArray& name : names) {
        list += "sd/DCIM/100ZEPNA/" + name + ";";
    }
    return list + "\r\n";
}

} // namespace fake
