// Operates the program's window from inside.
#pragma once

#include "app/MainWindow.h"

#include <QAbstractButton>
#include <QProgressBar>
#include <QTableWidget>

/// Shows the window as the program does and clicks in it. Ends the process with a message if
/// something cannot be done. Must be used by one thread.
class WindowUser
{
public:
    /// Waits until the window has been painted.
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
    /// Browses and waits until the rows have been painted.
    void browse();
    /// Selects and downloads all rows and waits until the last download has finished.
    void downloadAll();
    /// Runs the event loop.
    static void wait(int milliseconds);

    MainWindow& window() { return m_window; }
    QTableWidget& table() { return child<QTableWidget>("tableWidgetFileInfo"); }
    QProgressBar& bar() { return child<QProgressBar>("progressBarDownLoad"); }

private:
    MainWindow m_window;
};
