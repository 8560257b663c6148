// The form as text.
#pragma once

#include <QMainWindow>
#include <QString>

/// Lists the window's named objects, one line each, indented below the one that holds it: name,
/// class, place where that is not obvious, and what differs from a new object of the class. A
/// layout item is at stretch 0 and without alignment unless its line says otherwise. A named object
/// that no line has shown yet follows at the end.
QString formListing(QMainWindow& window);
