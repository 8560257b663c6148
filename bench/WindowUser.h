// The program's window with a hand that clicks.
#pragma once

#include "app/MainWindow.h"

#include <QAbstractButton>
#include <QProgressBar>
#include <QTableWidget>

/// Shows the window as the program does and works it. What cannot be done ends the process with a
/// message. One thread.
class WindowUser
{
public:
    /// Returns when the window has been painted.
    WindowUser();

    template <class Widget>
    Widget& child(const char* name)
    {
        auto* found = m_window.findChild<Widget*>(QLatin1String(name));
        if (found == nullptr) {
            qFatal("the window has no %s", name);
        }
        return *found;
    }

    void click(const char* button) { child<QAbstractButton>(button).click(); }
    void link();
    /// Returns when the rows have been painted.
    void browse();
    /// Selects all rows, downloads them and returns when the last one is finished.
    void downloadAll();
    /// Runs the event loop.
    static void wait(int milliseconds);

    MainWindow& window() { return m_window; }
    QTableWidget& table() { return child<QTableWidget>("tableWidgetFileInfo"); }
    QProgressBar& bar() { return child<QProgressBar>("progressBarDownLoad"); }

private:
    MainWindow m_window;
};
