// Compares both catalogues, source and compiled, with the table of texts.
#include "tests/kit/TestMain.h"
#include "tests/kit/WindowTexts.h"

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

namespace {

/// Returns the texts that the catalogue must contain, by their source texts. The form's own title
/// is only in the Chinese catalogue.
QMap<QString, QString> translations(bool isChinese)
{
    QMap<QString, QString> texts;
    for (const support::WindowText& text : support::windowTexts()) {
        texts.insert(text.english, isChinese ? text.chinese : text.english);
    }
    if (!isChinese) {
        texts.remove(support::windowText("form_title").english);
    }
    return texts;
}

void addCatalogues()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("isChinese");

    QTest::newRow("Chinese") << "belun_chinese" << true;
    QTest::newRow("English") << "belun_english" << false;
}

} // namespace

class CatalogueTest : public QObject
{
    Q_OBJECT

private slots:
    void textsAreTranslatedForTheWindowOnly_data() { addCatalogues(); }
    void textsAreTranslatedForTheWindowOnly();
    void windowTitleOfTheFormIsInTheChineseCatalogueOnly();
    void compiledCatalogueHoldsNoOtherText_data() { addCatalogues(); }
    void compiledCatalogueHoldsNoOtherText();
    void sourceHoldsTheTableAndNothingUnfinished_data() { addCatalogues(); }
    void sourceHoldsTheTableAndNothingUnfinished();
};

void CatalogueTest::textsAreTranslatedForTheWindowOnly()
{
    QFETCH(QString, name);
    QFETCH(bool, isChinese);
    QTranslator catalogue;
    QVERIFY(catalogue.load(QStringLiteral(":/translation/%1.qm").arg(name)));
    const QMap<QString, QString> texts = translations(isChinese);
    for (auto text = texts.begin(); text != texts.end(); ++text) {
        const QByteArray source = text.key().toUtf8();
        QCOMPARE(catalogue.translate("MainWindow", source.constData()), text.value());
        QVERIFY2(catalogue.translate("Elsewhere", source.constData()).isEmpty(),
                 source.constData());
    }
}

void CatalogueTest::windowTitleOfTheFormIsInTheChineseCatalogueOnly()
{
    QTranslator english;
    QVERIFY(english.load(QStringLiteral(":/translation/belun_english.qm")));
    QVERIFY(english.translate("MainWindow", "MainWindow").isEmpty());
}

/// A compiled catalogue is a 16-byte magic number followed by sections: a tag byte, a big-endian
/// length and that many bytes. Section 0x42 has eight bytes per text.
void CatalogueTest::compiledCatalogueHoldsNoOtherText()
{
    QFETCH(QString, name);
    QFETCH(bool, isChinese);
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
    QCOMPARE(found, static_cast<int>(translations(isChinese).size()));
}

void CatalogueTest::sourceHoldsTheTableAndNothingUnfinished()
{
    QFETCH(QString, name);
    QFETCH(bool, isChinese);
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
            QFAIL("the window requests its texts without a disambiguation");
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
    QCOMPARE(messages, static_cast<int>(translations(isChinese).size()));
    QCOMPARE(found, translations(isChinese));
}

BELUN_TEST(CatalogueTest)

#include "CatalogueTest.moc"
