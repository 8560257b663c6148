// The form: its objects, their places, their properties and their connections by name.
#include "app/MainWindow.h"
#include "tests/app/FormListing.h"
#include "tests/kit/RecordedText.h"
#include "tests/kit/TestMain.h"
#include "tests/kit/WindowProbe.h"
#include "ui_MainWindow.h"

#include <array>
#include <cstring>

#include <QAbstractButton>
#include <QApplication>
#include <QBrush>
#include <QByteArray>
#include <QColor>
#include <QComboBox>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QGroupBox>
#include <QIODevice>
#include <QImage>
#include <QLineEdit>
#include <QMainWindow>
#include <QMessageLogContext>
#include <QObject>
#include <QPalette>
#include <QPoint>
#include <QProxyStyle>
#include <QRect>
#include <QSize>
#include <QString>
#include <QStringList>
#include <QStyleOption>
#include <QTemporaryDir>
#include <QTest>
#include <QWidget>

namespace {

/// A style whose default spacings and margins differ from the form's, so that a value taken from
/// the style is noticed.
class RoomyStyle : public QProxyStyle
{
public:
    RoomyStyle() : QProxyStyle(QStringLiteral("Fusion")) {}

    int pixelMetric(PixelMetric metric, const QStyleOption* option,
                    const QWidget* widget) const override
    {
        switch (metric) {
        case PM_LayoutHorizontalSpacing:
        case PM_LayoutVerticalSpacing:
            return 17;
        case PM_LayoutLeftMargin:
        case PM_LayoutTopMargin:
        case PM_LayoutRightMargin:
        case PM_LayoutBottomMargin:
            return 31;
        default:
            return QProxyStyle::pixelMetric(metric, option, widget);
        }
    }
};

/// The form on a plain main window, without the code of the program's window.
struct DesignedForm
{
    QMainWindow window;
    Ui_MainWindow form;

    DesignedForm() { form.setupUi(&window); }
};

const QStringList displayFields{
    "lineEditLinkBELUN",   "lineEditHardType", "lineEditHardVer",       "lineEditSoftVer",
    "lineEditProtocolVer", "lineEditBootVer",  "lineEditDownloadLabel", "lineEditDownloadProgress"};

/// Returns how many connections a signal has; QObject::receivers() is protected.
int connectionsOf(const QObject& object, const char* signal)
{
    struct Access : QObject
    {
        using QObject::receivers;
    };
    return (object.*&Access::receivers)(signal);
}

} // namespace

class FormTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void formIsAsListed();
    void recordHoldsTheListedObjectsInTheirOrder();
    void windowHasItsNameAndSize();
    void windowKeepsItsOwnName();
    void windowIconIsThePlainFileAppicon();

    void constructionWarnsOfNothing();
    void startsInEnglishWithBothLanguagesAndNoProgressBar();
    void userActionIsConnectedOnceByName_data();
    void userActionIsConnectedOnceByName();
    void languageSwitchIsConnectedOnce();
    void fieldOnlyDisplays_data();
    void fieldOnlyDisplays();
    void fieldHasNeitherBorderNorBackground_data();
    void fieldHasNeitherBorderNorBackground();
    void anyLineEditCanBeMadeADisplayField();
    void widthsHoldWhenTheWindowIsResized_data();
    void widthsHoldWhenTheWindowIsResized();
};

/// Sets the style above, because margins and spacings must come from the form, not from the style.
void FormTest::init()
{
    QApplication::setStyle(new RoomyStyle);
}

void FormTest::cleanup()
{
    QApplication::setStyle(QStringLiteral("Fusion"));
}

void FormTest::formIsAsListed()
{
    DesignedForm designed;
    const QString difference = support::differenceToData("form.txt", formListing(designed.window));
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
}

void FormTest::recordHoldsTheListedObjectsInTheirOrder()
{
    QFile listing(support::dataPath("form.txt"));
    QVERIFY2(listing.open(QIODevice::ReadOnly), qPrintable(listing.fileName()));
    QStringList expected;
    for (const QByteArray& line : listing.readAll().split('\n')) {
        expected.append(QString::fromUtf8(line.left(line.indexOf(':'))).trimmed());
    }
    expected.removeFirst(); // the window
    expected.removeLast();  // the end of the file

    const DesignedForm designed;
    // The structure consists only of pointers, each to a class whose first base is QObject.
    std::array<QObject*, 43> objects{};
    QCOMPARE(sizeof(Ui_MainWindow), sizeof(objects));
    std::memcpy(objects.data(), static_cast<const void*>(&designed.form), sizeof(objects));
    QStringList names;
    for (const QObject* object : objects) {
        names.append(object->objectName());
    }
    QCOMPARE(names, expected);
}

