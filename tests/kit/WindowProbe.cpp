#include "tests/kit/WindowProbe.h"

#include <cstdlib>

#include <QString>
#include <QTest>
#include <QWidget>

namespace support {

void WindowProbe::click(const QString& name) const
{
    QTest::mouseClick(&child<QWidget>(name), Qt::LeftButton);
}

void WindowProbe::missing(const QString& name) const
{
    qFatal("the window has no widget %s of that type", qPrintable(name));
    std::abort();
}

void WindowProbe::checkCalled(bool called, const char* slot)
{
    if (!called) {
        QTest::qFail(qPrintable(QStringLiteral("no such slot, or other arguments: %1")
                                    .arg(QString::fromLatin1(slot))),
                     __FILE__, __LINE__);
    }
}

bool eventually(const std::function<bool()>& condition, int limit)
{
    return QTest::qWaitFor(condition, limit);
}

} // namespace support
