// "Link Device" with scripted modules at the real addresses: probes, status, versions.
#include "link/ControlClientThread.h"
#include "link/GroundClientThread.h"
#include "tests/kit/FakeVehicle.h"
#include "tests/kit/SilentAddress.h"
#include "tests/kit/TestMain.h"
#include "tests/kit/UserWindow.h"
#include "tests/kit/WindowTexts.h"

#include <optional>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QList>
#include <QMetaObject>

namespace {

const QByteArray heartbeat = QByteArray::fromHex("aaaf04010000");
const QByteArray heartbeatAnswer = QByteArray::fromHex("aaaf0401015f");
const QByteArray versionReport = QByteArray::fromHex("aaaf000907012c02580064000a00");

constexpr char idleStyle[] = "border:1px;background:transparent";
constexpr char linkedStyle[] = "border:1px;background:transparent;color:green";
constexpr char notLinkedStyle[] = "border:1px;background:transparent;color:red";

const support::WindowText& linked = support::windowText("linked");
const support::WindowText& unlinked = support::windowText("unlinked");

const QStringList noVersions{QString(), QString(), QString(), QString(), QString()};

int controlThreads(const UserWindow& user)
{
    return static_cast<int>(user.window().findChildren<ControlClientThread*>().size());
}

int groundThreads(const UserWindow& user)
{
    return static_cast<int>(user.window().findChildren<GroundClientThread*>().size());
}

} // namespace

class LinkTest : public QObject
{
    Q_OBJECT

private slots:
    void statusIsEmptyBeforeTheFirstClick();
    void refusingGroundModuleFailsWithoutASecondProbe();
    void refusingControlModuleFailsAfterOneProbeOfEach();
    void silentModuleFailsAfterASecond_data();
    void silentModuleFailsAfterASecond();
    void bothReachableShowSuccessAndStartTwoThreads();
    void probeSendsNothingAndIsClosed();
    void failureAndSuccessLookExactlyAsDesigned_data();
    void failureAndSuccessLookExactlyAsDesigned();
    void secondClickWhileLinkedDoesNothing();
    void clickAfterAFailureProbesAgain();
    void heartbeatIsAnsweredOnBothLinks();
    void lostLinkTurnsRedAndTheNextHeartbeatGreen();
    void lostGroundLinkIsShownNowhere();
    void sixTicksWithoutHeartbeatLoseTheLinkWithTheNextBytes();
    void clickAfterALossStartsASecondPairBesideTheFirst();
    void versionReportFillsTheFiveFields();
    void versionReportOfAnUnlinkedWindowChangesNothing();
    void versionReportAfterALossChangesNothing();
    void versionsAreWrittenInHundredths();
    void statusKeepsItsLanguageUntilItIsSetAgain();
    void failureIsShownInTheSelectedLanguage();
    void probeReturnsWhetherAnAddressAnswers();
    void probeWaitsASecondByDefault();
};

void LinkTest::statusIsEmptyBeforeTheFirstClick()
{
    const UserWindow user;
    QCOMPARE(user.status(), QString());
    QCOMPARE(user.statusField().styleSheet(), QString(idleStyle));
    QCOMPARE(user.versions(), noVersions);
}

void LinkTest::refusingGroundModuleFailsWithoutASecondProbe()
{
    fake::Module control(fake::controlAddress);
    const UserWindow user;
    user.clickLink();
    QCOMPARE(user.status(), unlinked.english);
    QCOMPARE(control.connectionCount(), 0);
    QCOMPARE(controlThreads(user), 0);
    QCOMPARE(groundThreads(user), 0);
}

void LinkTest::refusingControlModuleFailsAfterOneProbeOfEach()
{
    fake::Module ground(fake::groundAddress);
    const UserWindow user;
    user.clickLink();
    QCOMPARE(user.status(), unlinked.english);
    QCOMPARE(ground.connectionCount(), 1);
    QCOMPARE(controlThreads(user), 0);
    QCOMPARE(groundThreads(user), 0);
}

