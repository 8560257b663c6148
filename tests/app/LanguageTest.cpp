// Switching between English and Chinese while the window is open.
#include "tests/kit/TestMain.h"
#include "tests/kit/UserWindow.h"

#include <QAbstractItemModel>
#include <QComboBox>
#include <QCoreApplication>
#include <QGroupBox>

// Outside any namespace, as Q_CLEANUP_RESOURCE and Q_INIT_RESOURCE require.
static void withdrawResources()
{
    Q_CLEANUP_RESOURCE(resource);
}

static void restoreResources()
{
    Q_INIT_RESOURCE(resource);
}

namespace {

QString textAt(const UserWindow& user, const QString& place)
{
    if (place.startsWith("column")) {
        return user.table().model()->headerData(place.mid(6).toInt(), Qt::Horizontal).toString();
    }
    const QWidget& widget = user.probe().child<QWidget>(place);
    const auto* box = qobject_cast<const QGroupBox*>(&widget);
    return box != nullptr ? box->title() : widget.property("text").toString();
}

/// Returns every translated text of the window, each after the name of the widget or column that
/// shows it: "label_1: HardwareType:".
QStringList shown(const UserWindow& user)
{
    QStringList texts;
    for (const support::WindowText& text : support::windowTexts()) {
        for (const QString& place : text.shownBy) {
            texts += place + ": " + textAt(user, place);
        }
    }
    return texts;
}

/// Returns the same from the table of texts.
QStringList stated(QString support::WindowText::*language)
{
    QStringList texts;
    for (const support::WindowText& text : support::windowTexts()) {
        for (const QString& place : text.shownBy) {
            texts += place + ": " + text.*language;
        }
    }
    return texts;
}

const QStringList english = stated(&support::WindowText::english);
const QStringList chinese = stated(&support::WindowText::chinese);

} // namespace

class LanguageTest : public QObject
{
    Q_OBJECT

private slots:
    void everyTextFollowsTheLanguage();
    void switchIsMadeWithTheKeyboard();
    void languagesKeepTheirEnglishNames();
    void sameLanguageAgainIsHarmless();
    void everySwitchReloadsTheOneTranslator();
    void titleStaysAsTheProgramSetIt();
    void missingCatalogueShowsTheEnglishTexts();
};

void LanguageTest::everyTextFollowsTheLanguage()
{
    const UserWindow user;
    QCOMPARE(shown(user), english);
    user.chooseChinese();
    QCOMPARE(shown(user), chinese);
    user.chooseEnglish();
    QCOMPARE(shown(user), english);
    user.chooseChinese();
    QCOMPARE(shown(user), chinese);
}

void LanguageTest::switchIsMadeWithTheKeyboard()
{
    const UserWindow user;
    user.languages().setFocus();
    QTest::keyClick(&user.languages(), Qt::Key_Down);
    QCOMPARE(user.languages().currentText(), QString("Chinese"));
    QCOMPARE(shown(user), chinese);
    QTest::keyClick(&user.languages(), Qt::Key_Up);
    QCOMPARE(shown(user), english);
}

void LanguageTest::languagesKeepTheirEnglishNames()
{
    const UserWindow user;
    for (const int language : {1, 0}) {
        user.languages().setCurrentIndex(language);
        QCOMPARE(user.languages().count(), 2);
        QCOMPARE(user.languages().itemText(0), QString("English"));
        QCOMPARE(user.languages().itemText(1), QString("Chinese"));
    }
}

void LanguageTest::sameLanguageAgainIsHarmless()
{
    const UserWindow user;
    user.chooseChinese();
    user.probe().call("comboxLanguageChanged");
    user.probe().call("comboxLanguageChanged");
    QCOMPARE(shown(user), chinese);
    user.chooseEnglish();
    user.probe().call("comboxLanguageChanged");
    QCOMPARE(shown(user), english);
}

void LanguageTest::everySwitchReloadsTheOneTranslator()
{
    const UserWindow user;
    const support::WindowText& date = support::windowText("file_date");
    for (int times = 0; times < 3; ++times) {
        user.chooseChinese();
        QCOMPARE(QCoreApplication::translate("MainWindow", "Date"), date.chinese);
        user.chooseEnglish();
        QCOMPARE(QCoreApplication::translate("MainWindow", "Date"), date.english);
    }
}

void LanguageTest::titleStaysAsTheProgramSetIt()
{
    const UserWindow user;
    user.window().setWindowTitle("BELUN-DownLoad");
    user.chooseChinese();
    QCOMPARE(user.window().windowTitle(), QString("BELUN-DownLoad"));
}

void LanguageTest::missingCatalogueShowsTheEnglishTexts()
{
    const UserWindow user;
    withdrawResources();
    user.chooseChinese();
    const QStringList texts = shown(user);
    restoreResources();
    QCOMPARE(texts, english);
}

BELUN_TEST(LanguageTest)
#include "LanguageTest.moc"
