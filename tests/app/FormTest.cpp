// The form: its objects, their places, their properties and their connections by name.
#include "tests/app/FormListing.h"
#include "tests/kit/RecordedText.h"
#include "tests/kit/TestMain.h"
#include "tests/kit/UserWindow.h"
#include "ui_MainWindow.h"

#include <cstring>
#include <vector>

#include <QAbstractButton>
#include <QApplication>
#include <QBrush>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QGroupBox>
#include <QImage>
#include <QPalette>
#include <QProxyStyle>
#include <QStyleOption>
#include <QTemporaryDir>

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

constexpr const char* displayFields[] = {
    "lineEditLinkBELUN",   "lineEditHardType", "lineEditHardVer",       "lineEditSoftVer",
    "lineEditProtocolVer", "lineEditBootVer",  "lineEditDownloadLabel", "lineEditDownloadProgress"};

void addDisplayFields()
{
    QTest::addColumn<int>("unused");
    for (const char* field : displayFields) {
        QTest::newRow(field) << 0;
    }
}

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
    void fieldOnlyDisplays_data() { addDisplayFields(); }
    void fieldOnlyDisplays();
    void fieldHasNeitherBorderNorBackground_data() { addDisplayFields(); }
    void fieldHasNeitherBorderNorBackground();
    void anyLineEditCanBeMadeADisplayField();
    void widthsHoldWhenTheWindowIsResized_data();
    void widthsHoldWhenTheWindowIsResized();
};

/// Sets RoomyStyle, because margins and spacings must come from the form, not from the style.
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
    const QString difference = support::differenceToData(
        "form.txt", formListing(designed.window) + methodListing(MainWindow::staticMetaObject));
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
}

void FormTest::recordHoldsTheListedObjectsInTheirOrder()
{
    const QList<ListedObject> expected = listedObjects();
    const DesignedForm designed;
    // The structure consists only of pointers, each to a class whose first base is QObject.
    std::vector<QObject*> objects(sizeof(Ui_MainWindow) / sizeof(QObject*));
    std::memcpy(objects.data(), static_cast<const void*>(&designed.form), sizeof(Ui_MainWindow));
    QCOMPARE(static_cast<int>(objects.size()), static_cast<int>(expected.size()));
    for (std::size_t i = 0; i < objects.size(); ++i) {
        QCOMPARE(objects[i]->objectName(), expected[static_cast<int>(i)].name);
    }
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

/// The test kit fails every test function during which Qt prints a warning.
void FormTest::constructionWarnsOfNothing()
{
    const MainWindow window;
    QCoreApplication::processEvents();
}

void FormTest::startsInEnglishWithBothLanguagesAndNoProgressBar()
{
    const UserWindow user;
    QVERIFY(QTest::qWaitForWindowExposed(&user.window()));
    QCOMPARE(user.languages().count(), 2);
    QCOMPARE(user.languages().itemText(0), QString("English"));
    QCOMPARE(user.languages().itemText(1), QString("Chinese"));
    QCOMPARE(user.languages().currentIndex(), 0);
    QVERIFY(!user.progressBar().isVisible());
    for (const char* field : displayFields) {
        QCOMPARE(user.lineEdit(field).text(), QString());
    }
}

void FormTest::userActionIsConnectedOnceByName_data()
{
    QTest::addColumn<QByteArray>("signal");
    QTest::addColumn<QByteArray>("slot");

    const auto row = [](const QString& name, const QByteArray& signal, const QByteArray& slot) {
        QTest::newRow(qPrintable(name)) << signal << slot;
    };
    // SLOT() puts a 1 before the signature of a slot.
    for (const QString& button : listedNames({"QPushButton"})) {
        row(button, SIGNAL(clicked()), "1on_" + button.toLatin1() + "_clicked()");
    }
    row("checkBoxSelectAllFiles", SIGNAL(stateChanged(int)),
                                         SLOT(on_checkBoxSelectAllFiles_stateChanged(int)));
    row("comboBox", SIGNAL(currentIndexChanged(int)), SLOT(comboxLanguageChanged()));
}

void FormTest::userActionIsConnectedOnceByName()
{
    QFETCH(QByteArray, signal);
    QFETCH(QByteArray, slot);
    const UserWindow user;
    auto& widget = user.probe().child<QWidget>(QTest::currentDataTag());
    QCOMPARE(connectionsOf(widget, signal.constData()), 1);
    QVERIFY(QObject::disconnect(&widget, signal.constData(), &user.window(), slot.constData()));
    QCOMPARE(connectionsOf(widget, signal.constData()), 0);
}

void FormTest::fieldOnlyDisplays()
{
    const UserWindow user;
    user.window().activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&user.window()));
    QLineEdit& field = user.lineEdit(QTest::currentDataTag());
    QVERIFY(!field.isEnabled());
    QCOMPARE(field.styleSheet(), QString("border:1px;background:transparent"));
    for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
        QCOMPARE(field.palette().brush(group, QPalette::Text),
                 QBrush(QColor(0, 0, 0, 255), Qt::SolidPattern));
    }

    field.setFocus();
    QVERIFY(!field.hasFocus());
    QTest::mouseClick(user.window().windowHandle(), Qt::LeftButton, Qt::NoModifier,
                      field.mapTo(&user.window(), field.rect().center()));
    QWidget* focused = QApplication::focusWidget();
    QTest::keyClicks(focused != nullptr ? focused : &user.window(), "x");
    QVERIFY(!field.hasFocus());
    QCOMPARE(field.text(), QString());
}

/// An empty field is invisible: the window looks the same with the field hidden.
void FormTest::fieldHasNeitherBorderNorBackground()
{
    const UserWindow user;
    // Group boxes draw a shade and frame behind their fields.
    for (QGroupBox* box : user.window().findChildren<QGroupBox*>()) {
        box->setFlat(true);
    }
    QVERIFY(QTest::qWaitForWindowExposed(&user.window()));
    QLineEdit& field = user.lineEdit(QTest::currentDataTag());
    QVERIFY(!field.rect().isEmpty());
    const QRect place(field.mapTo(&user.window(), QPoint(0, 0)), field.size());
    const QImage with = user.window().grab(place).toImage();
    field.hide();
    const QImage without = user.window().grab(place).toImage();
    QCOMPARE(with, without);
}

void FormTest::anyLineEditCanBeMadeADisplayField()
{
    const UserWindow user;
    QLineEdit field;
    user.probe().call("LineEditInit", Q_ARG(QLineEdit*, &field));
    QVERIFY(!field.isEnabled());
    QCOMPARE(field.styleSheet(), QString("border:1px;background:transparent"));
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
    const UserWindow user;
    QVERIFY(QTest::qWaitForWindowExposed(&user.window()));
    const int before = user.table().width();
    user.window().resize(size);
    QVERIFY(QTest::qWaitFor([&] { return user.window().width() >= size.width(); }));
    QCoreApplication::processEvents();
    QVERIFY(size.width() == 795 || user.table().width() != before); // the window has been resized
    QCOMPARE(user.button("pushButtonEnterTFcard").width(), 359);
    QVERIFY(user.lineEdit("lineEditDownloadLabel").width() >= 140);
    QCOMPARE(user.lineEdit("lineEditDownloadProgress").width(), 80);
}

BELUN_TEST(FormTest)

#include "FormTest.moc"