void FormTest::windowHasItsNameAndSize()
{
    MainWindow window;
    QCOMPARE(window.objectName(), QStringLiteral("MainWindow"));
    QCOMPARE(window.size(), QSize(795, 712));
}

void FormTest::windowKeepsItsOwnName()
{
    QMainWindow window;
    window.setObjectName(QStringLiteral("named before"));
    Ui_MainWindow form;
    form.setupUi(&window);
    QCOMPARE(window.objectName(), QStringLiteral("named before"));
}

/// The icon's file name has no folder, so it is resolved in the working folder.
void FormTest::windowIconIsThePlainFileAppicon()
{
    const QString before = QDir::currentPath();
    QTemporaryDir folder;
    QVERIFY(folder.isValid() && QDir::setCurrent(folder.path()));
    QImage picture(16, 16, QImage::Format_RGB32);
    picture.fill(QColor(12, 200, 99));
    QVERIFY(picture.save(QStringLiteral("appicon.png")));

    DesignedForm designed;
    const QImage icon = designed.window.windowIcon().pixmap(16, 16).toImage();
    QDir::setCurrent(before);
    QVERIFY(!icon.isNull());
    QCOMPARE(icon.pixelColor(8, 8), QColor(12, 200, 99));
}

void FormTest::constructionWarnsOfNothing()
{
    static QStringList messages;
    messages.clear();
    const QtMessageHandler before =
        qInstallMessageHandler([](QtMsgType type, const QMessageLogContext&, const QString& text) {
            if (type != QtDebugMsg && type != QtInfoMsg) {
                messages.append(text);
            }
        });
    {
        MainWindow window;
        QCoreApplication::processEvents();
    }
    qInstallMessageHandler(before);
    QVERIFY2(messages.isEmpty(), qPrintable(messages.join(QLatin1Char('\n'))));
}

void FormTest::startsInEnglishWithBothLanguagesAndNoProgressBar()
{
    MainWindow window;
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    auto& combo = support::WindowProbe(window).child<QComboBox>(QStringLiteral("comboBox"));
    QCOMPARE(combo.count(), 2);
    QCOMPARE(combo.itemText(0), QStringLiteral("English"));
    QCOMPARE(combo.itemText(1), QStringLiteral("Chinese"));
    QCOMPARE(combo.currentIndex(), 0);
    QVERIFY(!support::WindowProbe(window)
                 .child<QWidget>(QStringLiteral("progressBarDownLoad"))
                 .isVisible());
    for (const QString& field : displayFields) {
        QCOMPARE(support::WindowProbe(window).child<QLineEdit>(field).text(), QString());
    }
}

void FormTest::userActionIsConnectedOnceByName_data()
{
    QTest::addColumn<QByteArray>("signal");
    QTest::addColumn<QByteArray>("slot");

    const auto row = [](const char* name, const char* signal, const char* slot) {
        QTest::newRow(name) << QByteArray(signal) << QByteArray(slot);
    };
    row("pushButtonLinkBELUN", SIGNAL(clicked()), SLOT(on_pushButtonLinkBELUN_clicked()));
    row("pushButtonEnterTFcard", SIGNAL(clicked()), SLOT(on_pushButtonEnterTFcard_clicked()));
    row("pushButtonDownloadFile", SIGNAL(clicked()), SLOT(on_pushButtonDownloadFile_clicked()));
    row("pushButtonDeleteFile", SIGNAL(clicked()), SLOT(on_pushButtonDeleteFile_clicked()));
    row("pushButtonDeleteAllFiles", SIGNAL(clicked()), SLOT(on_pushButtonDeleteAllFiles_clicked()));
    row("pushButtonFormatCard", SIGNAL(clicked()), SLOT(on_pushButtonFormatCard_clicked()));
    row("checkBoxSelectAllFiles", SIGNAL(stateChanged(int)),
                                         SLOT(on_checkBoxSelectAllFiles_stateChanged(int)));
}

void FormTest::userActionIsConnectedOnceByName()
{
    QFETCH(QByteArray, signal);
    QFETCH(QByteArray, slot);
    MainWindow window;
    auto& button = support::WindowProbe(window).child<QAbstractButton>(
        QString::fromLatin1(QTest::currentDataTag()));
    QCOMPARE(connectionsOf(button, signal.constData()), 1);
    QVERIFY(QObject::disconnect(&button, signal.constData(), &window, slot.constData()));
    QCOMPARE(connectionsOf(button, signal.constData()), 0);
}

