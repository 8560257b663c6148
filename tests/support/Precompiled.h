// What nearly every test includes, compiled once for each test program. Kept small: it is read for
// every file.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <QByteArray>
#include <QSignalSpy>
#include <QString>
#include <QTest>
#ifdef QT_WIDGETS_LIB
#include <QPushButton>
#include <QTableWidget>
#endif
