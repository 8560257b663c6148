// Switching between English and Chinese while the window is open.
#include "app/MainWindow.h"
#include "tests/kit/TestMain.h"
#include "tests/kit/WindowProbe.h"

#include <memory>

#include <QComboBox>
#include <QCoreApplication>
#include <QGroupBox>
#include <QLineEdit>
#include <QMap>
#include <QObject>
#include <QString>
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
    using Texts = QMap<QString, QString>;

    /// Returns every translated text of the window by object name; the headers are header0 to
    /// header3.
    Texts shown() const
    {
        Texts texts;
        for (const char* name :
             {"label_language", "label_1", "label_2", "label_3", "label_4", "label_5",
              "pushButtonLinkBELUN", "pushButtonEnterTFcard", "pushButtonDownloadFile",
              "pushButtonDeleteFile", "pushButtonDeleteAllFiles", "pushButtonFormatCard",
              "checkBoxSelectAllFiles"}) {
            texts[name] = child<QWidget>(name).property("text").toString();
        }
        for (const char* name : {"groupBoxFile", "groupBoxVersionInfo"}) {
            texts[name] = child<QGroupBox>(name).title();
        }
        const QTableWidget& table = child<QTableWidget>("tableWidgetFileInfo");
        for (int column = 0; column < table.columnCount(); ++column) {
            texts[QStringLiteral("header%1").arg(column)] =
                table.model()->headerData(column, Qt::Horizontal).toString();
        }
        return texts;
    }
    static Texts english()
    {
        return {{"label_language", "language:"},
                {"label_1", "HardwareType:"},
                {"label_2", "HardwareVersion:"},
                {"label_3", "SoftwareVersion:"},
                {"label_4", "ProtocolVersion:"},
                {"label_5", "BootloaderVersion:"},
                {"pushButtonLinkBELUN", "Link Device"},
                {"pushButtonEnterTFcard", "Browse Files in Card"},
                {"pushButtonDownloadFile", "Download File"},
                {"pushButtonDeleteFile", "Delete File"},
                {"pushButtonDeleteAllFiles", "Delete All Files"},
                {"pushButtonFormatCard", "Format Card"},
                {"checkBoxSelectAllFiles", "Select All"},
                {"groupBoxFile", "File Operate"},
                {"groupBoxVersionInfo", "Version Information"},
                {"header0", "Name"},
                {"header1", "Date"},
                {"header2", "Size"},
                {"header3", "Duration"}};
    }
    static Texts chinese()
    {
        return {{"label_language", "语言\uFF1A"},
                {"label_1", "硬件类型\uFF1A"},
                {"label_2", "硬件版本\uFF1A"},
                {"label_3", "软件版本\uFF1A"},
                {"label_4", "协议版本\uFF1A"},
                {"label_5", "Bootloader版本\uFF1A"},
                {"pushButtonLinkBELUN", "连接设备"},
                {"pushButtonEnterTFcard", "浏览相机卡内文件"},
                {"pushButtonDownloadFile", "下载选中文件"},
                {"pushButtonDeleteFile", "删除选中文件"},
                {"pushButtonDeleteAllFiles", "删除卡内所有文件"},
                {"pushButtonFormatCard", "格式化卡"},
                {"checkBoxSelectAllFiles", "全选"},
                {"groupBoxFile", "文件操作"},
                {"groupBoxVersionInfo", "版本信息"},
                {"header0", "名称"},
                {"header1", "日期"},
                {"header2", "大小"},
                {"header3", "时长"}};
    }

    template <class Widget>
    Widget& child(const char* name) const
    {
        return support::WindowProbe(*m_window).child<Widget>(QString::fromLatin1(name));
    }
    QComboBox& combo() const { return child<QComboBox>("comboBox"); }
    void choose(int index) const { combo().setCurrentIndex(index); }
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

/// Selects English, because the translator outlives its window and would translate the next one.
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
    QCOMPARE(QCoreApplication::translate("MainWindow", "Date"), QStringLiteral("日期"));
    for (int times = 0; times < 3; ++times) {
        choose(0);
        QCOMPARE(QCoreApplication::translate("MainWindow", "Date"), QStringLiteral("Date"));
        choose(1);
    }
    QCOMPARE(QCoreApplication::translate("MainWindow", "Date"), QStringLiteral("日期"));
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
    QCOMPARE(status(), QStringLiteral("Link Success!"));
    choose(1);
    QCOMPARE(status(), QStringLiteral("Link Success!"));
    report(true);
    QCOMPARE(status(), QStringLiteral("连接成功\uFF01"));
    choose(0);
    QCOMPARE(status(), QStringLiteral("连接成功\uFF01"));
    report(true);
    QCOMPARE(status(), QStringLiteral("Link Success!"));
}

void LanguageTest::linkFailureIsShownInTheSelectedLanguage()
{
    report(false);
    QCOMPARE(status(), QStringLiteral("Link Fail!"));
    choose(1);
    report(false);
    QCOMPARE(status(), QStringLiteral("连接失败\uFF01"));
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