void LinkTest::silentModuleFailsAfterASecond_data()
{
    QTest::addColumn<bool>("groundIsSilent");
    QTest::addColumn<bool>("controlIsSilent");
    QTest::newRow("ground module silent") << true << false;
    QTest::newRow("control module silent") << false << true;
    QTest::newRow("both silent, the second is not tried") << true << true;
}

void LinkTest::silentModuleFailsAfterASecond()
{
    QFETCH(bool, groundIsSilent);
    QFETCH(bool, controlIsSilent);
    std::optional<support::SilentAddress> silentGround;
    std::optional<support::SilentAddress> silentControl;
    std::optional<fake::Module> ground;
    std::optional<fake::Module> control;
    if (groundIsSilent) {
        silentGround.emplace(fake::groundAddress, 5000);
    } else {
        ground.emplace(fake::groundAddress);
    }
    if (controlIsSilent) {
        silentControl.emplace(fake::controlAddress, 5000);
    } else {
        control.emplace(fake::controlAddress);
    }
    const UserWindow user;

    QElapsedTimer clock;
    clock.start();
    user.clickLink();
    const qint64 elapsed = clock.elapsed();

    QCOMPARE(user.status(), unlinked.english);
    QVERIFY2(elapsed >= 950 && elapsed < 1800, qPrintable(QString::number(elapsed) + " ms"));
    QCOMPARE(controlThreads(user), 0);
    if (control) {
        QCOMPARE(control->connectionCount(), 0);
    }
}

void LinkTest::bothReachableShowSuccessAndStartTwoThreads()
{
    fake::Module ground(fake::groundAddress);
    fake::Module control(fake::controlAddress);
    const UserWindow user;
    user.clickLink();
    QCOMPARE(user.status(), linked.english);
    QCOMPARE(controlThreads(user), 1);
    QCOMPARE(groundThreads(user), 1);
    QVERIFY(user.window().findChild<ControlClientThread*>()->isRunning());
    QVERIFY(user.window().findChild<GroundClientThread*>()->isRunning());
    // One probe and one link each.
    QTRY_COMPARE(control.links(), QList<int>{1});
    QTRY_COMPARE(ground.links(), QList<int>{1});
    QCOMPARE(ground.connectionCount(), 2);
    QCOMPARE(control.connectionCount(), 2);
}

void LinkTest::probeSendsNothingAndIsClosed()
{
    fake::Module ground(fake::groundAddress);
    fake::Module control(fake::controlAddress);
    const UserWindow user;
    user.clickLink();
    for (fake::Module* module : {&ground, &control}) {
        QTRY_COMPARE(module->links(), QList<int>{1});
        QVERIFY(!(*module)[0].isOpen());
        QCOMPARE((*module)[0].received(), QByteArray());
    }
}

void LinkTest::failureAndSuccessLookExactlyAsDesigned_data()
{
    QTest::addColumn<bool>("reachable");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("styleSheet");
    QTest::newRow("success") << true << linked.english << linkedStyle;
    QTest::newRow("failure") << false << unlinked.english << notLinkedStyle;
}

void LinkTest::failureAndSuccessLookExactlyAsDesigned()
{
    QFETCH(bool, reachable);
    QFETCH(QString, text);
    QFETCH(QString, styleSheet);
    std::optional<fake::Module> ground;
    std::optional<fake::Module> control;
    if (reachable) {
        ground.emplace(fake::groundAddress);
        control.emplace(fake::controlAddress);
    }
    const UserWindow user;
    const auto checkLook = [&] {
        QCOMPARE(user.status(), text);
        QCOMPARE(user.statusField().styleSheet(), styleSheet);
        const QFont font = user.statusField().font();
        QCOMPARE(font.family(), QStringLiteral("Timers"));
        QCOMPARE(font.pointSize(), 14);
        QCOMPARE(int{font.weight()}, int{QFont::Bold});
        QCOMPARE(font.italic(), false);
        QVERIFY(!user.statusField().isEnabled());
    };
    user.clickLink();
    checkLook();
    if (QTest::currentTestFailed()) {
        return;
    }
    // Sets the opposite state first, then the tested state, both through the slot that the link
    // thread calls.
    user.probe().call("updateLinkedFlag", Q_ARG(bool, !reachable));
    QVERIFY(user.statusField().styleSheet() != styleSheet);
    user.statusField().setFont(QFont());
    user.probe().call("updateLinkedFlag", Q_ARG(bool, reachable));
    checkLook();
}

