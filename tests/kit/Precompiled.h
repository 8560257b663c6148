// Headers that nearly every test includes, compiled once per test program. Kept small, because
// every file reads it.
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
