// Linked to a program with its own main function: reports when the first window has been painted
// and how much memory the program uses half a second later, then ends it.
#include "bench/Report.h"

#include <QApplication>
#include <QCoreApplication>
#include <QEvent>
#include <QMetaObject>
#include <QTimer>
#include <QWindow>

namespace {

constexpr int settleTime = 500; // milliseconds

class FirstFrame : public QObject
{
public:
    /// The window paints while it handles its first exposure; a queued call runs after it.
    bool eventFilter(QObject* receiver, QEvent* event) override
    {
        const auto* window = qobject_cast<QWindow*>(receiver);
        if (event->type() == QEvent::Expose && window != nullptr && window->isExposed()) {
            QCoreApplication::instance()->removeEventFilter(this);
            QMetaObject::invokeMethod(
                this, [this] { tell(); }, Qt::QueuedConnection);
        }
        return false;
    }

private:
    void tell()
    {
        const double painted = bench::now();
        const double cpu = bench::cpuSeconds();
        QTimer::singleShot(settleTime, this, [painted, cpu] {
            bench::report({{"painted", painted},
                           {"cpu", cpu},
                           {"residentKilobytes", bench::residentKilobytes()}});
            QCoreApplication::quit();
        });
    }
};

void watch()
{
    static FirstFrame frame;
    QCoreApplication::instance()->installEventFilter(&frame);
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(watch)
