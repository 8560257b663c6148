// The window's signals and slots, entry by entry.
#include "app/MainWindow.h"
#include "tests/kit/MetaMethods.h"
#include "tests/kit/TestMain.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QLineEdit>
#include <QMainWindow>
#include <QMetaMethod>
#include <QMetaObject>
#include <QMetaType>
#include <QStringList>

namespace {

const QMetaObject& window = MainWindow::staticMetaObject;

} // namespace

class MetaObjectTest : public QObject
{
    Q_OBJECT

private slots:
    void classIsMainWindowDerivedFromQMainWindow();
    void entriesAreInTheirOrder();
    void slotsArePrivateAndOneLeavesOutADefault();
    void progressIsFoundByItsDeclaredTypes();
    void fieldOfLineEditInitIsAKnownType();
    void nothingEmitsTheReservedSignal();
};

void MetaObjectTest::classIsMainWindowDerivedFromQMainWindow()
{
    QCOMPARE(window.className(), "MainWindow");
    QCOMPARE(window.superClass(), &QMainWindow::staticMetaObject);
    QCOMPARE(window.propertyCount() - window.propertyOffset(), 0);
    QCOMPARE(window.enumeratorCount() - window.enumeratorOffset(), 0);
    QCOMPARE(window.classInfoCount() - window.classInfoOffset(), 0);
    QCOMPARE(window.constructorCount(), 0);
}

void MetaObjectTest::entriesAreInTheirOrder()
{
    const QStringList expected{
        "signal void ModuleNameInit(char* modulename)",
        "slot void itoa(int value, char* string, int radix)",
        "slot void translateLanguage()",
        "slot void comboxLanguageChanged()",
        "slot void LineEditsInit()",
        "slot void LineEditInit(QLineEdit* Information)",
        "slot void TableWidgetItemInit()",
        "slot void on_pushButtonLinkBELUN_clicked()",
        "slot void on_pushButtonEnterTFcard_clicked()",
        "slot void ParseFileInfo(const char* fileinfo, int Index)",
        "slot void on_pushButtonDownloadFile_clicked()",
        "slot void DownloadFile(QString fileName)",
        "slot void DownloadFileFinished()",
        "slot void updateDownloadFileProgress(qlonglong bytesRead, qlonglong totalBytes)",
        "slot void on_pushButtonDeleteFile_clicked()",
        "slot void DeleteFile(QString fileName)",
        "slot void on_pushButtonDeleteAllFiles_clicked()",
        "slot void on_pushButtonFormatCard_clicked()",
        "slot void on_checkBoxSelectAllFiles_stateChanged(int arg1)",
        "slot void GetSelectedFiles()",
        "slot int findSubString(const char* string, char* strBuf, const char* leftSplit, const "
        "char* rightSplit)",
        "slot bool IPLive(QString ip, int port, int timeout)",
        "slot bool IPLive(QString ip, int port)",
        "slot void VersionInfo(char hardType, int hardVer, int softVer, int ProtocolVer, int "
        "BootVer)",
        "slot void updateLinkedFlag(bool flag)"};
    const QStringList declared = support::declaredMethods(window);
    for (int index = 0; index < expected.size(); ++index) {
        QCOMPARE(declared.value(index), expected[index]);
    }
    QCOMPARE(declared.size(), expected.size());
}

void MetaObjectTest::slotsArePrivateAndOneLeavesOutADefault()
{
    for (int index = window.methodOffset(); index < window.methodCount(); ++index) {
        const QMetaMethod method = window.method(index);
        const QByteArray signature = method.methodSignature();
        QCOMPARE(method.access(), method.methodType() == QMetaMethod::Signal
                                      ? QMetaMethod::Public
                                      : QMetaMethod::Private);
        QCOMPARE((method.attributes() & QMetaMethod::Cloned) != 0,
                 signature == "IPLive(QString,int)");
        QCOMPARE(QByteArray(method.tag()), QByteArray());
        QCOMPARE(method.revision(), 0);
    }
}

void MetaObjectTest::progressIsFoundByItsDeclaredTypes()
{
    QCOMPARE(window.indexOfSlot("updateDownloadFileProgress(qint64,qint64)"),
             window.methodOffset() + 13);
}

void MetaObjectTest::fieldOfLineEditInitIsAKnownType()
{
    const QMetaMethod method = window.method(window.indexOfSlot("LineEditInit(QLineEdit*)"));
    const QMetaType type(method.parameterType(0));
    QVERIFY(type.isRegistered());
    QCOMPARE(QByteArray(type.name()), QByteArray("QLineEdit*"));
    QCOMPARE(type.metaObject(), &QLineEdit::staticMetaObject);
}

void MetaObjectTest::nothingEmitsTheReservedSignal()
{
    MainWindow mainWindow;
    int named = 0;
    QVERIFY(connect(&mainWindow, &MainWindow::ModuleNameInit, this, [&named] { ++named; }));
    mainWindow.show();
    QCoreApplication::processEvents();
    QCOMPARE(named, 0);
}

BELUN_TEST(MetaObjectTest)
#include "MetaObjectTest.moc"
