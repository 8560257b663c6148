#include "tests/kit/SimulatedCard.h"

#include <algorithm>

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileDevice>
#include <QIODevice>

QByteArray CardFile::content() const
{
    QByteArray content(size, Qt::Uninitialized);
    for (int i = 0; i < size; ++i) {
        content[i] = static_cast<char>((i * 7 + i / 251) & 0xFF);
    }
    return content;
}

bool writeCard(const QString& folder, const QList<CardFile>& files)
{
    return QDir().mkpath(folder) &&
           std::all_of(files.begin(), files.end(), [&folder](const CardFile& entry) {
               QFile file(folder + '/' + entry.name);
               return file.open(QIODevice::WriteOnly) &&
                      file.write(entry.content()) == entry.size && file.flush() &&
                      file.setFileTime(QDateTime::fromString(entry.changed, Qt::ISODate),
                                       QFileDevice::FileModificationTime);
           });
}

QString seenFile(const QString& path, const QByteArray& content)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return "no file";
    }
    const QByteArray bytes = file.readAll();
    if (bytes == content) {
        return "whole";
    }
    if (bytes.isEmpty()) {
        return "empty";
    }
    return QString(content.startsWith(bytes) ? "first %1 bytes" : "%1 other bytes")
        .arg(bytes.size());
}
