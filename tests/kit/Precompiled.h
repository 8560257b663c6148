// Headers that nearly every test includes, compiled once for the programs with Widgets and once for
// those without.
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
