// Linked into a program that has its own main function: reports when the first window has been
// painted and how much memory the program uses half a second later, then ends the program.
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
    /// Queues the report on the first exposure: the window paints while it handles this event, and
    /// the queued call runs afterwards.
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
