// A window, as a test reaches it.
#pragma once

#include <functional>

#include <QGenericArgument>
#include <QMetaObject>
#include <QString>
#include <QWidget>

namespace support {

/// Finds a window's widgets by their object names and calls its private slots. The window outlives
/// it. A widget that is not there ends the test program: nothing that follows would make sense.
class WindowProbe
{
public:
    explicit WindowProbe(QWidget& window) : m_window(window) {}

    /// The child widget of that name and type.
    template <class Widget>
    Widget& child(const QString& name) const
    {
        auto* found = m_window.findChild<Widget*>(name);
        if (found == nullptr) {
            missing(name);
        }
        return *found;
    }

    /// Whether there is such a child, of whatever type.
    bool has(const QString& name) const;

    /// Clicks in the middle of a child widget with the left button.
    void click(const QString& name) const;

    /// Calls a slot, private or not, in this thread. A slot that is not there fails the test.
    template <class... Arguments>
    void call(const char* slot, Arguments... arguments) const
    {
        checkCalled(QMetaObject::invokeMethod(&m_window, slot, Qt::DirectConnection, arguments...),
                    slot);
    }

    /// Processes events until the condition holds; false after the limit in milliseconds.
    static bool waitUntil(const std::function<bool()>& condition, int limit = 5000);

    QWidget& window() const { return m_window; }

private:
    [[noreturn]] void missing(const QString& name) const;
    static void checkCalled(bool called, const char* slot);

    QWidget& m_window;
};

} // namespace support
