#include "app/UnhurriedLoop.h"

#include <QAbstractEventDispatcher>
#include <QThread>

void UnhurriedLoop::setActive(bool active)
{
    disconnect(m_connection);
    if (active) {
        m_connection =
            connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock,
                    this, [] { QThread::usleep(rest); });
    }
}
