// The icon and the catalogues at their fixed paths.
#include "tests/app/EarlyReading.h"
#include "tests/kit/TestMain.h"

#include <QByteArray>
#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QImage>
#include <QObject>
#include <QSize>
#include <QString>
#include <QStringList>
#include <QTest>
#include <QTranslator>

class ResourceTest : public QObject
{
    Q_OBJECT

private slots:
    void pathsAreValidBeforeMain();
    void collectionHoldsThreeFiles();
    void iconIsASquareImageOf512Pixels();
    void cataloguesOfFixedSizeLoadByTheirFileName_data();
    void cataloguesOfFixedSizeLoadByTheirFileName();
};

void ResourceTest::pathsAreValidBeforeMain()
{
    QCOMPARE(earlyReading().icon.left(8), QByteArray("\x89PNG\r\n\x1a\n"));
    const QByteArray catalogue("\x3c\xb8\x64\x18\xca\xef\x9c\x95\xcd\x21\x1c\xbf\x60\xa1\xbd\xdd");
    QCOMPARE(earlyReading().chinese.left(16), catalogue);
    QCOMPARE(earlyReading().english.left(16), catalogue);
}

void ResourceTest::collectionHoldsThreeFiles()
{
    QStringList files;
    for (const char* folder : {":/Images", ":/translation"}) {
        for (QDirIterator entry(QString::fromLatin1(folder), QDir::Files,
                                QDirIterator::Subdirectories);
             entry.hasNext();) {
            files.append(entry.next());
        }
    }
    files.sort();
    QCOMPARE(files, (QStringList{":/Images/appicon.png", ":/translation/belun_chinese.qm",
                                 ":/translation/belun_english.qm"}));
}

void ResourceTest::iconIsASquareImageOf512Pixels()
{
    const QImage icon(QStringLiteral(":/Images/appicon.png"), "PNG");
    QCOMPARE(icon.size(), QSize(512, 512));
    QVERIFY(QFileInfo(QStringLiteral(":/Images/appicon.png")).size() < 1048576);
}

void ResourceTest::cataloguesOfFixedSizeLoadByTheirFileName_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<qint64>("size");

    QTest::newRow("Chinese") << ":/translation/belun_chinese.qm" << qint64{1417};
    QTest::newRow("English") << ":/translation/belun_english.qm" << qint64{1707};
}

void ResourceTest::cataloguesOfFixedSizeLoadByTheirFileName()
{
    QFETCH(QString, path);
    QTEST(QFileInfo(path).size(), "size");
    QTranslator catalogue;
    QVERIFY(catalogue.load(path));
    QVERIFY(!catalogue.isEmpty());
}

BELUN_TEST(ResourceTest)

#include "ResourceTest.moc"
