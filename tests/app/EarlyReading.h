// The resources as seen by a static initialiser, before main.
#pragma once

#include <QByteArray>

struct EarlyReading
{
    QByteArray icon;
    QByteArray chinese;
    QByteArray english;
};

const EarlyReading& earlyReading();
