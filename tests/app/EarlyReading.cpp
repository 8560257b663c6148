#include "tests/app/EarlyReading.h"

#include <QFile>

namespace {

QByteArray contents(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// This file is in a static library, whose initialisers run after those of the program's own
// objects.
const EarlyReading reading{contents(QStringLiteral(":/Images/appicon.png")),
                           contents(QStringLiteral(":/translation/belun_chinese.qm")),
                           contents(QStringLiteral(":/translation/belun_english.qm"))};

} // namespace

const EarlyReading& earlyReading()
{
    return reading;
}