void LinkTest::secondClickWhileLinkedDoesNothing()
{
    fake::Module ground(fake::groundAddress);
    fake::Module control(fake::controlAddress);
    const UserWindow user;
    user.clickLink();
    QTRY_COMPARE(control.links(), QList<int>{1});
    QTRY_COMPARE(ground.links(), QList<int>{1});
    user.clickLink();
    user.clickLink();
    QCOMPARE(ground.connectionCount(), 2);
    QCOMPARE(control.connectionCount(), 2);
    QCOMPARE(controlThreads(user), 1);
    QCOMPARE(groundThreads(user), 1);
    QCOMPARE(user.status(), linked.english);
}

void LinkTest::clickAfterAFailureProbesAgain()
{
    const UserWindow user;
    user.clickLink();
    QCOMPARE(user.status(), unlinked.english);
    fake::Module ground(fake::groundAddress);
    fake::Module control(fake::controlAddress);
    user.clickLink();
    QCOMPARE(user.status(), linked.english);
    QCOMPARE(user.statusField().styleSheet(), QString(linkedStyle));
    QTRY_COMPARE(control.links(), QList<int>{1});
}

void LinkTest::heartbeatIsAnsweredOnBothLinks()
{
    fake::Module ground(fake::groundAddress);
    fake::Module control(fake::controlAddress);
    const UserWindow user;
    user.clickLink();
    QTRY_COMPARE(control.links(), QList<int>{1});
    QTRY_COMPARE(ground.links(), QList<int>{1});
    control.link().send(heartbeat);
    ground.link().send(QByteArray::fromHex("bbaf04010000"));
    QTRY_COMPARE(control.link().received(), heartbeatAnswer);
    QTRY_COMPARE(ground.link().received(), heartbeatAnswer);
    QCOMPARE(user.status(), linked.english);
}

void LinkTest::lostLinkTurnsRedAndTheNextHeartbeatGreen()
{
    fake::Module ground(fake::groundAddress);
    fake::Module control(fake::controlAddress);
    const UserWindow user;
    user.clickLink();
    QTRY_COMPARE(control.links(), QList<int>{1});
    control.link().close();
    QTRY_COMPARE(user.status(), unlinked.english);
    QCOMPARE(user.statusField().styleSheet(), QString(notLinkedStyle));
    // The thread has reconnected by itself; a connection alone is not a link.
    QTRY_COMPARE(control.links(), QList<int>{2});
    QCOMPARE(user.status(), unlinked.english);
    control.link().send(heartbeat);
    QTRY_COMPARE(user.status(), linked.english);
    QCOMPARE(user.statusField().styleSheet(), QString(linkedStyle));
    QCOMPARE(controlThreads(user), 1);
}

void LinkTest::lostGroundLinkIsShownNowhere()
{
    fake::Module ground(fake::groundAddress);
    fake::Module control(fake::controlAddress);
    const UserWindow user;
    user.clickLink();
    QTRY_COMPARE(ground.links(), QList<int>{1});
    QTRY_COMPARE(control.links(), QList<int>{1});
    ground.link().close();
    QTRY_COMPARE(ground.links(), QList<int>{2});
    // Once this answer is sent, every earlier signal is queued for the window.
    control.link().send(heartbeat);
    QTRY_COMPARE(control.link().received(), heartbeatAnswer);
    QCoreApplication::processEvents();
    QCOMPARE(user.status(), linked.english);
}

