// The icon and the catalogues at their fixed paths.
#include "tests/app/EarlyReading.h"
#include "tests/kit/TestMain.h"
#include "tests/kit/WindowTexts.h"

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

namespace {

/// Returns the size of a compiled catalogue with the texts of the table. The file begins with 16
/// bytes. Each section has a header of 5 bytes; the sections are the hashes with 8 bytes per text,
/// the texts, and, in the English file, the plural rules with 2 bytes. A text consists of four
/// strings, each with a header of 5 bytes, and a final byte. The strings are the translation in
/// UTF-16, the source text, the empty comment and the class name "MainWindow".
qint64 compiledSize(bool isChinese)
{
    qint64 size = 16 + 5 + 5 + (isChinese ? 0 : 5 + 2);
    for (const support::WindowText& text : support::windowTexts()) {
        if (isChinese || text.name != "form_title") { // only in the Chinese catalogue
            const auto translation = (isChinese ? text.chinese : text.english).size();
            size += 8 + 5 + 2 * translation + 5 + text.english.size() + 5 + 5 + 10 + 1;
        }
    }
    return size;
}

} // namespace

class ResourceTest : public QObject
{
    Q_OBJECT

private slots:
    void pathsAreValidBeforeMain();
    void collectionHoldsThreeFiles();
    void iconIsASquareImageOf512Pixels();
    void cataloguesHaveTheSizeOfTheirTextsAndLoad_data();
    void cataloguesHaveTheSizeOfTheirTextsAndLoad();
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

void ResourceTest::cataloguesHaveTheSizeOfTheirTextsAndLoad_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<qint64>("size");

    QTest::newRow("Chinese") << ":/translation/belun_chinese.qm" << compiledSize(true);
    QTest::newRow("English") << ":/translation/belun_english.qm" << compiledSize(false);
}

void ResourceTest::cataloguesHaveTheSizeOfTheirTextsAndLoad()
{
    QFETCH(QString, path);
    QTEST(QFileInfo(path).size(), "size");
    QTranslator catalogue;
    QVERIFY(catalogue.load(path));
    QVERIFY(!catalogue.isEmpty());
}

BELUN_TEST(ResourceTest)

#include "ResourceTest.moc"
