// "Link Device" with scripted modules at the real addresses: probes, status, versions.
#include "link/ControlClientThread.h"
#include "link/GroundClientThread.h"
#include "tests/app/Scene.h"
#include "tests/kit/SilentAddress.h"
#include "tests/kit/TestMain.h"

#include <optional>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFont>
#include <QMetaObject>

namespace {

constexpr char idleStyle[] = "border:1px;background:transparent";
constexpr char linkedStyle[] = "border:1px;background:transparent;color:green";
constexpr char notLinkedStyle[] = "border:1px;background:transparent;color:red";

const support::WindowText& linked = support::windowText("linked");
const support::WindowText& unlinked = support::windowText("unlinked");

const QStringList noVersions{"", "", "", "", ""};
const QStringList reportedVersions{"v7", "v3", "v6", "v1", "v0.1"};

/// Returns how many control and ground threads the window has.
QList<int> threads(const UserWindow& user)
{
    return {static_cast<int>(user.window().findChildren<ControlClientThread*>().size()),
            static_cast<int>(user.window().findChildren<GroundClientThread*>().size())};
}

void reportVersions(const UserWindow& user, char type, int hard, int soft, int protocol, int boot)
{
    user.probe().call("VersionInfo", Q_ARG(char, type), Q_ARG(int, hard), Q_ARG(int, soft),
                      Q_ARG(int, protocol), Q_ARG(int, boot));
}

/// Calls up to three times, until a call takes less than the limit, because a busy machine may
/// delay any of them. Returns how many milliseconds the last call took.
template <class Call>
qint64 fastest(qint64 limit, const Call& call)
{
    QElapsedTimer clock;
    qint64 elapsed = limit;
    for (int attempt = 0; attempt < 3 && elapsed >= limit; ++attempt) {
        clock.start();
        call();
        elapsed = clock.elapsed();
    }
    return elapsed;
}

} // namespace

