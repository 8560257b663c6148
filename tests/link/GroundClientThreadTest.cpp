#include "link/GroundClientThread.h"

#include "tests/kit/TestMain.h"
#include "tests/link/Link.h"
#include "tests/link/LinkThreadTest.h"

#include <QMetaObject>
#include <QTest>

class GroundClientThreadTest : public LinkThreadTest
{
    Q_OBJECT

public:
    GroundClientThreadTest() : LinkThreadTest(groundModule()) {}

private slots:
    void moduleNameInitDoesNothing();
};

void GroundClientThreadTest::moduleNameInitDoesNothing()
{
    const Link link(groundModule());
    const QStringList before = link.log.lines();
    char name[] = "name";
    QVERIFY(QMetaObject::invokeMethod(link.thread.get(), "ModuleNameInit", Qt::DirectConnection,
                                      Q_ARG(char*, name)));
    QCOMPARE(QByteArray(name), QByteArray("name"));
    QCOMPARE(link.log.lines(), before);
    QCOMPARE(QByteArray(link.thread->serverIP), groundModule().address);
}

BELUN_NETWORK_TEST(GroundClientThreadTest)
#include "GroundClientThreadTest.moc"
