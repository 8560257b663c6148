// The form: its objects, their places, their properties and their connections by name.
#include "app/MainWindow.h"
#include "tests/kit/TestMain.h"
#include "tests/kit/WindowProbe.h"
#include "ui_MainWindow.h"

#include <array>
#include <cstring>
#include <map>
#include <memory>

#include <QAbstractButton>
#include <QApplication>
#include <QBoxLayout>
#include <QBrush>
#include <QByteArray>
#include <QCheckBox>
#include <QColor>
#include <QComboBox>
#include <QCoreApplication>
#include <QDir>
#include <QGroupBox>
#include <QIcon>
#include <QImage>
#include <QLabel>
#include <QLayout>
#include <QLayoutItem>
#include <QLineEdit>
#include <QMainWindow>
#include <QMargins>
#include <QMenuBar>
#include <QMessageLogContext>
#include <QMetaObject>
#include <QMetaProperty>
#include <QMetaType>
#include <QObject>
#include <QPalette>
#include <QPixmap>
#include <QPoint>
#include <QProgressBar>
#include <QProxyStyle>
#include <QPushButton>
#include <QRect>
#include <QSize>
#include <QSizePolicy>
#include <QStatusBar>
#include <QString>
#include <QStringList>
#include <QStyleOption>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QTest>
#include <QToolBar>
#include <QVariant>
#include <QWidget>

namespace {

/// A style with spacings and margins that no form sets.
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

/// The form as designed, on a plain window.
struct DesignedForm
{
    QMainWindow window;
    Ui_MainWindow form;

    DesignedForm() { form.setupUi(&window); }
};

const QStringList layoutNames{"verticalLayout_2",    "horizontalLayout_13", "horizontalLayout_6",
                              "horizontalLayout_12", "verticalLayout_3",    "horizontalLayout_7",
                              "horizontalLayout_8",  "horizontalLayout_9",  "horizontalLayout_10",
                              "horizontalLayout_11", "verticalLayout",      "horizontalLayout",
                              "horizontalLayout_3"};

const QStringList displayFields{
    "lineEditLinkBELUN",   "lineEditHardType", "lineEditHardVer",       "lineEditSoftVer",
    "lineEditProtocolVer", "lineEditBootVer",  "lineEditDownloadLabel", "lineEditDownloadProgress"};

/// Returns how many connections a signal has; `receivers` is only available to the object itself.
int connectionsOf(const QObject& object, const char* signal)
{
    struct Access : QObject
    {
        using QObject::receivers;
    };
    return (object.*&Access::receivers)(signal);
}

/// Equal, and for images identical: not every Qt version compares those by itself.
bool sameValue(const QVariant& one, const QVariant& other)
{
    if (one.userType() == QMetaType::QIcon && other.userType() == QMetaType::QIcon) {
        return one.value<QIcon>().cacheKey() == other.value<QIcon>().cacheKey();
    }
    if (one.userType() == QMetaType::QPixmap && other.userType() == QMetaType::QPixmap) {
        return one.value<QPixmap>().cacheKey() == other.value<QPixmap>().cacheKey();
    }
    return one == other;
}

} // namespace

class FormTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void recordHoldsFortyThreeObjectsInTheirOrder();
    void objectIsInItsPlace_data();
    void objectIsInItsPlace();
    void layoutHoldsNothingElse_data();
    void layoutHoldsNothingElse();
    void formHasNoOtherNamedObject();
    void layoutsHaveTheirSpacingAndMargins_data();
    void layoutsHaveTheirSpacingAndMargins();
    void windowHasItsNameAndSize();
    void windowKeepsItsOwnName();
    void windowIconIsThePlainFileAppicon();
    void browseButtonHasAFixedWidth();
    void downloadLabelHasAFixedPlace();
    void percentageFieldHasAFixedWidth();
    void progressBarIsAt24();
    void barsHaveTheirPlaces();
    void otherPropertiesAreQtsDefaults_data();
    void otherPropertiesAreQtsDefaults();
    void designTextsAreThoseOfTheForm_data();
    void designTextsAreThoseOfTheForm();

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

private:
    /// To be kept in an `auto&`: GCC 14 takes a `const auto&` for a reference into the name.
    template <class Object>
    static Object& child(QObject& window, const QString& name)
    {
        auto* found = window.findChild<Object*>(name);
        if (found == nullptr) {
            qFatal("no %s", qPrintable(name));
        }
        return *found;
    }
};

