// The Chinese texts, and when they are shown.
#include "tests/kit/Rows.h"
#include "tests/kit/TestMain.h"
#include "verify/Language.h"
#include "verify/Texts.h"

#include <QFile>
#include <QRegularExpression>
#include <QXmlStreamReader>

using verify::Letters;

namespace {

/// Returns the source text and the translation of each message in the catalogue's source file; an
/// unfinished translation is empty.
QList<QPair<QString, QString>> messages()
{
    QList<QPair<QString, QString>> found;
    QFile file(CATALOGUE_SOURCE);
    if (!file.open(QFile::ReadOnly)) {
        return found;
    }
    QXmlStreamReader reader(&file);
    QString source;
    while (!reader.atEnd()) {
        reader.readNext();
        if (reader.isStartElement() && reader.name() == QLatin1String("source")) {
            source = reader.readElementText();
        } else if (reader.isStartElement() && reader.name() == QLatin1String("translation")) {
            const bool finished = reader.attributes().isEmpty();
            const QString text = reader.readElementText();
            found.append({source, finished ? text : QString()});
        }
    }
    return found;
}

QStringList placesOf(const QString& text)
{
    QStringList places;
    auto matches = QRegularExpression("%[1-9]").globalMatch(text);
    while (matches.hasNext()) {
        places << matches.next().captured();
    }
    places.sort();
    return places;
}

/// Sets the locale variables for a test function. LC_MESSAGES and LANGUAGE are always empty.
void setLocale(const char* all, const char* type, const char* lang)
{
    qputenv("LC_ALL", all);
    qputenv("LC_CTYPE", type);
    qputenv("LC_MESSAGES", "");
    qputenv("LANG", lang);
    qputenv("LANGUAGE", "");
}

} // namespace

class CatalogueTest : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { setLocale("C.UTF-8", "", ""); }
    void everyTextIsTranslatedWithItsPlaces();
    void punctuationIsFullWidth();
    void languageFollowsTheLocale_data();
    void languageFollowsTheLocale();
    void summaryIsInChinese();
};

void CatalogueTest::everyTextIsTranslatedWithItsPlaces()
{
    const auto all = messages();
    QVERIFY2(all.size() > 60, qPrintable(QString::number(all.size())));
    for (const auto& [source, translation] : all) {
        QVERIFY2(!translation.isEmpty(), qPrintable(source));
        QVERIFY2(placesOf(source) == placesOf(translation), qPrintable(source));
    }
}

void CatalogueTest::punctuationIsFullWidth()
{
    for (const auto& [source, translation] : messages()) {
        if (!source.startsWith("Usage")) {
            QVERIFY2(!translation.contains(QRegularExpression("[,;:!()] |[^.]\\.$")),
                     qPrintable(translation));
        }
    }
}

void CatalogueTest::languageFollowsTheLocale_data()
{
    const support::Rows<QByteArray, QByteArray, QByteArray, bool, bool> row("all", "type", "lang",
                                                                            "utf8", "chinese");
    row("Chinese", "", "", "zh_CN.UTF-8", true, true);
    row("Chinese, spelt otherwise", "", "", "zh_CN.utf8", true, true);
    row("Chinese of Taiwan", "", "", "zh_TW.UTF-8", true, true);
    row("English", "", "", "en_US.UTF-8", true, false);
    row("German", "", "", "de_DE.UTF-8", true, false);
    row("Chinese over English", "zh_CN.UTF-8", "", "en_US.UTF-8", true, true);
    row("English over Chinese", "en_US.UTF-8", "", "zh_CN.UTF-8", true, false);
    row("no UTF-8", "", "", "zh_CN.GB18030", false, false);
    row("nothing", "", "", "", false, false);
    row("plain", "C", "", "", false, false);
    row("plain letters", "", "C", "zh_CN.UTF-8", false, false);
}

void CatalogueTest::languageFollowsTheLocale()
{
    QFETCH(QByteArray, all);
    QFETCH(QByteArray, type);
    QFETCH(QByteArray, lang);
    setLocale(all, type, lang);
    const Letters letters = verify::terminalLetters();
    QTEST(letters == Letters::Utf8, "utf8");
    QTranslator translator;
    QTEST(verify::loadLanguage(translator, letters), "chinese");
}

void CatalogueTest::summaryIsInChinese()
{
    setLocale("zh_CN.UTF-8", "", "");
    QTranslator translator;
    QVERIFY(verify::loadLanguage(translator, Letters::Utf8));
    QCoreApplication::installTranslator(&translator);
    verify::Summary summary;
    summary.verdict = verify::Verdict::Safe;
    summary.recordings = 37;
    const std::string text = verify::Texts(Letters::Utf8, 15).summary(summary);
    QCoreApplication::removeTranslator(&translator);
    QCOMPARE(QString::fromStdString(text),
             QString::fromUtf8("卡内全部 37 个录像均已在本机，大小相同。仅比较了大小；"
                               "--content 可逐字节比对。"));
}

BELUN_TEST(CatalogueTest)

#include "CatalogueTest.moc"
