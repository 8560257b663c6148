// The form as text.
#pragma once

#include <QMainWindow>
#include <QString>

/// Returns one line for each named object of the window, indented below the object that contains
/// it: name, class, place unless it is obvious, and the properties that differ from those of a new
/// object of the class. A layout item has stretch 0 and no alignment unless its line says
/// otherwise. All other named objects follow at the end.
QString formListing(QMainWindow& window);
