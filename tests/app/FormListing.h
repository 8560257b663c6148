// The form as text, and the contents of tests/data/form.txt. The order of the widgets in that file
// is also the tab order.
#pragma once

#include <QList>
#include <QMainWindow>
#include <QString>
#include <QStringList>

/// Returns one line for each named object of the window, indented below its containing object:
/// name, class, the place in the window or layout unless it is the default, and the properties
/// that differ from those of a new object of the class. A layout item has stretch 0 and no
/// alignment unless its line says otherwise. All other named objects follow at the end.
QString formListing(QMainWindow& window);

/// Returns the signals and slots of a window's class, in order, as the listing states them.
QString methodListing(const QMetaObject& windowClass);

/// An object of the form.
struct ListedObject
{
    QString name;
    QString type; ///< The object's class.
};

/// Returns the objects that form.txt lists after the window, in order. A missing file ends the test
/// program.
QList<ListedObject> listedObjects();

/// Returns the names of the listed objects of these classes, in order.
QStringList listedNames(const QStringList& types);
