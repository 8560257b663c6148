// The window's accessible names and descriptions, in both languages.
#include "card/FileTable.h"
#include "tests/app/FormListing.h"
#include "tests/kit/TestMain.h"
#include "tests/kit/UserWindow.h"

#include <algorithm>
#include <memory>

#include <QAccessible>
#include <QGroupBox>
#include <QTableWidgetItem>

namespace {

const QString shownName = QStringLiteral("VID_0001.MP4");

QAccessibleInterface& interfaceOf(QObject& object)
{
    QAccessibleInterface* found = QAccessible::queryAccessibleInterface(&object);
    if (found == nullptr) {
        qFatal("%s is not in the accessibility tree", qPrintable(object.objectName()));
    }
    return *found;
}

/// Returns the names of a cell's column headers. columnHeaderCells() creates new interfaces for the
/// headers, which belong to the caller and can be deleted only through the registry.
QStringList columnHeadersOf(QAccessibleInterface& cell)
{
    QStringList names;
    for (QAccessibleInterface* header : cell.tableCellInterface()->columnHeaderCells()) {
        names << header->text(QAccessible::Name);
        QAccessible::deleteAccessibleInterface(QAccessible::registerAccessibleInterface(header));
    }
    return names;
}

QString accessibleName(const UserWindow& user, const QString& name)
{
    return interfaceOf(user.probe().child<QWidget>(name)).text(QAccessible::Name);
}

/// Adds a row as a browse does.
void addRow(const UserWindow& user)
{
    card::addNameRow(user.table(), 0, shownName);
    user.probe().call("ParseFileInfo",
                      Q_ARG(const char*, "create=\"20200131124502\";size=\"3145728\";time=\"61\";"),
                      Q_ARG(int, 0));
}

} // namespace

class AccessibilityTest : public QObject
{
    Q_OBJECT

private slots:
    void widgetIsNamedInBothLanguages_data();
    void widgetIsNamedInBothLanguages();
    void fieldIsLabelledByTheLabelBesideIt_data();
    void fieldIsLabelledByTheLabelBesideIt();
    void everyWidgetInUseHasAName();
    void cellIsNamedByItsTextAndDescribedByItsHeader_data();
    void cellIsNamedByItsTextAndDescribedByItsHeader();
    void cellOutsideATableHasNoDescription();
};

void AccessibilityTest::widgetIsNamedInBothLanguages_data()
{
    QTest::addColumn<QString>("english");
    QTest::addColumn<QString>("chinese");

    for (const support::WindowText& text : support::windowTexts()) {
        for (const QString& widget : text.shownBy + text.accessibleNameOf) {
            if (!widget.startsWith("column")) {
                QTest::newRow(qPrintable(widget)) << text.english << text.chinese;
            }
        }
    }
}

void AccessibilityTest::widgetIsNamedInBothLanguages()
{
    QFETCH(QString, english);
    QFETCH(QString, chinese);
    const QString widget = QString::fromLatin1(QTest::currentDataTag());
    const UserWindow user;
    QCOMPARE(accessibleName(user, widget), english);
    user.chooseChinese();
    QCOMPARE(accessibleName(user, widget), chinese);
    user.chooseEnglish();
    QCOMPARE(accessibleName(user, widget), english);
}

void AccessibilityTest::fieldIsLabelledByTheLabelBesideIt_data()
{
    QTest::addColumn<QString>("label");

    QTest::newRow("comboBox") << QStringLiteral("label_language");
    QTest::newRow("lineEditHardType") << QStringLiteral("label_1");
    QTest::newRow("lineEditHardVer") << QStringLiteral("label_2");
    QTest::newRow("lineEditSoftVer") << QStringLiteral("label_3");
    QTest::newRow("lineEditProtocolVer") << QStringLiteral("label_4");
    QTest::newRow("lineEditBootVer") << QStringLiteral("label_5");
}

