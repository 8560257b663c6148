// Describes a class's meta-object as text.
#pragma once

#include <QMetaMethod>
#include <QMetaObject>
#include <QStringList>

namespace support {

/// Returns the methods declared by the class itself, in order, one line each: kind, return type,
/// name, and parameters with their names, as in "signal void linked(bool flag)". The meta-object
/// reports qint64 as qlonglong.
inline QStringList declaredMethods(const QMetaObject& metaObject)
{
    QStringList lines;
    for (int index = metaObject.methodOffset(); index < metaObject.methodCount(); ++index) {
        const QMetaMethod method = metaObject.method(index);
        QString kind;
        switch (method.methodType()) {
        case QMetaMethod::Signal:
            kind = QStringLiteral("signal");
            break;
        case QMetaMethod::Slot:
            kind = QStringLiteral("slot");
            break;
        default:
            kind = QStringLiteral("method");
            break;
        }
        QStringList parameters;
        const QList<QByteArray> types = method.parameterTypes();
        const QList<QByteArray> names = method.parameterNames();
        for (int number = 0; number < types.size(); ++number) {
            const QByteArray space = names.at(number).isEmpty() ? "" : " ";
            parameters.append(QString::fromLatin1(types.at(number) + space + names.at(number)));
        }
        lines.append(QStringLiteral("%1 %2 %3(%4)")
                         .arg(kind, QString::fromLatin1(method.typeName()),
                              QString::fromLatin1(method.name()),
                              parameters.join(QStringLiteral(", "))));
    }
    return lines;
}

} // namespace support
