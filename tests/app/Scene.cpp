#include "tests/app/Scene.h"

#include <QDir>
#include <QFile>
#include <QProgressBar>
#include <QTest>

QByteArray downloadOf(const QByteArray& name)
{
    return fake::downloadTarget + name;
}

QByteArray deleteOf(const QByteArray& name)
{
    return fake::deleteTarget + name;
}

QByteArray commandHead(const QByteArray& target)
{
    return "GET " + target +
           " HTTP/1.1\r\n"
           "Host: 192.168.1.120\r\n"
           "Accept: */*\r\n"
           "Accept-Language: zh-CN\r\n"
           "Connection: Keep-Alive\r\n"
           "User-Agent: SDK C++ http client\r\n"
           "\r\n";
}

QString recordingsFolder()
{
    return QDir::homePath() + QStringLiteral("/Desktop/DCIM");
}

QByteArray recording(const QString& name)
{
    QFile file(recordingsFolder() + QLatin1Char('/') + name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no file");
}

Devices::Devices()
    : ground(std::in_place, fake::groundAddress), control(std::in_place, fake::controlAddress),
      camera(std::in_place)
{
}

Devices::~Devices()
{
    for (const auto& [name, gates] : m_gates) {
        for (const auto& gate : gates) {
            gate->open();
        }
    }
    QDir(recordingsFolder()).removeRecursively();
    QCOMPARE(camera ? camera->errors() : Texts(), Texts());
}

Scene::Scene(const Texts& card)
{
    link();
    camera->holdFiles(card);
    user.clickBrowse();
    QCOMPARE(user.table().rowCount(), card.size());
    camera->forgetRequests();
}

void Scene::link() const
{
    user.clickLink();
    QVERIFY(user.showsLinkSuccess());
    QTRY_COMPARE(control->links(), QList<int>{1});
    QTRY_COMPARE(ground->links(), QList<int>{1});
}

void Scene::loseLink() const
{
    const int next = control->connectionCount();
    control->link().close();
    QTRY_VERIFY(user.showsLinkFail());
    QTRY_VERIFY(control->links().contains(next));
}

void Scene::linkTwice() const
{
    link();
    loseLink();
    user.clickLink();
    QVERIFY(user.showsLinkSuccess());
    QTRY_COMPARE(control->links(), (QList<int>{2, 4}));
    QTRY_COMPARE(ground->links(), (QList<int>{1, 3}));
}

void Devices::exchangeHeartbeat() const
{
    const fake::Module::Link link = control->link();
    const QByteArray expected = link.received() + heartbeatAnswer;
    link.send(heartbeat);
    QTRY_COMPARE(link.received(), expected);
}

void Devices::sendInParts(const QByteArray& name, const Texts& parts)
{
    auto& gates = m_gates[name];
    std::vector<fake::Gate*> between;
    for (int number = 1; number < parts.size(); ++number) {
        gates.push_back(std::make_unique<fake::Gate>());
        between.push_back(gates.back().get());
    }
    camera->on(downloadOf(name), [parts, between](support::Peer& peer) {
        peer.send(parts.first());
        for (std::size_t number = 0; number < between.size(); ++number) {
            between[number]->pass();
            peer.send(parts[static_cast<int>(number) + 1]);
        }
    });
}

void Devices::stall(const QByteArray& name)
{
    const QByteArray answer = fake::withLength("from " + name);
    sendInParts(name, {answer.chopped(name.size()), name});
}

fake::Gate& Devices::gate(const QByteArray& name, std::size_t number) const
{
    return *m_gates.at(name).at(number);
}

void Scene::downloadUntilStalled(const QList<int>& rows, const QByteArray& name)
{
    stall(name);
    user.downloadRows(rows);
    QTRY_COMPARE(user.progressBar().value(), 5);
}

void Scene::finishDownload(const QByteArray& name) const
{
    gate(name).open();
    QTRY_VERIFY(user.isIdle());
    QCOMPARE(recording(name), "from " + name);
}
