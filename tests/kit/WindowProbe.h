// Gives a test access to a window.
#pragma once

#include <functional>

#include <QGenericArgument>
#include <QMetaObject>
#include <QString>
#include <QWidget>

namespace support {

/// Access to a window's widgets by object name, and to its private slots. The window must outlive
/// the probe. A missing widget ends the test program, because no later step would make sense.
class WindowProbe
{
public:
    explicit WindowProbe(QWidget& window) : m_window(window) {}

    /// Returns the child widget of that name and type.
    template <class Widget>
    Widget& child(const QString& name) const
    {
        auto* found = m_window.findChild<Widget*>(name);
        if (found == nullptr) {
            missing(name);
        }
        return *found;
    }

    /// Clicks in the middle of a child widget with the left button.
    void click(const QString& name) const;

    /// Calls a slot, private or not, in this thread. A missing slot fails the test.
    template <class... Arguments>
    void call(const char* slot, Arguments... arguments) const
    {
        checkCalled(QMetaObject::invokeMethod(&m_window, slot, Qt::DirectConnection, arguments...),
                    slot);
    }

    QWidget& window() const { return m_window; }

private:
    [[noreturn]] void missing(const QString& name) const;
    static void checkCalled(bool called, const char* slot);

    QWidget& m_window;
};

/// Time limit in milliseconds for anything that a window does with the simulator, long enough for a
/// busy machine.
constexpr int busyLimit = 30'000;

/// Processes events until the condition holds. Returns false after the limit in milliseconds.
bool eventually(const std::function<bool()>& condition, int limit = busyLimit);

} // namespace support