/// Margins and spacings must come from the form, not from the style.
void FormTest::init()
{
    QApplication::setStyle(new RoomyStyle);
}

void FormTest::cleanup()
{
    QApplication::setStyle(QStringLiteral("Fusion"));
}

void FormTest::recordHoldsFortyThreeObjectsInTheirOrder()
{
    const QStringList expected{"centralWidget",
                               "verticalLayout_2",
                               "horizontalLayout_13",
                               "horizontalLayout_6",
                               "pushButtonLinkBELUN",
                               "lineEditLinkBELUN",
                               "horizontalLayout_12",
                               "label_language",
                               "comboBox",
                               "groupBoxVersionInfo",
                               "verticalLayout_3",
                               "horizontalLayout_7",
                               "label_1",
                               "lineEditHardType",
                               "horizontalLayout_8",
                               "label_2",
                               "lineEditHardVer",
                               "horizontalLayout_9",
                               "label_3",
                               "lineEditSoftVer",
                               "horizontalLayout_10",
                               "label_4",
                               "lineEditProtocolVer",
                               "horizontalLayout_11",
                               "label_5",
                               "lineEditBootVer",
                               "groupBoxFile",
                               "verticalLayout",
                               "pushButtonEnterTFcard",
                               "horizontalLayout",
                               "pushButtonDownloadFile",
                               "pushButtonDeleteFile",
                               "pushButtonFormatCard",
                               "pushButtonDeleteAllFiles",
                               "horizontalLayout_3",
                               "lineEditDownloadLabel",
                               "progressBarDownLoad",
                               "lineEditDownloadProgress",
                               "checkBoxSelectAllFiles",
                               "tableWidgetFileInfo",
                               "menuBar",
                               "mainToolBar",
                               "statusBar"};
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

void FormTest::objectIsInItsPlace_data()
{
    QTest::addColumn<QString>("className");
    QTest::addColumn<QString>("place"); // a layout, or the widget whose layout it is
    QTest::addColumn<int>("index");     // -1 for a widget's layout
    QTest::addColumn<QString>("parentWidget");
    QTest::addColumn<int>("alignment");

    const QString central = QStringLiteral("centralWidget");
    const QString version = QStringLiteral("groupBoxVersionInfo");
    const QString file = QStringLiteral("groupBoxFile");
    const auto row = [](const char* name, const char* className, const QString& place, int index,
                        const QString& parentWidget, int alignment = 0) {
        QTest::newRow(name) << className << place << index << parentWidget << alignment;
    };
    row("verticalLayout_2", "QVBoxLayout", "centralWidget", -1, central);
    row("horizontalLayout_13", "QHBoxLayout", "verticalLayout_2", 0, central);
    row("horizontalLayout_6", "QHBoxLayout", "horizontalLayout_13", 0, central);
    row("pushButtonLinkBELUN", "QPushButton", "horizontalLayout_6", 0, central);
    row("lineEditLinkBELUN", "QLineEdit", "horizontalLayout_6", 1, central);
    row("horizontalLayout_12", "QHBoxLayout", "horizontalLayout_13", 1, central);
    row("label_language", "QLabel", "horizontalLayout_12", 0, central);
    row("comboBox", "QComboBox", "horizontalLayout_12", 1, central);
    row("groupBoxVersionInfo", "QGroupBox", "verticalLayout_2", 1, central);
    row("verticalLayout_3", "QVBoxLayout", "groupBoxVersionInfo", -1, version);
    row("horizontalLayout_7", "QHBoxLayout", "verticalLayout_3", 0, version);
    row("label_1", "QLabel", "horizontalLayout_7", 0, version);
    row("lineEditHardType", "QLineEdit", "horizontalLayout_7", 1, version);
    row("horizontalLayout_8", "QHBoxLayout", "verticalLayout_3", 1, version);
    row("label_2", "QLabel", "horizontalLayout_8", 0, version);
    row("lineEditHardVer", "QLineEdit", "horizontalLayout_8", 1, version);
    row("horizontalLayout_9", "QHBoxLayout", "verticalLayout_3", 2, version);
    row("label_3", "QLabel", "horizontalLayout_9", 0, version);
    row("lineEditSoftVer", "QLineEdit", "horizontalLayout_9", 1, version);
    row("horizontalLayout_10", "QHBoxLayout", "verticalLayout_3", 3, version);
    row("label_4", "QLabel", "horizontalLayout_10", 0, version);
    row("lineEditProtocolVer", "QLineEdit", "horizontalLayout_10", 1, version);
    row("horizontalLayout_11", "QHBoxLayout", "verticalLayout_3", 4, version);
    row("label_5", "QLabel", "horizontalLayout_11", 0, version);
    row("lineEditBootVer", "QLineEdit", "horizontalLayout_11", 1, version);
    row("groupBoxFile", "QGroupBox", "verticalLayout_2", 2, central);
    row("verticalLayout", "QVBoxLayout", "groupBoxFile", -1, file);
    row("pushButtonEnterTFcard", "QPushButton", "verticalLayout", 0, file);
    row("horizontalLayout", "QHBoxLayout", "verticalLayout", 1, file);
    row("pushButtonDownloadFile", "QPushButton", "horizontalLayout", 0, file);
    row("pushButtonDeleteFile", "QPushButton", "horizontalLayout", 1, file);
    row("pushButtonFormatCard", "QPushButton", "horizontalLayout", 2, file);
    row("pushButtonDeleteAllFiles", "QPushButton", "horizontalLayout", 3, file);
    row("horizontalLayout_3", "QHBoxLayout", "verticalLayout_2", 3, central);
    row("lineEditDownloadLabel", "QLineEdit", "horizontalLayout_3", 0, central, Qt::AlignRight);
    row("progressBarDownLoad", "QProgressBar", "horizontalLayout_3", 1, central);
    row("lineEditDownloadProgress", "QLineEdit", "horizontalLayout_3", 2, central, Qt::AlignLeft);
    row("checkBoxSelectAllFiles", "QCheckBox", "horizontalLayout_3", 3, central, Qt::AlignRight);
    row("tableWidgetFileInfo", "QTableWidget", "verticalLayout_2", 4, central);
}

void FormTest::objectIsInItsPlace()
{
    QFETCH(QString, place);
    QFETCH(int, index);
    QFETCH(QString, parentWidget);
    DesignedForm designed;
    auto& object = child<QObject>(designed.window, QString::fromLatin1(QTest::currentDataTag()));
    QTEST(QString::fromLatin1(object.metaObject()->className()), "className");

    auto* widget = qobject_cast<QWidget*>(&object);
    auto* layout = qobject_cast<QLayout*>(&object);
    QCOMPARE((widget != nullptr ? widget->parentWidget() : layout->parentWidget())->objectName(),
             parentWidget);
    if (index < 0) {
        QCOMPARE(child<QWidget>(designed.window, place).layout(), layout);
        return;
    }
    auto& box = child<QBoxLayout>(designed.window, place);
    QVERIFY(index < box.count());
    QLayoutItem* item = box.itemAt(index);
    QCOMPARE(item->widget(), widget);
    QCOMPARE(item->layout(), layout);
    QTEST(static_cast<int>(item->alignment()), "alignment");
    QCOMPARE(box.stretch(index), 0);
}

void FormTest::layoutHoldsNothingElse_data()
{
    QTest::addColumn<int>("items");

    const int counts[] = {5, 2, 2, 2, 5, 2, 2, 2, 2, 2, 2, 4, 4};
    for (int index = 0; index < layoutNames.size(); ++index) {
        QTest::newRow(qPrintable(layoutNames[index])) << counts[index];
    }
}

void FormTest::layoutHoldsNothingElse()
{
    DesignedForm designed;
    auto& box = child<QBoxLayout>(designed.window, QString::fromLatin1(QTest::currentDataTag()));
    QTEST(box.count(), "items");
}

void FormTest::formHasNoOtherNamedObject()
{
    DesignedForm designed;
    int named = 0;
    for (const QObject* object : designed.window.findChildren<QObject*>()) {
        const bool isQtsOwn = object->objectName().isEmpty() ||
                              object->objectName().startsWith(QLatin1String("qt_")) ||
                              object->objectName() == QLatin1String("_layout");
        named += isQtsOwn ? 0 : 1;
        QVERIFY2(isQtsOwn || named <= 43, qPrintable(object->objectName()));
    }
    QCOMPARE(named, 43);
}

void FormTest::layoutsHaveTheirSpacingAndMargins_data()
{
    QTest::addColumn<int>("margin");

    for (const QString& name : layoutNames) {
        const bool hasMargin = name == QLatin1String("verticalLayout_2") ||
                               name == QLatin1String("verticalLayout_3") ||
                               name == QLatin1String("verticalLayout");
        QTest::newRow(qPrintable(name)) << (hasMargin ? 11 : 0);
    }
}

void FormTest::layoutsHaveTheirSpacingAndMargins()
{
    QFETCH(int, margin);
    DesignedForm designed;
    auto& box = child<QBoxLayout>(designed.window, QString::fromLatin1(QTest::currentDataTag()));
    QCOMPARE(box.spacing(), 6);
    QCOMPARE(box.contentsMargins(), QMargins(margin, margin, margin, margin));
}

void FormTest::windowHasItsNameAndSize()
{
    DesignedForm designed;
    QCOMPARE(designed.window.objectName(), QStringLiteral("MainWindow"));
    QCOMPARE(designed.window.size(), QSize(795, 712));
    QCOMPARE(designed.window.windowTitle(), QStringLiteral("MainWindow"));

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

/// The plain file name is resolved in the working folder.
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

void FormTest::browseButtonHasAFixedWidth()
{
    DesignedForm designed;
    const QPushButton& button = *designed.form.pushButtonEnterTFcard;
    QCOMPARE(button.sizePolicy().horizontalPolicy(), QSizePolicy::Minimum);
    QCOMPARE(button.sizePolicy().verticalPolicy(), QSizePolicy::Fixed);
    QCOMPARE(button.sizePolicy().horizontalStretch(), 0);
    QCOMPARE(button.sizePolicy().verticalStretch(), 0);
    QCOMPARE(button.sizePolicy().hasHeightForWidth(),
             QPushButton().sizePolicy().hasHeightForWidth());
    QCOMPARE(button.minimumSize(), QSize(359, 0));
    QCOMPARE(button.maximumSize(), QSize(359, 16777215));
}

void FormTest::downloadLabelHasAFixedPlace()
{
    DesignedForm designed;
    const QLineEdit& field = *designed.form.lineEditDownloadLabel;
    QCOMPARE(field.sizePolicy().horizontalPolicy(), QSizePolicy::Fixed);
    QCOMPARE(field.sizePolicy().verticalPolicy(), QSizePolicy::Fixed);
    QCOMPARE(field.minimumSize(), QSize(140, 0));
    QCOMPARE(field.maximumSize(), QSize(16777215, 16777215));
}

void FormTest::percentageFieldHasAFixedWidth()
{
    DesignedForm designed;
    const QLineEdit& field = *designed.form.lineEditDownloadProgress;
    QCOMPARE(field.sizePolicy().horizontalPolicy(), QSizePolicy::Fixed);
    QCOMPARE(field.sizePolicy().verticalPolicy(), QSizePolicy::Fixed);
    QCOMPARE(field.minimumSize(), QSize(80, 0));
    QCOMPARE(field.maximumSize(), QSize(80, 16777215));
}

void FormTest::progressBarIsAt24()
{
    DesignedForm designed;
    QCOMPARE(designed.form.progressBarDownLoad->value(), 24);
    QCOMPARE(designed.form.progressBarDownLoad->minimum(), 0);
    QCOMPARE(designed.form.progressBarDownLoad->maximum(), 100);
}

void FormTest::barsHaveTheirPlaces()
{
    DesignedForm designed;
    QMainWindow& window = designed.window;
    QCOMPARE(window.centralWidget(), designed.form.centralWidget);
    QCOMPARE(window.menuBar(), designed.form.menuBar);
    QCOMPARE(window.statusBar(), designed.form.statusBar);
    QCOMPARE(designed.form.menuBar->geometry(), QRect(0, 0, 795, 22));
    QCOMPARE(window.toolBarArea(designed.form.mainToolBar), Qt::TopToolBarArea);
    QVERIFY(!window.toolBarBreak(designed.form.mainToolBar));
    QVERIFY(designed.form.mainToolBar->actions().isEmpty());
    QVERIFY(designed.form.menuBar->actions().isEmpty());
    const std::map<const QWidget*, QString> classes{{designed.form.centralWidget, "QWidget"},
                                                    {designed.form.menuBar, "QMenuBar"},
                                                    {designed.form.mainToolBar, "QToolBar"},
                                                    {designed.form.statusBar, "QStatusBar"}};
    for (const auto& [widget, className] : classes) {
        QCOMPARE(QString::fromLatin1(widget->metaObject()->className()), className);
        QCOMPARE(widget->parentWidget(), &window);
    }
}

void FormTest::otherPropertiesAreQtsDefaults_data()
{
    QTest::addColumn<QStringList>("set");

    const auto rows = [](const QStringList& names, const QStringList& set) {
        for (const QString& name : names) {
            QTest::newRow(qPrintable(name)) << set;
        }
    };
    rows({"centralWidget", "lineEditLinkBELUN", "comboBox", "lineEditHardType", "lineEditHardVer",
          "lineEditSoftVer", "lineEditProtocolVer", "lineEditBootVer", "tableWidgetFileInfo",
          "menuBar", "mainToolBar", "statusBar"},
         {});
    rows({"pushButtonLinkBELUN", "label_language", "label_1", "label_2", "label_3", "label_4",
          "label_5", "pushButtonDownloadFile", "pushButtonDeleteFile", "pushButtonFormatCard",
          "pushButtonDeleteAllFiles", "checkBoxSelectAllFiles"},
         {"text"});
    rows({"groupBoxVersionInfo", "groupBoxFile"}, {"title"});
    rows({"pushButtonEnterTFcard"},
         {"text", "sizePolicy", "minimumSize", "minimumWidth", "maximumSize", "maximumWidth"});
    rows({"lineEditDownloadLabel"}, {"sizePolicy", "minimumSize", "minimumWidth"});
    rows({"lineEditDownloadProgress"},
         {"sizePolicy", "minimumSize", "minimumWidth", "maximumSize", "maximumWidth"});
    rows({"progressBarDownLoad"}, {"value", "text"});
}

/// Compares every property with that of a new widget of the class, except those that only describe
/// a widget's position and those that the form sets.
void FormTest::otherPropertiesAreQtsDefaults()
{
    QFETCH(QStringList, set);
    const QStringList ofThePlace{"objectName",
                                 "geometry",
                                 "frameGeometry",
                                 "normalGeometry",
                                 "x",
                                 "y",
                                 "pos",
                                 "frameSize",
                                 "size",
                                 "width",
                                 "height",
                                 "rect",
                                 "childrenRect",
                                 "childrenRegion",
                                 "sizeHint",
                                 "minimumSizeHint",
                                 "visible",
                                 "windowFlags",
                                 "windowModality",
                                 "windowTitle",
                                 "windowIcon",
                                 "selectedText"};
    const std::map<QString, std::function<QWidget*(QWidget*)>> make{
        {"QWidget", [](QWidget* parent) { return new QWidget(parent); }},
        {"QPushButton", [](QWidget* parent) { return new QPushButton(parent); }},
        {"QLineEdit", [](QWidget* parent) { return new QLineEdit(parent); }},
        {"QLabel", [](QWidget* parent) { return new QLabel(parent); }},
        {"QComboBox", [](QWidget* parent) { return new QComboBox(parent); }},
        {"QGroupBox", [](QWidget* parent) { return new QGroupBox(parent); }},
        {"QProgressBar", [](QWidget* parent) { return new QProgressBar(parent); }},
        {"QCheckBox", [](QWidget* parent) { return new QCheckBox(parent); }},
        {"QTableWidget", [](QWidget* parent) { return new QTableWidget(parent); }},
        {"QMenuBar", [](QWidget* parent) { return new QMenuBar(parent); }},
        {"QToolBar", [](QWidget* parent) { return new QToolBar(parent); }},
        {"QStatusBar", [](QWidget* parent) { return new QStatusBar(parent); }}};

    DesignedForm designed;
    QMainWindow elsewhere;
    auto& widget = child<QWidget>(designed.window, QString::fromLatin1(QTest::currentDataTag()));
    const QMetaObject& type = *widget.metaObject();
    const QWidget& fresh = *make.at(QString::fromLatin1(type.className()))(&elsewhere);
    int compared = 0;
    for (int index = 0; index < type.propertyCount(); ++index) {
        const QMetaProperty property = type.property(index);
        const QString name = QString::fromLatin1(property.name());
        if (set.contains(name) || ofThePlace.contains(name)) {
            continue;
        }
        QVERIFY2(sameValue(property.read(&widget), property.read(&fresh)), property.name());
        ++compared;
    }
    QVERIFY(compared > 30);
}

void FormTest::designTextsAreThoseOfTheForm_data()
{
    QTest::addColumn<QString>("property");
    QTest::addColumn<QString>("text");

    const auto row = [](const char* name, const char* property, const char* text) {
        QTest::newRow(name) << QString::fromLatin1(property) << QString::fromUtf8(text);
    };
    row("pushButtonLinkBELUN", "text", "link device");
    row("label_language", "text", "TextLabel");
    row("groupBoxVersionInfo", "title", "版本信息");
    row("label_1", "text", "HardwareType\uFF1A");
    row("label_2", "text", "HardwareVer\uFF1A");
    row("label_3", "text", "SoftwareVer\uFF1A");
    row("label_4", "text", "ProtocolVer\uFF1A");
    row("label_5", "text", "BootloaderVer\uFF1A");
    row("groupBoxFile", "title", "文件操作");
    row("pushButtonEnterTFcard", "text", "浏览相机卡内文件");
    row("pushButtonDownloadFile", "text", "下载选中文件");
    row("pushButtonDeleteFile", "text", "删除选中文件");
    row("pushButtonFormatCard", "text", "格式化卡");
    row("pushButtonDeleteAllFiles", "text", "删除卡内所有文件");
    row("checkBoxSelectAllFiles", "text", "全选");
}

void FormTest::designTextsAreThoseOfTheForm()
{
    QFETCH(QString, property);
    DesignedForm designed;
    auto& widget = child<QWidget>(designed.window, QString::fromLatin1(QTest::currentDataTag()));
    QTEST(widget.property(property.toLatin1().constData()).toString(), "text");
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
    auto& combo = child<QComboBox>(window, QStringLiteral("comboBox"));
    QCOMPARE(combo.count(), 2);
    QCOMPARE(combo.itemText(0), QStringLiteral("English"));
    QCOMPARE(combo.itemText(1), QStringLiteral("Chinese"));
    QCOMPARE(combo.currentIndex(), 0);
    QVERIFY(!child<QWidget>(window, QStringLiteral("progressBarDownLoad")).isVisible());
    QCOMPARE(child<QPushButton>(window, QStringLiteral("pushButtonEnterTFcard")).text(),
             QStringLiteral("Browse Files in Card"));
    for (const QString& field : displayFields) {
        QCOMPARE(child<QLineEdit>(window, field).text(), QString());
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
    auto& button = child<QAbstractButton>(window, QString::fromLatin1(QTest::currentDataTag()));
    QCOMPARE(connectionsOf(button, signal.constData()), 1);
    QVERIFY(QObject::disconnect(&button, signal.constData(), &window, slot.constData()));
    QCOMPARE(connectionsOf(button, signal.constData()), 0);
}

void FormTest::languageSwitchIsConnectedOnce()
{
    MainWindow window;
    auto& combo = child<QComboBox>(window, QStringLiteral("comboBox"));
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
    auto& field = child<QLineEdit>(window, QString::fromLatin1(QTest::currentDataTag()));
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

/// An empty field looks the same as the window around it.
void FormTest::fieldHasNeitherBorderNorBackground()
{
    MainWindow window;
    // Group boxes draw a shade and frame behind their fields.
    for (QGroupBox* box : window.findChildren<QGroupBox*>()) {
        box->setFlat(true);
    }
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    auto& field = child<QLineEdit>(window, QString::fromLatin1(QTest::currentDataTag()));
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
    auto& table = child<QWidget>(window, QStringLiteral("tableWidgetFileInfo"));
    const int before = table.width();
    window.resize(size);
    QVERIFY(QTest::qWaitFor([&window, &size] { return window.width() >= size.width(); }));
    QCoreApplication::processEvents();
    QVERIFY(size.width() == 795 || table.width() != before); // the window has been resized
    QCOMPARE(child<QWidget>(window, QStringLiteral("pushButtonEnterTFcard")).width(), 359);
    QVERIFY(child<QWidget>(window, QStringLiteral("lineEditDownloadLabel")).width() >= 140);
    QCOMPARE(child<QWidget>(window, QStringLiteral("lineEditDownloadProgress")).width(), 80);
}

BELUN_TEST(FormTest)

#include "FormTest.moc"
