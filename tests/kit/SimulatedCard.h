// A card for the simulator: a folder of recordings.
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

struct CardFile
{
    QString name;
    int size;
    const char* changed = "2020-01-31T12:45:02Z";

    /// Returns the content, which depends on the size alone.
    QByteArray content() const;
};

/// Writes the files to the folder, which is created if it does not exist.
bool writeCard(const QString& folder, const QList<CardFile>& files);

/// Compares a file with the expected content. Returns "whole" if they are equal, otherwise "empty",
/// "first 100 bytes", "41 other bytes" or "no file".
QString seenFile(const QString& path, const QByteArray& content);
