// Compares both catalogues, source and compiled, with the table of texts.
#include "tests/kit/TestMain.h"
#include "tests/kit/WindowTexts.h"

#include <vector>

#include <QByteArray>
#include <QFile>
#include <QIODevice>
#include <QMap>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QTest>
#include <QTranslator>
#include <QXmlStreamReader>
#include <QtEndian>

class CatalogueTest : public QObject
{
    Q_OBJECT

private slots:
    void chineseTextIsTranslated_data();
    void chineseTextIsTranslated();
    void englishTextIsTranslatedToItself_data();
    void englishTextIsTranslatedToItself();
    void windowTitleOfTheFormIsInTheChineseCatalogueOnly();
    void compiledCatalogueHoldsNoOtherText_data();
    void compiledCatalogueHoldsNoOtherText();
    void sourceHoldsTheTableAndNothingUnfinished_data();
    void sourceHoldsTheTableAndNothingUnfinished();

private:
    static void addCatalogues();
    static std::vector<support::WindowText> texts(bool chinese);
    static void addTexts(bool chinese);
};

/// Returns the texts that the catalogue must contain. The form's own title, the last text of the
/// table, is only in the Chinese catalogue.
std::vector<support::WindowText> CatalogueTest::texts(bool chinese)
{
    std::vector<support::WindowText> texts = support::windowTexts();
    if (!chinese) {
        texts.pop_back();
    }
    return texts;
}

void CatalogueTest::addTexts(bool chinese)
{
    QTest::addColumn<QByteArray>("source");
    QTest::addColumn<QString>("chinese");
    for (const support::WindowText& text : texts(chinese)) {
        QTest::newRow(qPrintable(text.english)) << text.english.toUtf8() << text.chinese;
    }
}

void CatalogueTest::addCatalogues()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("count");
    QTest::addColumn<bool>("isChinese");

    QTest::newRow("Chinese") << "belun_chinese" << 23 << true;
    QTest::newRow("English") << "belun_english" << 22 << false;
}

void CatalogueTest::chineseTextIsTranslated_data()
{
    addTexts(true);
}

void CatalogueTest::chineseTextIsTranslated()
{
    QFETCH(QByteArray, source);
    QTranslator catalogue;
    QVERIFY(catalogue.load(QStringLiteral(":/translation/belun_chinese.qm")));
    QTEST(catalogue.translate("MainWindow", source.constData()), "chinese");
    QVERIFY(catalogue.translate("Elsewhere", source.constData()).isEmpty());
}

void CatalogueTest::englishTextIsTranslatedToItself_data()
{
    addTexts(false);
}

void CatalogueTest::englishTextIsTranslatedToItself()
{
    QFETCH(QByteArray, source);
    QTranslator catalogue;
    QVERIFY(catalogue.load(QStringLiteral(":/translation/belun_english.qm")));
    QCOMPARE(catalogue.translate("MainWindow", source.constData()), QString::fromLatin1(source));
    QVERIFY(catalogue.translate("Elsewhere", source.constData()).isEmpty());
}

void CatalogueTest::windowTitleOfTheFormIsInTheChineseCatalogueOnly()
{
    QTranslator english;
    QVERIFY(english.load(QStringLiteral(":/translation/belun_english.qm")));
    QVERIFY(english.translate("MainWindow", "MainWindow").isEmpty());
}

void CatalogueTest::compiledCatalogueHoldsNoOtherText_data()
{
    addCatalogues();
}

/// A compiled catalogue is a 16-byte magic number followed by sections: a tag byte, a big-endian
/// length and that many bytes. Section 0x42 has eight bytes per text.
void CatalogueTest::compiledCatalogueHoldsNoOtherText()
{
    QFETCH(QString, name);
    QFETCH(int, count);
    QFile file(QStringLiteral(":/translation/%1.qm").arg(name));
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray bytes = file.readAll();
    int found = 0;
    for (int section = 16; section + 5 <= bytes.size();) {
        const int length =
            static_cast<int>(qFromBigEndian<quint32>(bytes.constData() + section + 1));
        if (bytes.at(section) == 0x42) {
            found += length / 8;
        }
        section += 5 + length;
    }
    QCOMPARE(found, count);
}

void CatalogueTest::sourceHoldsTheTableAndNothingUnfinished_data()
{
    addCatalogues();
}

void CatalogueTest::sourceHoldsTheTableAndNothingUnfinished()
{
    QFETCH(QString, name);
    QFETCH(int, count);
    QFETCH(bool, isChinese);
    QMap<QString, QString> expected;
    for (const support::WindowText& text : texts(isChinese)) {
        expected.insert(text.english, isChinese ? text.chinese : text.english);
    }

    QFile file(QStringLiteral(TRANSLATION_SOURCES "/%1.ts").arg(name));
    QVERIFY2(file.open(QIODevice::ReadOnly), qPrintable(file.fileName()));
    QXmlStreamReader xml(&file);
    QMap<QString, QString> found;
    QStringList contexts;
    QString source;
    int messages = 0;
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement) {
            continue;
        }
        if (xml.name() == QLatin1String("name")) {
            contexts.append(xml.readElementText());
        } else if (xml.name() == QLatin1String("message")) {
            ++messages;
            QVERIFY(xml.attributes().isEmpty());
        } else if (xml.name() == QLatin1String("comment")) {
            QFAIL("a text with a disambiguation is another text");
        } else if (xml.name() == QLatin1String("source")) {
            source = xml.readElementText();
        } else if (xml.name() == QLatin1String("translation")) {
            const QString state = xml.attributes().value(QLatin1String("type")).toString();
            QVERIFY2(state.isEmpty(), qPrintable(source + QStringLiteral(" is ") + state));
            found.insert(source, xml.readElementText());
        }
    }
    QVERIFY2(!xml.hasError(), qPrintable(xml.errorString()));
    QCOMPARE(contexts, QStringList{"MainWindow"});
    QCOMPARE(messages, count);
    QCOMPARE(found, expected);
}

BELUN_TEST(CatalogueTest)

#include "CatalogueTest.moc"