class LinkTest : public QObject
{
    Q_OBJECT

private slots:
    void statusIsEmptyBeforeTheFirstClick();
    void moduleThatDoesNotAnswerFailsTheLink_data();
    void moduleThatDoesNotAnswerFailsTheLink();
    void bothReachableShowSuccessAndStartTwoThreads();
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

void LinkTest::moduleThatDoesNotAnswerFailsTheLink_data()
{
    QTest::addColumn<QString>("ground");
    QTest::addColumn<QString>("control");
    QTest::addColumn<QList<int>>("probes"); // of the ground and the control module
    QTest::addColumn<int>("seconds");
    QTest::newRow("ground refuses: no second probe") << "refuses"
                                                     << "answers" << QList<int>{0, 0} << 0;
    QTest::newRow("control refuses") << "answers"
                                     << "refuses" << QList<int>{1, 0} << 0;
    QTest::newRow("ground is silent: no second probe") << "is silent"
                                                       << "answers" << QList<int>{0, 0} << 1;
    QTest::newRow("control is silent") << "answers"
                                       << "is silent" << QList<int>{1, 0} << 1;
    QTest::newRow("both are silent: one second") << "is silent"
                                                 << "is silent" << QList<int>{0, 0} << 1;
}

void LinkTest::moduleThatDoesNotAnswerFailsTheLink()
{
    QFETCH(QString, ground);
    QFETCH(QString, control);
    QFETCH(QList<int>, probes);
    QFETCH(int, seconds);
    Scene scene;
    std::optional<support::SilentAddress> silentGround;
    std::optional<support::SilentAddress> silentControl;
    if (ground != "answers") {
        scene.ground.reset();
    }
    if (ground == "is silent") {
        silentGround.emplace(fake::groundAddress, fake::modulePort);
    }
    if (control != "answers") {
        scene.control.reset();
    }
    if (control == "is silent") {
        silentControl.emplace(fake::controlAddress, fake::modulePort);
    }

    int clicks = 0;
    const qint64 elapsed = fastest(800 + 1000 * seconds, [&] {
        scene.user.clickLink();
        ++clicks;
    });

    QCOMPARE(scene.user.status(), unlinked.english);
    QCOMPARE(threads(scene.user), (QList<int>{0, 0}));
    QCOMPARE(scene.ground ? scene.ground->connectionCount() : 0, clicks * probes[0]);
    QCOMPARE(scene.control ? scene.control->connectionCount() : 0, clicks * probes[1]);
    QVERIFY2(elapsed >= 950 * seconds && elapsed < 800 + 1000 * seconds,
             qPrintable(QString::number(elapsed) + " ms"));
}

void LinkTest::bothReachableShowSuccessAndStartTwoThreads()
{
    Scene scene;
    scene.link();
    QCOMPARE(scene.user.status(), linked.english);
    QCOMPARE(threads(scene.user), (QList<int>{1, 1}));
    // One link each, after one probe that sent nothing and was closed.
    for (const fake::Module* module : {&*scene.ground, &*scene.control}) {
        QCOMPARE(module->connectionCount(), 2);
        QCOMPARE(module->links(), QList<int>{1});
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
    Scene scene;
    if (!reachable) {
        scene.ground.reset();
    }
    QLineEdit& field = scene.user.statusField();
    const auto checkLook = [&] {
        QCOMPARE(field.text(), text);
        QCOMPARE(field.styleSheet(), styleSheet);
        QCOMPARE(field.font().family(), QString("Timers"));
        QCOMPARE(field.font().pointSize(), 14);
        QCOMPARE(int{field.font().weight()}, int{QFont::Bold});
        QCOMPARE(field.font().italic(), false);
        QVERIFY(!field.isEnabled());
    };
    scene.user.clickLink();
    checkLook();
    if (QTest::currentTestFailed()) {
        return;
    }
    // Sets the opposite state first, then the tested state, both through the slot that receives the
    // link thread's signal.
    scene.user.probe().call("updateLinkedFlag", Q_ARG(bool, !reachable));
    QVERIFY(field.styleSheet() != styleSheet);
    field.setFont(QFont());
    scene.user.probe().call("updateLinkedFlag", Q_ARG(bool, reachable));
    checkLook();
}

void LinkTest::secondClickWhileLinkedDoesNothing()
{
    Scene scene;
    scene.link();
    scene.user.clickLink();
    scene.user.clickLink();
    QCOMPARE(scene.ground->connectionCount(), 2);
    QCOMPARE(scene.control->connectionCount(), 2);
    QCOMPARE(threads(scene.user), (QList<int>{1, 1}));
    QCOMPARE(scene.user.status(), linked.english);
}

void LinkTest::clickAfterAFailureProbesAgain()
{
    Scene scene;
    scene.ground.reset();
    scene.user.clickLink();
    QCOMPARE(scene.user.status(), unlinked.english);
    scene.ground.emplace(fake::groundAddress);
    scene.user.clickLink();
    QCOMPARE(scene.user.status(), linked.english);
    QCOMPARE(scene.user.statusField().styleSheet(), QString(linkedStyle));
    QTRY_COMPARE(scene.control->links().size(), 1);
}

void LinkTest::heartbeatIsAnsweredOnBothLinks()
{
    Scene scene;
    scene.link();
    scene.exchangeHeartbeat();
    scene.ground->link().send(groundHeartbeat);
    QTRY_COMPARE(scene.ground->link().received(), heartbeatAnswer);
    QCOMPARE(scene.user.status(), linked.english);
}

void LinkTest::lostLinkTurnsRedAndTheNextHeartbeatGreen()
{
    Scene scene;
    scene.link();
    scene.loseLink();
    QCOMPARE(scene.user.statusField().styleSheet(), QString(notLinkedStyle));
    // The thread has reconnected by itself; a connection alone is not a link.
    QTRY_COMPARE(scene.control->links(), QList<int>{2});
    QCOMPARE(scene.user.status(), unlinked.english);
    scene.control->link().send(heartbeat);
    QTRY_COMPARE(scene.user.status(), linked.english);
    QCOMPARE(scene.user.statusField().styleSheet(), QString(linkedStyle));
    QCOMPARE(threads(scene.user), (QList<int>{1, 1}));
}

void LinkTest::lostGroundLinkIsShownNowhere()
{
    Scene scene;
    scene.link();
    scene.ground->link().close();
    QTRY_COMPARE(scene.ground->links(), QList<int>{2});
    // After this exchange, a signal about the loss would be in the window's event queue.
    scene.exchangeHeartbeat();
    QCoreApplication::processEvents();
    QCOMPARE(scene.user.status(), linked.english);
}

void LinkTest::sixTicksWithoutHeartbeatLoseTheLinkWithTheNextBytes()
{
    Scene scene;
    scene.link();
    scene.exchangeHeartbeat();
    auto* thread = scene.user.window().findChild<ControlClientThread*>();
    for (int tick = 0; tick < 6; ++tick) {
        QMetaObject::invokeMethod(thread, "heartBeatTimer", Qt::DirectConnection);
    }
    QCoreApplication::processEvents();
    QCOMPARE(scene.user.status(), linked.english);
    scene.control->link().send(versionReport);
    QTRY_COMPARE(scene.user.status(), unlinked.english);
    QTRY_COMPARE(scene.control->connectionCount(), 3);
}

void LinkTest::clickAfterALossStartsASecondPairBesideTheFirst()
{
    Scene scene;
    // linkTwice() checks that the first pair stays connected and that each module is probed again.
    scene.linkTwice();
    QCOMPARE(threads(scene.user), (QList<int>{2, 2}));
}

void LinkTest::versionReportFillsTheFiveFields()
{
    Scene scene;
    scene.link();
    scene.control->link().send(versionReport);
    QTRY_COMPARE(scene.user.versions(), reportedVersions);
    // Both bytes of a version are signed: 01 90 means 256 - 112 = 144.
    QTRY_VERIFY(scene.control->link().isAllRead());
    scene.control->link().send(QByteArray::fromHex("aaaf0009ff0190012c0000ffff00"));
    QTRY_COMPARE(scene.user.versions(), (QStringList{"v-1", "v1.44", "v3", "v0", "v-2.57"}));
}

void LinkTest::versionReportOfAnUnlinkedWindowChangesNothing()
{
    const UserWindow user;
    reportVersions(user, 7, 300, 600, 100, 10);
    QCOMPARE(user.versions(), noVersions);
    user.clickLink();
    QCOMPARE(user.status(), unlinked.english);
    reportVersions(user, 7, 300, 600, 100, 10);
    QCOMPARE(user.versions(), noVersions);
}

void LinkTest::versionReportAfterALossChangesNothing()
{
    Scene scene;
    scene.link();
    scene.control->link().send(versionReport);
    QTRY_COMPARE(scene.user.versions(), reportedVersions);
    scene.loseLink();
    scene.control->link().send(QByteArray::fromHex("aaaf000909000100020003000400"));
    QTRY_VERIFY(scene.control->link().isAllRead());
    // When the window shows the effect of this heartbeat, it has processed the report before it.
    scene.control->link().send(heartbeat);
    QTRY_COMPARE(scene.user.status(), linked.english);
    QCOMPARE(scene.user.versions(), reportedVersions);
}

void LinkTest::statusKeepsItsLanguageUntilItIsSetAgain()
{
    Scene scene;
    scene.link();
    scene.user.chooseChinese();
    QCOMPARE(scene.user.button("pushButtonLinkBELUN").text(), support::windowText("link").chinese);
    QCOMPARE(scene.user.status(), linked.english);
    scene.exchangeHeartbeat();
    QTRY_COMPARE(scene.user.status(), linked.chinese);
    scene.user.chooseEnglish();
    QCOMPARE(scene.user.status(), linked.chinese);
    scene.exchangeHeartbeat();
    QTRY_COMPARE(scene.user.status(), linked.english);
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
    const auto answers = [&user](int port) {
        bool result = false;
        user.probe().call("IPLive", Q_RETURN_ARG(bool, result), Q_ARG(QString, fake::groundAddress),
                          Q_ARG(int, port), Q_ARG(int, 1000));
        return result;
    };
    QVERIFY(!answers(5000));
    const fake::Module ground(fake::groundAddress);
    QVERIFY(answers(5000));
    QVERIFY(!answers(5001));
}

void LinkTest::probeWaitsASecondByDefault()
{
    const support::SilentAddress silent(fake::groundAddress, fake::modulePort);
    const UserWindow user;
    bool answers = true;
    const qint64 untold = fastest(1800, [&] {
        user.probe().call("IPLive", Q_RETURN_ARG(bool, answers),
                          Q_ARG(QString, fake::groundAddress), Q_ARG(int, fake::modulePort));
    });
    QCOMPARE(answers, false);
    QVERIFY2(untold >= 950 && untold < 1800, qPrintable(QString::number(untold) + " ms"));
    const qint64 told = fastest(900, [&] {
        user.probe().call("IPLive", Q_RETURN_ARG(bool, answers),
                          Q_ARG(QString, fake::groundAddress), Q_ARG(int, fake::modulePort),
                          Q_ARG(int, 200));
    });
    QCOMPARE(answers, false);
    QVERIFY2(told >= 150 && told < 900, qPrintable(QString::number(told) + " ms"));
}

BELUN_NETWORK_TEST(LinkTest)
#include "LinkTest.moc"
