// Tells the thread sanitizer what it cannot see in an uninstrumented Qt: everything that a thread
// has done happens before a QThread::wait() for this thread returns. The linker redirects our calls
// of start() and wait() to this file (Sanitizers.cmake).
#include <sanitizer/tsan_interface.h>

#include <QThread>

void realStart(QThread* thread,
               QThread::Priority priority) asm("__real__ZN7QThread5startENS_8PriorityE");
bool realWait(QThread* thread, unsigned long time) asm("__real__ZN7QThread4waitEm");
bool realWaitUntil(QThread* thread,
                   QDeadlineTimer end) asm("__real__ZN7QThread4waitE14QDeadlineTimer");

void tellingStart(QThread* thread,
                  QThread::Priority priority) asm("__wrap__ZN7QThread5startENS_8PriorityE");
bool tellingWait(QThread* thread, unsigned long time) asm("__wrap__ZN7QThread4waitEm");
bool tellingWaitUntil(QThread* thread,
                      QDeadlineTimer end) asm("__wrap__ZN7QThread4waitE14QDeadlineTimer");

namespace {

bool isOver(QThread* thread, bool waited)
{
    if (waited) {
        __tsan_acquire(thread);
    }
    return waited;
}

} // namespace

void tellingStart(QThread* thread, QThread::Priority priority)
{
    // finished() is emitted in the thread itself, after run() has returned.
    QObject::connect(
        thread, &QThread::finished, thread, [thread] { __tsan_release(thread); },
        Qt::DirectConnection);
    realStart(thread, priority);
}

bool tellingWait(QThread* thread, unsigned long time)
{
    return isOver(thread, realWait(thread, time));
}

bool tellingWaitUntil(QThread* thread, QDeadlineTimer end)
{
    return isOver(thread, realWaitUntil(thread, end));
}
