#include "tests/app/FormListing.h"

#include "tests/kit/MetaMethods.h"
#include "tests/kit/RecordedText.h"

#include <map>
#include <memory>
#include <set>

#include <QBoxLayout>
#include <QCheckBox>
#include <QComboBox>
#include <QDebug>
#include <QFile>
#include <QGroupBox>
#include <QIcon>
#include <QLabel>
#include <QLayoutItem>
#include <QLineEdit>
#include <QMargins>
#include <QMenuBar>
#include <QMetaEnum>
#include <QMetaObject>
#include <QMetaProperty>
#include <QMetaType>
#include <QObject>
#include <QPixmap>
#include <QProgressBar>
#include <QPushButton>
#include <QRect>
#include <QSize>
#include <QSizePolicy>
#include <QStatusBar>
#include <QStringList>
#include <QTableWidget>
#include <QToolBar>
#include <QVariant>
#include <QWidget>

namespace {

/// Properties that are not listed, for example the current geometry and properties that repeat
/// another property.
const QStringList leftOut =
    QString("objectName geometry frameGeometry normalGeometry x y pos frameSize size width height "
            "rect childrenRect childrenRegion sizeHint minimumSizeHint visible windowFlags "
            "windowModality windowIcon selectedText minimumWidth minimumHeight maximumWidth "
            "maximumHeight")
        .split(' ');

QString classOf(const QObject& object)
{
    return QString::fromLatin1(object.metaObject()->className());
}

template <class Widget>
QWidget* make(QWidget* parent)
{
    return new Widget(parent);
}

std::unique_ptr<QWidget> freshWidget(const QString& className, QWidget* parent)
{
    static const std::map<QString, QWidget* (*)(QWidget*)> makers{
        {"QWidget", make<QWidget>},           {"QPushButton", make<QPushButton>},
        {"QLineEdit", make<QLineEdit>},       {"QLabel", make<QLabel>},
        {"QComboBox", make<QComboBox>},       {"QGroupBox", make<QGroupBox>},
        {"QProgressBar", make<QProgressBar>}, {"QCheckBox", make<QCheckBox>},
        {"QTableWidget", make<QTableWidget>}, {"QMenuBar", make<QMenuBar>},
        {"QToolBar", make<QToolBar>},         {"QStatusBar", make<QStatusBar>}};
    const auto found = makers.find(className);
    return std::unique_ptr<QWidget>(found != makers.end() ? found->second(parent) : nullptr);
}

/// Returns whether two values are equal. Icons and pixmaps are compared by their cache keys,
/// because not every Qt version compares such variants.
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

QString sizeText(const QSize& size)
{
    return QStringLiteral("%1x%2").arg(size.width()).arg(size.height());
}

QString policyText(const QSizePolicy& policy)
{
    const auto name = [](QSizePolicy::Policy value) {
        return QString::fromLatin1(QMetaEnum::fromType<QSizePolicy::Policy>().valueToKey(value));
    };
    QString text = name(policy.horizontalPolicy()) + ' ' + name(policy.verticalPolicy());
    if (policy.horizontalStretch() != 0 || policy.verticalStretch() != 0) {
        text += QStringLiteral(" stretch %1 %2")
                    .arg(policy.horizontalStretch())
                    .arg(policy.verticalStretch());
    }
    return policy.hasHeightForWidth() ? text + " height for width" : text;
}

QString alignmentText(Qt::Alignment alignment)
{
    if (alignment == Qt::Alignment()) {
        return {};
    }
    return alignment == Qt::AlignLeft    ? QStringLiteral(", at the left")
           : alignment == Qt::AlignRight ? QStringLiteral(", at the right")
                                         : QStringLiteral(", aligned otherwise");
}

QString valueText(const QVariant& value)
{
    switch (value.userType()) {
    case QMetaType::QString:
        return '"' + value.toString() + '"';
    case QMetaType::Int:
        return value.toString();
    case QMetaType::QSize:
        return sizeText(value.toSize());
    case QMetaType::QSizePolicy:
        return policyText(value.value<QSizePolicy>());
    default:
        QString text;
        QDebug(&text).nospace() << value;
        return text;
    }
}

class Listing
{
public:
    explicit Listing(QMainWindow& window) : m_window(window)
    {
        m_lines += QStringLiteral("%1: %2, %3, title \"%4\"")
                       .arg(window.objectName(), classOf(window), sizeText(window.size()),
                            window.windowTitle());
        for (QObject* child : window.children()) {
            if (child->isWidgetType() && isOurs(*child)) {
                auto& widget = static_cast<QWidget&>(*child);
                addWidget(widget, window, placeInWindow(widget), 1);
            }
        }
        for (QObject* object : window.findChildren<QObject*>()) {
            if (isOurs(*object) && m_shown.count(object) == 0) {
                add(*object, ", in no layout", 0);
            }
        }
    }

    QString text() const { return m_lines.join('\n') + '\n'; }

private:
    static bool isOurs(const QObject& object)
    {
        const QString name = object.objectName();
        return !name.isEmpty() && !name.startsWith("qt_") && name != "_layout";
    }

