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
    void commandAddressesAreExact();
    void argumentIsAppendedUnchanged();
    void successIsTheWordWithItsLineEnd();
};

void CardCommandsTest::commandAddressesAreExact()
{
    const QString camera = "http://192.168.1.120/cgi-bin/hi3510/";
    QCOMPARE(QString(card::fileCountCommand), camera + "getfilecount.cgi?");
    QCOMPARE(QString(card::fileListCommand), camera + "getfilelist.cgi?&-start=1&-end=");
    QCOMPARE(QString(card::fileInfoCommand), camera + "getfileinfo.cgi?&-name=sd/DCIM/100ZEPNA/");
    QCOMPARE(QString(card::deleteFileCommand), camera + "deletefile.cgi?&-name=sd/DCIM/100ZEPNA/");
    QCOMPARE(QString(card::deleteAllFilesCommand), camera + "deleteallfiles.cgi?");
    QCOMPARE(QString(card::formatCardCommand), // no ampersand after the question mark
             camera + "sdcommand.cgi?-format&-partition=1");
}

void CardCommandsTest::argumentIsAppendedUnchanged()
{
    for (const char* name : {"BELUN_0001.mp4", "dive 1 & 2.mp4", "a=b?c#d.mp4", "50%20.mp4",
                             "%1.mp4", "%2%1.mp4", "../x.mp4", "", "深海.mp4"}) {
        const QString argument = QString::fromUtf8(name);
        QCOMPARE(card::withArgument("camera?&-name=sd/DCIM/100ZEPNA/", argument),
                 "camera?&-name=sd/DCIM/100ZEPNA/" + argument);
    }
}

void CardCommandsTest::successIsTheWordWithItsLineEnd()
{
    QCOMPARE(QByteArray(card::successAnswer), QByteArray("\x53\x75\x63\x63\x65\x73\x73\x0d\x0a"));
}

BELUN_TEST(CardCommandsTest)

#include "CardCommandsTest.moc"