void LinkTest::sixTicksWithoutHeartbeatLoseTheLinkWithTheNextBytes()
{
    fake::Module ground(fake::groundAddress);
    fake::Module control(fake::controlAddress);
    const UserWindow user;
    user.clickLink();
    QTRY_COMPARE(control.links(), QList<int>{1});
    control.link().send(heartbeat);
    QTRY_COMPARE(control.link().received(), heartbeatAnswer);
    auto* thread = user.window().findChild<ControlClientThread*>();
    for (int tick = 0; tick < 6; ++tick) {
        QMetaObject::invokeMethod(thread, "heartBeatTimer", Qt::DirectConnection);
    }
    QCoreApplication::processEvents();
    QCOMPARE(user.status(), linked.english);
    control.link().send(versionReport);
    QTRY_COMPARE(user.status(), unlinked.english);
    QTRY_COMPARE(control.connectionCount(), 3);
}

void LinkTest::clickAfterALossStartsASecondPairBesideTheFirst()
{
    fake::Module ground(fake::groundAddress);
    fake::Module control(fake::controlAddress);
    const UserWindow user;
    user.clickLink();
    QTRY_COMPARE(ground.links(), QList<int>{1});
    QTRY_COMPARE(control.links(), QList<int>{1});
    control.link().close();
    QTRY_COMPARE(control.links(), QList<int>{2});
    QTRY_COMPARE(user.status(), unlinked.english);

    user.clickLink();
    QCOMPARE(user.status(), linked.english);
    QCOMPARE(controlThreads(user), 2);
    QCOMPARE(groundThreads(user), 2);
    for (const auto* thread : user.window().findChildren<ControlClientThread*>()) {
        QVERIFY(thread->isRunning());
    }
    // The connections of the first pair and, after the second probe, those of the second pair.
    QTRY_COMPARE(control.links(), (QList<int>{2, 4}));
    QTRY_COMPARE(ground.links(), (QList<int>{1, 3}));
    for (const int link : {2, 4}) {
        control[link].send(heartbeat);
        QTRY_COMPARE(control[link].received(), heartbeatAnswer);
    }
}

void LinkTest::versionReportFillsTheFiveFields()
{
    fake::Module ground(fake::groundAddress);
    fake::Module control(fake::controlAddress);
    const UserWindow user;
    user.clickLink();
    QTRY_COMPARE(control.links(), QList<int>{1});
    control.link().send(versionReport);
    QTRY_COMPARE(user.versions(), (QStringList{"v7", "v3", "v6", "v1", "v0.1"}));
    QTRY_VERIFY(control.link().isAllRead());
    // Both bytes of a version are signed: 01 90 means 256 - 112 = 144.
    control.link().send(QByteArray::fromHex("aaaf0009ff0190012c0000ffff00"));
    QTRY_COMPARE(user.versions(), (QStringList{"v-1", "v1.44", "v3", "v0", "v-2.57"}));
}

void LinkTest::versionReportOfAnUnlinkedWindowChangesNothing()
{
    const UserWindow user;
    user.probe().call("VersionInfo", Q_ARG(char, 7), Q_ARG(int, 300), Q_ARG(int, 600),
                      Q_ARG(int, 100), Q_ARG(int, 10));
    QCOMPARE(user.versions(), noVersions);
    user.clickLink();
    QCOMPARE(user.status(), unlinked.english);
    user.probe().call("VersionInfo", Q_ARG(char, 7), Q_ARG(int, 300), Q_ARG(int, 600),
                      Q_ARG(int, 100), Q_ARG(int, 10));
    QCOMPARE(user.versions(), noVersions);
}

void LinkTest::versionReportAfterALossChangesNothing()
{
    fake::Module ground(fake::groundAddress);
    fake::Module control(fake::controlAddress);
    const UserWindow user;
    user.clickLink();
    QTRY_COMPARE(control.links(), QList<int>{1});
    control.link().send(versionReport);
    QTRY_COMPARE(user.versions().first(), QStringLiteral("v7"));
    control.link().close();
    QTRY_COMPARE(user.status(), unlinked.english);
    QTRY_COMPARE(control.links(), QList<int>{2});
    control.link().send(QByteArray::fromHex("aaaf000909000100020003000400"));
    QTRY_VERIFY(control.link().isAllRead());
    // When the window shows the effect of this heartbeat, it has processed the report before it.
    control.link().send(heartbeat);
    QTRY_COMPARE(user.status(), linked.english);
    QCOMPARE(user.versions(), (QStringList{"v7", "v3", "v6", "v1", "v0.1"}));
}

