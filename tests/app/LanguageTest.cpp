// Switching between English and Chinese while the window is open.
#include "app/MainWindow.h"
#include "tests/kit/TestMain.h"
#include "tests/kit/WindowProbe.h"
#include "tests/kit/WindowTexts.h"

#include <memory>

#include <QComboBox>
#include <QCoreApplication>
#include <QGroupBox>
#include <QLineEdit>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QTableWidget>
#include <QTest>
#include <QWidget>

// Outside any namespace, as Q_CLEANUP_RESOURCE and Q_INIT_RESOURCE require.
static void withdrawResources()
{
    Q_CLEANUP_RESOURCE(resource);
}

static void restoreResources()
{
    Q_INIT_RESOURCE(resource);
}

class LanguageTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void startsWithTheUntranslatedTexts();
    void chineseSetsEveryText();
    void englishRestoresEveryText();
    void switchIsMadeWithTheKeyboard();
    void languagesKeepTheirEnglishNames();
    void sameLanguageAgainIsHarmless();
    void everySwitchReloadsTheOneTranslator();
    void titleStaysAsTheProgramSetIt();
    void linkStatusOnScreenChangesLanguageWhenItIsNextSet();
    void linkFailureIsShownInTheSelectedLanguage();
    void missingCatalogueShowsTheEnglishTexts();

private:
    using Texts = QStringList; // "label_1: HardwareType:"

    /// Returns every translated text of the window, each after the name of the widget or column
    /// that shows it.
    Texts shown() const
    {
        Texts texts;
        for (const support::WindowText& text : support::windowTexts()) {
            for (const QString& place : text.shownBy) {
                texts += place + ": " + textAt(place);
            }
        }
        return texts;
    }
    QString textAt(const QString& place) const
    {
        if (place.startsWith("column")) {
            const QTableWidget& table = child<QTableWidget>("tableWidgetFileInfo");
            return table.model()->headerData(place.mid(6).toInt(), Qt::Horizontal).toString();
        }
        const auto* box = qobject_cast<QGroupBox*>(&child<QWidget>(place));
        return box != nullptr ? box->title() : child<QWidget>(place).property("text").toString();
    }
    static Texts expected(QString support::WindowText::*language)
    {
        Texts texts;
        for (const support::WindowText& text : support::windowTexts()) {
            for (const QString& place : text.shownBy) {
                texts += place + ": " + text.*language;
            }
        }
        return texts;
    }
    static Texts english() { return expected(&support::WindowText::english); }
    static Texts chinese() { return expected(&support::WindowText::chinese); }

    template <class Widget>
    Widget& child(const QString& name) const
    {
        return support::WindowProbe(*m_window).child<Widget>(name);
    }
    QComboBox& combo() const { return child<QComboBox>("comboBox"); }
    void choose(int index) const { combo().setCurrentIndex(index); }
    static const support::WindowText& linked() { return support::windowText("linked"); }
    static const support::WindowText& unlinked() { return support::windowText("unlinked"); }
    static const support::WindowText& date() { return support::windowText("file_date"); }
    QString status() const { return child<QLineEdit>("lineEditLinkBELUN").text(); }
    void report(bool isLinked) const
    {
        support::WindowProbe(*m_window).call("updateLinkedFlag", Q_ARG(bool, isLinked));
    }

    std::unique_ptr<MainWindow> m_window;
};

void LanguageTest::init()
{
    m_window = std::make_unique<MainWindow>();
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
}

/// Selects English, because the translator outlives the window and would also translate the next
/// one.
void LanguageTest::cleanup()
{
    choose(1);
    choose(0);
    m_window.reset();
}

void LanguageTest::startsWithTheUntranslatedTexts()
{
    QCOMPARE(shown(), english());
}

void LanguageTest::chineseSetsEveryText()
{
    choose(1);
    QCOMPARE(shown(), chinese());
}

void LanguageTest::englishRestoresEveryText()
{
    choose(1);
    QVERIFY(shown() != english());
    choose(0);
    QCOMPARE(shown(), english());
    choose(1);
    QCOMPARE(shown(), chinese());
}

void LanguageTest::switchIsMadeWithTheKeyboard()
{
    combo().setFocus();
    QTest::keyClick(&combo(), Qt::Key_Down);
    QCOMPARE(combo().currentText(), QStringLiteral("Chinese"));
    QCOMPARE(shown(), chinese());
    QTest::keyClick(&combo(), Qt::Key_Up);
    QCOMPARE(shown(), english());
}

void LanguageTest::languagesKeepTheirEnglishNames()
{
    for (const int language : {1, 0}) {
        choose(language);
        QCOMPARE(combo().count(), 2);
        QCOMPARE(combo().itemText(0), QStringLiteral("English"));
        QCOMPARE(combo().itemText(1), QStringLiteral("Chinese"));
    }
}

void LanguageTest::sameLanguageAgainIsHarmless()
{
    choose(1);
    const support::WindowProbe probe(*m_window);
    probe.call("comboxLanguageChanged");
    probe.call("comboxLanguageChanged");
    QCOMPARE(shown(), chinese());
    choose(0);
    probe.call("comboxLanguageChanged");
    QCOMPARE(shown(), english());
}

void LanguageTest::everySwitchReloadsTheOneTranslator()
{
    choose(1);
    QCOMPARE(QCoreApplication::translate("MainWindow", "Date"), date().chinese);
    for (int times = 0; times < 3; ++times) {
        choose(0);
        QCOMPARE(QCoreApplication::translate("MainWindow", "Date"), date().english);
        choose(1);
    }
    QCOMPARE(QCoreApplication::translate("MainWindow", "Date"), date().chinese);
}

void LanguageTest::titleStaysAsTheProgramSetIt()
{
    m_window->setWindowTitle(QStringLiteral("BELUN-DownLoad"));
    choose(1);
    QCOMPARE(m_window->windowTitle(), QStringLiteral("BELUN-DownLoad"));
}

void LanguageTest::linkStatusOnScreenChangesLanguageWhenItIsNextSet()
{
    report(true);
    QCOMPARE(status(), linked().english);
    choose(1);
    QCOMPARE(status(), linked().english);
    report(true);
    QCOMPARE(status(), linked().chinese);
    choose(0);
    QCOMPARE(status(), linked().chinese);
    report(true);
    QCOMPARE(status(), linked().english);
}

void LanguageTest::linkFailureIsShownInTheSelectedLanguage()
{
    report(false);
    QCOMPARE(status(), unlinked().english);
    choose(1);
    report(false);
    QCOMPARE(status(), unlinked().chinese);
}

void LanguageTest::missingCatalogueShowsTheEnglishTexts()
{
    choose(1);
    choose(0);
    withdrawResources();
    choose(1);
    const Texts texts = shown();
    restoreResources();
    QCOMPARE(texts, english());
}

BELUN_TEST(LanguageTest)

#include "LanguageTest.moc"