void FormTest::languageSwitchIsConnectedOnce()
{
    MainWindow window;
    auto& combo = support::WindowProbe(window).child<QComboBox>(QStringLiteral("comboBox"));
    QCOMPARE(connectionsOf(combo, SIGNAL(currentIndexChanged(int))), 1);
    QVERIFY(QObject::disconnect(&combo, SIGNAL(currentIndexChanged(int)), &window,
                                               SLOT(comboxLanguageChanged())));
}

void FormTest::fieldOnlyDisplays_data()
{
    QTest::addColumn<int>("unused");
    for (const QString& field : displayFields) {
        QTest::newRow(qPrintable(field)) << 0;
    }
}

void FormTest::fieldOnlyDisplays()
{
    MainWindow window;
    window.show();
    window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    auto& field =
        support::WindowProbe(window).child<QLineEdit>(QString::fromLatin1(QTest::currentDataTag()));
    QVERIFY(!field.isEnabled());
    QCOMPARE(field.styleSheet(), QStringLiteral("border:1px;background:transparent"));
    for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
        QCOMPARE(field.palette().brush(group, QPalette::Text),
                 QBrush(QColor(0, 0, 0, 255), Qt::SolidPattern));
    }

    field.setFocus();
    QVERIFY(!field.hasFocus());
    QTest::mouseClick(window.windowHandle(), Qt::LeftButton, Qt::NoModifier,
                      field.mapTo(&window, field.rect().center()));
    QTest::keyClicks(QApplication::focusWidget() != nullptr ? QApplication::focusWidget() : &window,
                     QStringLiteral("x"));
    QVERIFY(!field.hasFocus());
    QCOMPARE(field.text(), QString());
}

void FormTest::fieldHasNeitherBorderNorBackground_data()
{
    fieldOnlyDisplays_data();
}

/// An empty field is invisible: the window looks the same with the field hidden.
void FormTest::fieldHasNeitherBorderNorBackground()
{
    MainWindow window;
    // Group boxes draw a shade and frame behind their fields.
    for (QGroupBox* box : window.findChildren<QGroupBox*>()) {
        box->setFlat(true);
    }
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    auto& field =
        support::WindowProbe(window).child<QLineEdit>(QString::fromLatin1(QTest::currentDataTag()));
    QVERIFY(!field.rect().isEmpty());
    const QRect place(field.mapTo(&window, QPoint(0, 0)), field.size());
    const QImage with = window.grab(place).toImage();
    field.hide();
    const QImage without = window.grab(place).toImage();
    QCOMPARE(with, without);
}

void FormTest::anyLineEditCanBeMadeADisplayField()
{
    MainWindow window;
    QLineEdit field;
    support::WindowProbe(window).call("LineEditInit", Q_ARG(QLineEdit*, &field));
    QVERIFY(!field.isEnabled());
    QCOMPARE(field.styleSheet(), QStringLiteral("border:1px;background:transparent"));
    QCOMPARE(field.palette().color(QPalette::Disabled, QPalette::Text), QColor(0, 0, 0));
}

void FormTest::widthsHoldWhenTheWindowIsResized_data()
{
    QTest::addColumn<QSize>("size");

    QTest::newRow("as it starts") << QSize(795, 712);
    QTest::newRow("large") << QSize(1600, 1000);
    QTest::newRow("as small as it gets") << QSize(1, 1);
}

void FormTest::widthsHoldWhenTheWindowIsResized()
{
    QFETCH(QSize, size);
    MainWindow window;
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    auto& table =
        support::WindowProbe(window).child<QWidget>(QStringLiteral("tableWidgetFileInfo"));
    const int before = table.width();
    window.resize(size);
    QVERIFY(QTest::qWaitFor([&window, &size] { return window.width() >= size.width(); }));
    QCoreApplication::processEvents();
    QVERIFY(size.width() == 795 || table.width() != before); // the window has been resized
    QCOMPARE(support::WindowProbe(window)
                 .child<QWidget>(QStringLiteral("pushButtonEnterTFcard"))
                 .width(),
             359);
    QVERIFY(support::WindowProbe(window)
                .child<QWidget>(QStringLiteral("lineEditDownloadLabel"))
                .width() >= 140);
    QCOMPARE(support::WindowProbe(window)
                 .child<QWidget>(QStringLiteral("lineEditDownloadProgress"))
                 .width(),
             80);
}

BELUN_TEST(FormTest)

#include "FormTest.moc"