    QString placeInWindow(QWidget& widget) const
    {
        if (&widget == m_window.centralWidget()) {
            return ", central widget";
        }
        if (&widget == m_window.menuWidget()) {
            const QRect place = widget.geometry();
            return QStringLiteral(", menu bar at %1 %2, %3")
                .arg(place.x())
                .arg(place.y())
                .arg(sizeText(place.size()));
        }
        if (auto* bar = qobject_cast<QToolBar*>(&widget)) {
            const char* const place =
                m_window.toolBarArea(bar) == Qt::TopToolBarArea ? ", at the top" : ", elsewhere";
            return m_window.toolBarBreak(bar) ? place + QStringLiteral(" in a new row") : place;
        }
        return qobject_cast<QStatusBar*>(&widget) == m_window.statusBar() ? ", status bar" : "";
    }

    void add(const QObject& object, const QString& rest, int depth)
    {
        m_shown.insert(&object);
        m_lines += QString(2 * depth, ' ') + object.objectName() + ": " + classOf(object) + rest;
    }

    void addWidget(QWidget& widget, const QWidget& parent, const QString& place, int depth)
    {
        add(widget, place + parentText(widget.parentWidget(), parent) + ownProperties(widget),
            depth);
        auto* layout = qobject_cast<QBoxLayout*>(widget.layout());
        if (layout != nullptr && isOurs(*layout)) {
            addLayout(*layout, widget, QString(), depth + 1);
        }
    }

    void addLayout(QBoxLayout& layout, const QWidget& parent, const QString& place, int depth)
    {
        add(layout,
            QStringLiteral(", spacing %1").arg(layout.spacing()) +
                marginsText(layout.contentsMargins()) + place +
                parentText(layout.parentWidget(), parent),
            depth);
        for (int index = 0; index < layout.count(); ++index) {
            QLayoutItem& item = *layout.itemAt(index);
            const QString itemPlace = placeInLayout(item, layout.stretch(index));
            if (item.widget() != nullptr) {
                addWidget(*item.widget(), parent, itemPlace, depth + 1);
            } else if (auto* box = qobject_cast<QBoxLayout*>(item.layout())) {
                addLayout(*box, parent, itemPlace, depth + 1);
            } else {
                m_lines += QString(2 * depth + 2, ' ') + "an item of another kind";
            }
        }
    }

    static QString placeInLayout(const QLayoutItem& item, int stretch)
    {
        const QString text = alignmentText(item.alignment());
        return stretch != 0 ? text + QStringLiteral(", stretch %1").arg(stretch) : text;
    }

    static QString marginsText(const QMargins& margins)
    {
        return margins.isNull() ? QString()
                                : QStringLiteral(", margins %1 %2 %3 %4")
                                      .arg(margins.left())
                                      .arg(margins.top())
                                      .arg(margins.right())
                                      .arg(margins.bottom());
    }

    static QString parentText(const QWidget* actual, const QWidget& expected)
    {
        if (actual == &expected) {
            return {};
        }
        return ", parent " + (actual != nullptr ? actual->objectName() : QStringLiteral("none"));
    }

    /// Returns the properties whose values differ from those of a new widget of the same class, and
    /// the number of actions.
    static QString ownProperties(const QWidget& widget)
    {
        QMainWindow elsewhere;
        const std::unique_ptr<QWidget> fresh = freshWidget(classOf(widget), &elsewhere);
        if (fresh == nullptr) {
            return ", not a class of this form";
        }
        QStringList texts; // sorted, because the order depends on the Qt version
        const QMetaObject& type = *widget.metaObject();
        for (int index = 0; index < type.propertyCount(); ++index) {
            const QMetaProperty property = type.property(index);
            const QString name = QString::fromLatin1(property.name());
            const QVariant value = property.read(&widget);
            if (!leftOut.contains(name) && !sameValue(value, property.read(fresh.get()))) {
                texts += ", " + name + ' ' + valueText(value);
            }
        }
        if (!widget.actions().isEmpty()) {
            texts += QStringLiteral(", %1 actions").arg(widget.actions().size());
        }
        texts.sort();
        return texts.join(QString());
    }

    QMainWindow& m_window;
    QStringList m_lines;
    std::set<const QObject*> m_shown;
};

} // namespace

QString formListing(QMainWindow& window)
{
    return Listing(window).text();
}

QString methodListing(const QMetaObject& windowClass)
{
    return "\nsignals and slots:\n  " + support::declaredMethods(windowClass).join("\n  ") + '\n';
}

QList<ListedObject> listedObjects()
{
    QFile file(support::dataPath("form.txt"));
    if (!file.open(QIODevice::ReadOnly)) {
        qFatal("%s: %s", qPrintable(file.fileName()), qPrintable(file.errorString()));
    }
    QList<ListedObject> objects;
    for (const QString& line : QString::fromUtf8(file.readAll()).split('\n')) {
        if (line.isEmpty()) {
            break; // the signals and slots follow
        }
        const QStringList nameAndRest = line.trimmed().split(": ");
        objects.append({nameAndRest[0], nameAndRest.value(1).split(',').first()});
    }
    objects.removeFirst(); // the window
    return objects;
}

QStringList listedNames(const QStringList& types)
{
    QStringList names;
    for (const ListedObject& object : listedObjects()) {
        if (types.contains(object.type)) {
            names.append(object.name);
        }
    }
    return names;
}
