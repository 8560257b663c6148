// Operates the program's window from inside the process.
#pragma once

#include "app/MainWindow.h"

#include <QAbstractButton>
#include <QProgressBar>
#include <QTableWidget>

/// The program's window, with functions that operate it. They end the process with a message if an
/// operation fails. Must be used in the thread of the application.
class WindowUser
{
public:
    /// Shows the window and waits long enough for it to be painted.
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
    /// Browses, then processes the pending events, so that the rows are painted.
    void browse();
    /// Selects and downloads all rows and waits until the last download has finished.
    void downloadAll();
    /// Runs the event loop for the given time.
    static void wait(int milliseconds);

    MainWindow& window() { return m_window; }
    QTableWidget& table() { return child<QTableWidget>("tableWidgetFileInfo"); }
    QProgressBar& bar() { return child<QProgressBar>("progressBarDownLoad"); }

private:
    MainWindow m_window;
};