/// Other numbers are covered by the test of link/VersionText.
void LinkTest::versionsAreWrittenInHundredths()
{
    const UserWindow user;
    user.probe().call("updateLinkedFlag", Q_ARG(bool, true));
    user.probe().call("VersionInfo", Q_ARG(char, -1), Q_ARG(int, 101), Q_ARG(int, -257),
                      Q_ARG(int, 123456), Q_ARG(int, 0));
    QCOMPARE(user.versions(), (QStringList{"v-1", "v1.01", "v-2.57", "v1234.56", "v0"}));
}

void LinkTest::statusKeepsItsLanguageUntilItIsSetAgain()
{
    fake::Module ground(fake::groundAddress);
    fake::Module control(fake::controlAddress);
    const UserWindow user;
    user.clickLink();
    QTRY_COMPARE(control.links(), QList<int>{1});
    user.chooseChinese();
    QCOMPARE(user.button("pushButtonLinkBELUN").text(), support::windowText("link").chinese);
    QCOMPARE(user.status(), linked.english);
    control.link().send(heartbeat);
    QTRY_COMPARE(user.status(), linked.chinese);
    user.chooseEnglish();
    QCOMPARE(user.status(), linked.chinese);
    QTRY_VERIFY(control.link().isAllRead());
    control.link().send(heartbeat);
    QTRY_COMPARE(user.status(), linked.english);
}

void LinkTest::failureIsShownInTheSelectedLanguage()
{
    const UserWindow user;
    user.chooseChinese();
    user.clickLink();
    QCOMPARE(user.status(), unlinked.chinese);
    user.chooseEnglish();
    QCOMPARE(user.status(), unlinked.chinese);
    user.clickLink();
    QCOMPARE(user.status(), unlinked.english);
}

void LinkTest::probeReturnsWhetherAnAddressAnswers()
{
    const UserWindow user;
    bool answers = true;
    user.probe().call("IPLive", Q_RETURN_ARG(bool, answers), Q_ARG(QString, fake::groundAddress),
                      Q_ARG(int, 5000), Q_ARG(int, 1000));
    QCOMPARE(answers, false);
    const fake::Module ground(fake::groundAddress);
    user.probe().call("IPLive", Q_RETURN_ARG(bool, answers), Q_ARG(QString, fake::groundAddress),
                      Q_ARG(int, 5000), Q_ARG(int, 1000));
    QCOMPARE(answers, true);
    user.probe().call("IPLive", Q_RETURN_ARG(bool, answers), Q_ARG(QString, fake::groundAddress),
                      Q_ARG(int, 5001), Q_ARG(int, 1000));
    QCOMPARE(answers, false);
}

void LinkTest::probeWaitsASecondByDefault()
{
    const support::SilentAddress silent(fake::groundAddress, 5000);
    const UserWindow user;
    bool answers = true;
    QElapsedTimer clock;
    clock.start();
    user.probe().call("IPLive", Q_RETURN_ARG(bool, answers), Q_ARG(QString, fake::groundAddress),
                      Q_ARG(int, 5000));
    const qint64 untold = clock.restart();
    QCOMPARE(answers, false);
    QVERIFY2(untold >= 950 && untold < 1800, qPrintable(QString::number(untold) + " ms"));
    user.probe().call("IPLive", Q_RETURN_ARG(bool, answers), Q_ARG(QString, fake::groundAddress),
                      Q_ARG(int, 5000), Q_ARG(int, 200));
    const qint64 told = clock.elapsed();
    QCOMPARE(answers, false);
    QVERIFY2(told >= 150 && told < 900, qPrintable(QString::number(told) + " ms"));
}

BELUN_NETWORK_TEST(LinkTest)
#include "LinkTest.moc"
