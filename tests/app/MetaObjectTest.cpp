// The window's signals and slots, entry by entry.
#include "app/MainWindow.h"
#include "tests/kit/TestMain.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QLineEdit>
#include <QMainWindow>
#include <QMetaMethod>
#include <QMetaObject>
#include <QMetaType>
#include <QObject>
#include <QString>
#include <QTest>

class MetaObjectTest : public QObject
{
    Q_OBJECT

private slots:
    void classIsMainWindowDerivedFromQMainWindow();
    void hasOneSignalAndTwentyFourSlotsAndNothingElse();
    void entriesAreInTheirOrder_data();
    void entriesAreInTheirOrder();
    void progressIsFoundByItsDeclaredTypes();
    void fieldOfLineEditInitIsAKnownType();
    void nothingEmitsTheReservedSignal();
};

void MetaObjectTest::classIsMainWindowDerivedFromQMainWindow()
{
    QCOMPARE(MainWindow::staticMetaObject.className(), "MainWindow");
    QCOMPARE(MainWindow::staticMetaObject.superClass(), &QMainWindow::staticMetaObject);
}

void MetaObjectTest::hasOneSignalAndTwentyFourSlotsAndNothingElse()
{
    const QMetaObject& window = MainWindow::staticMetaObject;
    QCOMPARE(window.methodCount() - window.methodOffset(), 25);
    QCOMPARE(window.propertyCount() - window.propertyOffset(), 0);
    QCOMPARE(window.enumeratorCount() - window.enumeratorOffset(), 0);
    QCOMPARE(window.classInfoCount() - window.classInfoOffset(), 0);
    QCOMPARE(window.constructorCount(), 0);
}

void MetaObjectTest::entriesAreInTheirOrder_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<int>("kind");
    QTest::addColumn<int>("access");
    QTest::addColumn<QByteArray>("returns");
    QTest::addColumn<QByteArray>("signature");
    QTest::addColumn<QByteArray>("parameters");
    QTest::addColumn<bool>("leavesOutADefault");

    int index = 0;
    const auto row = [&index](QMetaMethod::MethodType kind, QMetaMethod::Access access,
                              const char* returns, const char* signature, const char* parameters,
                              bool leavesOutADefault = false) {
        QTest::newRow(
            qPrintable(QStringLiteral("%1 %2").arg(index).arg(QString::fromLatin1(signature))))
            << index << static_cast<int>(kind) << static_cast<int>(access) << QByteArray(returns)
            << QByteArray(signature) << QByteArray(parameters) << leavesOutADefault;
        ++index;
    };
    const auto slot = [&row](const char* returns, const char* signature, const char* parameters,
                             bool leavesOutADefault = false) {
        row(QMetaMethod::Slot, QMetaMethod::Private, returns, signature, parameters,
            leavesOutADefault);
    };
    row(QMetaMethod::Signal, QMetaMethod::Public, "void", "ModuleNameInit(char*)", "modulename");
    slot("void", "itoa(int,char*,int)", "value,string,radix");
    slot("void", "translateLanguage()", "");
    slot("void", "comboxLanguageChanged()", "");
    slot("void", "LineEditsInit()", "");
    slot("void", "LineEditInit(QLineEdit*)", "Information");
    slot("void", "TableWidgetItemInit()", "");
    slot("void", "on_pushButtonLinkBELUN_clicked()", "");
    slot("void", "on_pushButtonEnterTFcard_clicked()", "");
    slot("void", "ParseFileInfo(const char*,int)", "fileinfo,Index");
    slot("void", "on_pushButtonDownloadFile_clicked()", "");
    slot("void", "DownloadFile(QString)", "fileName");
    slot("void", "DownloadFileFinished()", "");
    // Declared with qint64, which the meta-object reports as qlonglong.
    slot("void", "updateDownloadFileProgress(qlonglong,qlonglong)", "bytesRead,totalBytes");
    slot("void", "on_pushButtonDeleteFile_clicked()", "");
    slot("void", "DeleteFile(QString)", "fileName");
    slot("void", "on_pushButtonDeleteAllFiles_clicked()", "");
    slot("void", "on_pushButtonFormatCard_clicked()", "");
    slot("void", "on_checkBoxSelectAllFiles_stateChanged(int)", "arg1");
    slot("void", "GetSelectedFiles()", "");
    slot("int", "findSubString(const char*,char*,const char*,const char*)",
         "string,strBuf,leftSplit,rightSplit");
    slot("bool", "IPLive(QString,int,int)", "ip,port,timeout");
    slot("bool", "IPLive(QString,int)", "ip,port", true);
    slot("void", "VersionInfo(char,int,int,int,int)",
         "hardType,hardVer,softVer,ProtocolVer,BootVer");
    slot("void", "updateLinkedFlag(bool)", "flag");
}

void MetaObjectTest::entriesAreInTheirOrder()
{
    QFETCH(int, index);
    const QMetaMethod method =
        MainWindow::staticMetaObject.method(MainWindow::staticMetaObject.methodOffset() + index);
    QTEST(method.methodSignature(), "signature");
    QTEST(static_cast<int>(method.methodType()), "kind");
    QTEST(static_cast<int>(method.access()), "access");
    QTEST(QByteArray(method.typeName()), "returns");
    QTEST(method.parameterNames().join(','), "parameters");
    QTEST((method.attributes() & QMetaMethod::Cloned) != 0, "leavesOutADefault");
    QCOMPARE(QByteArray(method.tag()), QByteArray());
    QCOMPARE(method.revision(), 0);
}

void MetaObjectTest::progressIsFoundByItsDeclaredTypes()
{
    const QMetaObject& window = MainWindow::staticMetaObject;
    QCOMPARE(window.indexOfSlot("updateDownloadFileProgress(qint64,qint64)"),
             window.methodOffset() + 13);
}

void MetaObjectTest::fieldOfLineEditInitIsAKnownType()
{
    const QMetaObject& window = MainWindow::staticMetaObject;
    const QMetaMethod method = window.method(window.indexOfSlot("LineEditInit(QLineEdit*)"));
    const QMetaType type(method.parameterType(0));
    QVERIFY(type.isRegistered());
    QCOMPARE(QByteArray(type.name()), QByteArray("QLineEdit*"));
    QCOMPARE(type.metaObject(), &QLineEdit::staticMetaObject);
}

void MetaObjectTest::nothingEmitsTheReservedSignal()
{
    MainWindow window;
    int named = 0;
    QVERIFY(connect(&window, &MainWindow::ModuleNameInit, this, [&named] { ++named; }));
    window.show();
    QCoreApplication::processEvents();
    QCOMPARE(named, 0);
}

BELUN_TEST(MetaObjectTest)

#include "MetaObjectTest.moc"