/// The combo box needs this relation most: its accessible name is the selected language, so only
/// the label says what is selected.
void AccessibilityTest::fieldIsLabelledByTheLabelBesideIt()
{
    QFETCH(QString, label);
    const QString field = QString::fromLatin1(QTest::currentDataTag());
    const UserWindow user;
    const auto labels =
        interfaceOf(user.probe().child<QWidget>(field)).relations(QAccessible::Label);
    QVERIFY(std::any_of(labels.begin(), labels.end(), [&](const auto& found) {
        return found.first->object()->objectName() == label;
    }));
}

/// Every widget that accepts keys or shows a value has an accessible name, including any widget
/// that the table of texts does not list.
void AccessibilityTest::everyWidgetInUseHasAName()
{
    const UserWindow user;
    for (const int language : {0, 1}) {
        user.languages().setCurrentIndex(language);
        int named = 0;
        for (QWidget* child : user.window().centralWidget()->findChildren<QWidget*>()) {
            const bool isUsed = qobject_cast<QAbstractButton*>(child) != nullptr ||
                                qobject_cast<QLineEdit*>(child) != nullptr ||
                                qobject_cast<QComboBox*>(child) != nullptr ||
                                qobject_cast<QProgressBar*>(child) != nullptr ||
                                qobject_cast<QGroupBox*>(child) != nullptr ||
                                qobject_cast<QTableWidget*>(child) != nullptr;
            // Skips Qt's internal parts, such as the table's corner button.
            if (isUsed && !child->objectName().isEmpty() &&
                !child->objectName().startsWith("qt_")) {
                QVERIFY2(!accessibleName(user, child->objectName()).isEmpty(),
                         qPrintable(child->objectName()));
                ++named;
            }
        }
        const int listed =
            static_cast<int>(listedNames({"QPushButton", "QCheckBox", "QLineEdit", "QComboBox",
                                          "QProgressBar", "QGroupBox", "QTableWidget"})
                                 .size());
        QCOMPARE(named, listed);
    }
}

void AccessibilityTest::cellIsNamedByItsTextAndDescribedByItsHeader_data()
{
    QTest::addColumn<int>("column");
    QTest::addColumn<QString>("text");

    QTest::newRow("file_name") << 0 << shownName;
    QTest::newRow("file_date") << 1 << "2020-01-31  12:45:02";
    QTest::newRow("file_size") << 2 << "3MB";
    QTest::newRow("file_duration") << 3 << "61s";
}

void AccessibilityTest::cellIsNamedByItsTextAndDescribedByItsHeader()
{
    QFETCH(int, column);
    QFETCH(QString, text);
    const support::WindowText& columnHeader =
        support::windowText(QString::fromLatin1(QTest::currentDataTag()));
    const UserWindow user;
    addRow(user);
    QAccessibleTableInterface* cells = interfaceOf(user.table()).tableInterface();
    QVERIFY(cells != nullptr);
    for (const int language : {0, 1, 0}) {
        user.languages().setCurrentIndex(language);
        QAccessibleInterface* cell = cells->cellAt(0, column);
        QVERIFY(cell != nullptr);
        QCOMPARE(cell->text(QAccessible::Name), text);
        const QString header = language == 0 ? columnHeader.english : columnHeader.chinese;
        QCOMPARE(cell->text(QAccessible::Description), header);
        QCOMPARE(columnHeadersOf(*cell), QStringList{header});
    }
}

void AccessibilityTest::cellOutsideATableHasNoDescription()
{
    const UserWindow user;
    addRow(user);
    const std::unique_ptr<QTableWidgetItem> item(user.table().takeItem(0, 0));
    QCOMPARE(item->data(Qt::DisplayRole).toString(), shownName);
    QVERIFY(!item->data(Qt::AccessibleDescriptionRole).isValid());
}

BELUN_TEST(AccessibilityTest)

#include "AccessibilityTest.moc"
