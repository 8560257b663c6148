// The exact addresses of the camera commands.
#include "card/CardCommands.h"

#include "tests/kit/TestMain.h"

#include <QByteArray>
#include <QObject>
#include <QString>
#include <QTest>

class CardCommandsTest : public QObject
{
    Q_OBJECT

private slots:
    void commandAddressesAreExact_data();
    void commandAddressesAreExact();
    void argumentIsAppendedUnchanged_data();
    void argumentIsAppendedUnchanged();
    void successIsTheWordWithItsLineEnd();
};

void CardCommandsTest::commandAddressesAreExact_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("address");

    QTest::newRow("file count") << QString(card::fileCountCommand)
                                << "http://192.168.1.120/cgi-bin/hi3510/getfilecount.cgi?";
    QTest::newRow("file list")
        << QString(card::fileListCommand)
        << "http://192.168.1.120/cgi-bin/hi3510/getfilelist.cgi?&-start=1&-end=";
    QTest::newRow("file information")
        << QString(card::fileInfoCommand)
        << "http://192.168.1.120/cgi-bin/hi3510/getfileinfo.cgi?&-name=sd/DCIM/100ZEPNA/";
    QTest::newRow("delete file")
        << QString(card::deleteFileCommand)
        << "http://192.168.1.120/cgi-bin/hi3510/deletefile.cgi?&-name=sd/DCIM/100ZEPNA/";
    QTest::newRow("delete all files") << QString(card::deleteAllFilesCommand)
                                      << "http://192.168.1.120/cgi-bin/hi3510/deleteallfiles.cgi?";
    QTest::newRow("format card, no ampersand after the question mark")
        << QString(card::formatCardCommand)
        << "http://192.168.1.120/cgi-bin/hi3510/sdcommand.cgi?-format&-partition=1";
}

void CardCommandsTest::commandAddressesAreExact()
{
    QFETCH(QString, command);
    QTEST(command, "address");
}

void CardCommandsTest::argumentIsAppendedUnchanged_data()
{
    QTest::addColumn<QString>("argument");
    QTest::addColumn<QString>("address");

    const QString folder = QStringLiteral("camera?&-name=sd/DCIM/100ZEPNA/");
    for (const char* name : {"BELUN_0001.mp4", "dive 1 & 2.mp4", "a=b?c#d.mp4", "50%20.mp4",
                             "%1.mp4", "%2%1.mp4", "../x.mp4", ""}) {
        QTest::newRow(*name == '\0' ? "nothing" : name)
            << QString::fromLatin1(name) << QString(folder + QLatin1String(name));
    }
    QTest::newRow("outside ASCII")
        << QStringLiteral("深海.mp4") << QStringLiteral("camera?&-name=sd/DCIM/100ZEPNA/深海.mp4");
}

void CardCommandsTest::argumentIsAppendedUnchanged()
{
    QFETCH(QString, argument);
    const QString joined =
        card::withArgument(QStringLiteral("camera?&-name=sd/DCIM/100ZEPNA/"), argument);
    QTEST(joined, "address");
}

void CardCommandsTest::successIsTheWordWithItsLineEnd()
{
    QCOMPARE(QByteArray(card::successAnswer), QByteArray("\x53\x75\x63\x63\x65\x73\x73\x0d\x0a"));
}

BELUN_TEST(CardCommandsTest)

#include "CardCommandsTest.moc"
