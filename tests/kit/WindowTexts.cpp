#include "tests/kit/WindowTexts.h"

#include <algorithm>

#include <QByteArray>
#include <QFile>
#include <QIODevice>
#include <QtGlobal>

namespace support {

namespace {

std::vector<WindowText> readTable()
{
    QFile file(TEST_DATA "/texts.tsv");
    if (!file.open(QIODevice::ReadOnly)) {
        qFatal("%s: %s", qPrintable(file.fileName()), qPrintable(file.errorString()));
    }
    std::vector<WindowText> texts;
    const QStringList lines = QString::fromUtf8(file.readAll()).split('\n');
    // The first line names the columns; the last one ends the file.
    for (int number = 1; number < lines.size() - 1; ++number) {
        const QStringList fields = lines[number].split('\t');
        if (fields.size() != 5) {
            qFatal("%s:%d: not five fields", qPrintable(file.fileName()), number + 1);
        }
        const auto list = [](const QString& field) {
            return field.isEmpty() ? QStringList() : field.split(' ');
        };
        texts.push_back({fields[0], fields[1], fields[2], list(fields[3]), list(fields[4])});
    }
    return texts;
}

} // namespace

const std::vector<WindowText>& windowTexts()
{
    static const std::vector<WindowText> texts = readTable();
    return texts;
}

const WindowText& windowText(const QString& name)
{
    const std::vector<WindowText>& texts = windowTexts();
    const auto found = std::find_if(texts.begin(), texts.end(),
                                    [&name](const WindowText& text) { return text.name == name; });
    if (found == texts.end()) {
        qFatal("the table has no text %s", qPrintable(name));
    }
    return *found;
}

} // namespace support
