// The window's signals and slots, apart from their order, which tests/data/form.txt lists.
#include "app/MainWindow.h"
#include "tests/kit/TestMain.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QLineEdit>
#include <QMainWindow>
#include <QMetaMethod>
#include <QMetaObject>
#include <QMetaType>

namespace {

const QMetaObject& window = MainWindow::staticMetaObject;

} // namespace

class MetaObjectTest : public QObject
{
    Q_OBJECT

private slots:
    void classIsMainWindowDerivedFromQMainWindow();
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
