// What a static initialiser finds in the resources, before main.
#pragma once

#include <QByteArray>

struct EarlyReading
{
    QByteArray icon;
    QByteArray chinese;
    QByteArray english;
};

const EarlyReading& earlyReading();
