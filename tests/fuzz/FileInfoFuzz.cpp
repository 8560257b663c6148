// A recording's details: from the camera's answer to the texts in the window's table.
//
// Input: the answer.
#include "app/MainWindow.h"
#include "card/FileTable.h"
#include "tests/fuzz/Decimal.h"
#include "tests/fuzz/Require.h"

#include <string_view>

#include <QApplication>
#include <QMetaObject>
#include <QTableWidget>

namespace {

/// The window with one row in its table. It is made once and lasts as long as the process.
class Scene
{
public:
    Scene() : m_table(*m_window.findChild<QTableWidget*>(QStringLiteral("tableWidgetFileInfo")))
    {
        card::addNameRow(m_table, 0, QStringLiteral("name"));
    }

    /// The slot is private: it is called as a signal would.
    void parse(const char* answer)
    {
        static const int slot =
            m_window.metaObject()->indexOfSlot("ParseFileInfo(const char*,int)");
        int row = 0;
        void* arguments[] = {nullptr, &answer, &row};
        m_window.qt_metacall(QMetaObject::InvokeMetaMethod, slot, arguments);
    }

    QString shown(card::Column column) const { return m_table.item(0, column)->text(); }

private:
    MainWindow m_window;
    QTableWidget& m_table;
};

Scene& scene()
{
    static int argumentCount = 1;
    static char programName[] = "fuzz_FileInfo";
    static char* arguments[] = {programName, nullptr};
    // Never destroyed: what Qt holds to its end then counts as held, not as leaked.
    static auto& application = *new QApplication(argumentCount, arguments);
    static auto& theScene = *new Scene;
    Q_UNUSED(application);
    return theScene;
}

/// Takes over the value of a key. False if it is missing: the value of the one before is left.
bool take(std::string_view answer, std::string_view key, std::string& value)
{
    const std::size_t start = answer.find(key);
    if (start == std::string_view::npos) {
        return false;
    }
    const std::size_t end = answer.find("\";", start + key.size());
    if (end == std::string_view::npos) {
        return false;
    }
    value = answer.substr(start + key.size(), end - start - key.size());
    return true;
}

std::string dateOf(const std::string& digits)
{
    std::string padded = digits;
    padded.resize(14, '\0');
    std::string date = padded.substr(0, 4) + '-' + padded.substr(4, 2) + '-' + padded.substr(6, 2) +
                       "  " + padded.substr(8, 2) + ':' + padded.substr(10, 2) + ':' +
                       padded.substr(12, 2);
    std::string shown;
    for (const char byte : date) {
        if (byte != '\0') {
            shown += byte;
        }
    }
    return shown;
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string input = fuzz::textOf(data, size);
    const fuzz::ExactCString answer(input);
    const std::string_view text = input.c_str();
    scene().parse(answer.get());

    std::string value;
    take(text, "create=\"", value);
    fuzz::require(scene().shown(card::DateColumn) == QString::fromStdString(dateOf(value)),
                  "the date is the creation time with separators");

    // A percent sign with a digit behind it may stand for the unit: such texts are not judged.
    if (text.find('%') != std::string_view::npos) {
        return 0;
    }
    take(text, "size=\"", value);
    const QString shownSize = scene().shown(card::SizeColumn);
    fuzz::require(shownSize.endsWith(QLatin1String("KB")) ||
                      shownSize.endsWith(QLatin1String("MB")),
                  "a size has a unit");
    const auto bytes = fuzz::shortDecimal(value);
    if (bytes) {
        const bool large = *bytes >= 1048576;
        const int count = *bytes / (large ? 1048576 : 1024);
        value = count == 0 ? "" : std::to_string(count);
        fuzz::require(shownSize == QString::fromStdString(value + (large ? "MB" : "KB")),
                      "a size is cut to whole units, and none of them is no digit");
    }

    // Without a duration the number of the size is shown, which is known here only if it was short.
    if (take(text, "time=\"", value) || bytes) {
        fuzz::require(scene().shown(card::DurationColumn) == QString::fromStdString(value + "s"),
                      "the duration is the text as it was received");
    }
    return 0;
}
