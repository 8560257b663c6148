#include "tests/kit/RecordedText.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStringList>

namespace support {

namespace {

constexpr char recordVariable[] = "BELUN_RECORD";

bool isRecording()
{
    return !qEnvironmentVariableIsEmpty(recordVariable);
}

bool write(const QString& path, const QString& text)
{
    QFile file(path);
    const QByteArray bytes = text.toUtf8();
    return QDir().mkpath(QFileInfo(path).path()) &&
           file.open(QIODevice::WriteOnly | QIODevice::Truncate) &&
           file.write(bytes) == bytes.size();
}

QString lineOf(const QStringList& lines, int number)
{
    return number < lines.size() ? lines[number] : QStringLiteral("(the end)");
}

/// Returns ", in [HEADING]" for the section that contains the line, or an empty text if there is
/// none.
QString sectionOf(const QStringList& lines, int number)
{
    for (int i = qMin(number, static_cast<int>(lines.size()) - 1); i >= 0; --i) {
        if (lines[i].startsWith('[')) {
            return ", in " + lines[i];
        }
    }
    return {};
}

} // namespace

QString whyNotToRecord()
{
    return isRecording() && !qEnvironmentVariableIsEmpty("CI")
               ? QStringLiteral("recording is off in continuous integration: unset ") +
                     recordVariable
               : QString();
}

QString dataPath(const QString& name)
{
    return TEST_DATA "/" + name;
}

QString differenceToRecorded(const QString& name, const QString& text)
{
    if (!isRecording()) {
        return differenceToData(name, text);
    }
    const QString path = dataPath(name);
    return write(path, text)
               ? path + " was recorded again; review the changes and run again without " +
                     recordVariable
               : "cannot write " + path;
}

QString differenceToData(const QString& name, const QString& text)
{
    const QString path = dataPath(name);
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return path + ": " + file.errorString();
    }
    const QStringList expected = QString::fromUtf8(file.readAll()).split('\n');
    const QStringList seen = text.split('\n');
    if (expected == seen) {
        return {};
    }
    int number = 0;
    while (lineOf(expected, number) == lineOf(seen, number)) {
        ++number;
    }
    const QString kept = QCoreApplication::applicationDirPath() + "/seen/" + name;
    return QStringLiteral("%1, line %2%3\n   expected: %4\n   seen:     %5\n   %6 %7")
        .arg(path)
        .arg(number + 1)
        .arg(sectionOf(seen, number), lineOf(expected, number), lineOf(seen, number),
             write(kept, text) ? QStringLiteral("all that was seen:")
                               : QStringLiteral("cannot write"),
             kept);
}

} // namespace support
