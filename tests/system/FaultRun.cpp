#include "tests/system/FaultRun.h"

#include "tests/kit/MessageBoxWatcher.h"
#include "tests/kit/StdoutCapture.h"
#include "tests/kit/TimeFactor.h"
#include "tests/kit/WindowTexts.h"

#include <QByteArray>
#include <QDir>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QList>
#include <QMessageBox>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QTest>

namespace {

const qint64 closingLimit = 2000 * support::timeFactor(); // milliseconds
constexpr int steadyTime = 450;                           // milliseconds
constexpr int reportInterval = 2000; // milliseconds, much longer than a report takes
/// Returns the text with line endings escaped, and each run of more than 20 equal characters
/// replaced by the character and the length of the run.
QString shown(const QString& text)
{
    QString result;
    for (int i = 0; i < text.size();) {
        int end = i;
        while (end < text.size() && text.at(end) == text.at(i)) {
            ++end;
        }
        QString one(text.at(i));
        one.replace('\r', "\\r").replace('\n', "\\n");
        result += end - i > 20 ? QString("%1{%2}").arg(one).arg(end - i) : one.repeated(end - i);
        i = end;
    }
    return result;
}

/// Number of rows up to which a table is shown whole. Of a larger one, only the first row, the
/// number of rows and the last row are shown.
constexpr int shownRows = 4;

} // namespace

QByteArray FaultCase::tag() const
{
    static const char* const actions[] = {
        "link",       "linked", "browse",   "browse again",   "delete",
        "delete all", "format", "download", "download small", "download under way"};
    return QByteArray(actions[static_cast<int>(action)]) + ": " + faults.join(' ');
}

QList<QByteArray> FaultCase::faultNames() const
{
    QList<QByteArray> names;
    for (const QByteArray& fault : faults) {
        if (!fault.startsWith("drop ") && !fault.startsWith("clear ")) {
            names.append(fault.split('=').first());
        }
    }
    return names;
}

const QList<CardFile> FaultRun::recordings = {
    {"REC00001.MP4", 40'000},
    {"REC00002.MP4", 500, "2021-12-31T23:59:59Z"},
};

FaultRun::FaultRun()
{
    // The files of an earlier case must not be mistaken for those of this one.
    QDir(QDir::homePath()).removeRecursively();
    QDir().mkpath(QDir::homePath() + "/Desktop");
}

QString FaultRun::downloadPath(const QString& name)
{
    return QDir::homePath() + "/Desktop/DCIM/" + name;
}

void FaultRun::startSimulator(const QStringList& arguments)
{
    QVERIFY(writeCard(m_folder.path(), recordings));
    QVERIFY2(
        m_simulator.start(QStringList{"--card", m_folder.path(), "--heartbeat", "200"} + arguments),
        qPrintable(m_simulator.error()));
    m_user.emplace();
    QObject::connect(&m_user->statusField(), &QLineEdit::textChanged,
                     [this](const QString& text) { m_statuses += text; });
}

void FaultRun::set(const QList<QByteArray>& faults)
{
    for (const QByteArray& fault : faults) {
        const bool isLine = fault.startsWith("drop ") || fault.startsWith("clear ");
        control(isLine ? fault : "fault " + fault);
    }
}

void FaultRun::control(const QByteArray& line)
{
    QVERIFY2(m_simulator.control(line), qPrintable(m_simulator.error()));
}

void FaultRun::link()
{
    m_user->clickLink();
    QVERIFY(eventuallyReported(
        [this] { return m_user->lineEdit("lineEditBootVer").text() == "v0.1"; }));
    QCOMPARE(m_user->status(), support::windowText("linked").english);
}

void FaultRun::browse()
{
    m_user->clickBrowse();
    QCOMPARE(m_user->table().rowCount(), 2);
}

void FaultRun::download(int row)
{
    m_user->chooseRows({row});
    const support::StdoutCapture standardOutput;
    m_user->clickDownload();
    QCOMPARE(m_user->downloadCount(), QString("1/1"));
    QVERIFY(support::eventually([this] { return m_user->isIdle(); }));
    m_printed = standardOutput.text();
}

void FaultRun::close()
{
    QElapsedTimer clock;
    clock.start();
    m_user.reset();
    const qint64 elapsed = clock.elapsed();
    QVERIFY2(elapsed < closingLimit, qPrintable(QString::number(elapsed) + " ms"));
    QVERIFY2(m_simulator.end(), qPrintable(m_simulator.error()));
}

QString FaultRun::seenTable() const
{
    const int rows = m_user->table().rowCount();
    QStringList lines;
    for (int row = 0; row < rows; ++row) {
        if (rows > shownRows && row == 1) {
            lines += QString("[%1 rows]").arg(rows);
            row = rows - 1;
        }
        lines += shown(m_user->row(row).join('|'));
    }
    return lines.isEmpty() ? QString("no rows") : lines.join('\n');
}

bool FaultRun::eventuallyReported(const std::function<bool()>& condition)
{
    for (int waited = 0; waited < support::busyLimit; waited += reportInterval) {
        if (support::eventually(condition, reportInterval)) {
            return true;
        }
        control("versions 7,300,600,100,10");
    }
    return condition();
}

QString FaultRun::seenLink() const
{
    return m_statuses.join(", ") + " / " + m_user->versions().join(' ').trimmed();
}

void FaultRun::compareLink(const FaultCase& faultCase)
{
    const QString& expected = faultCase.expected;
    const bool open = expected.endsWith("...");
    const QString start = open ? expected.chopped(3) : expected;
    const QString versions = start.mid(start.indexOf(" / ") + 3);
    const QString statuses = start.left(start.indexOf(" / "));
    const auto isSeen = [&] {
        const QString seen = m_statuses.join(", ");
        return m_user->versions().join(' ').trimmed() == versions &&
               (open ? seen.startsWith(statuses) : seen == statuses);
    };
    const bool seen = eventuallyReported(isSeen);
    QVERIFY2(seen, qPrintable("expected " + expected + "\nsaw " + seenLink()));
    if (!open) {
        QTest::qWait(faultCase.watched);
        QCOMPARE(seenLink(), expected);
    }
}

void FaultRun::playDownload(const FaultCase& faultCase, int row)
{
    const bool isRenamed = faultCase.faults.value(0).startsWith("name-");
    link();
    if (isRenamed) {
        set(faultCase.faults);
    }
    browse();
    if (!isRenamed) {
        set(faultCase.faults);
    }
    if (QTest::currentTestFailed()) {
        return;
    }
    const QString name = QString::fromLatin1(m_user->names().at(row).toLatin1());
    download(row);
    QString printed = QString::fromLatin1(m_printed).trimmed().replace('\n', "; ");
    QCOMPARE(seenFile(downloadPath(name), recordings.at(row).content()) +
                 (printed.isEmpty() ? QString() : ", " + printed),
             faultCase.expected);
    // Nothing else has been saved.
    const auto all = QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot;
    QCOMPARE(QDir(QDir::homePath()).entryList(all), QStringList{"Desktop"});
    QCOMPARE(QDir(QDir::homePath() + "/Desktop").entryList(all), QStringList{"DCIM"});
    QVERIFY(QDir(downloadPath({})).entryList(all).size() <= 1);
}

void FaultRun::playStalled(const FaultCase& faultCase)
{
    link();
    browse();
    set(faultCase.faults);
    if (QTest::currentTestFailed()) {
        return;
    }
    m_user->chooseRows({0});
    const support::StdoutCapture standardOutput;
    m_user->clickDownload();
    const auto seen = [this] {
        return QString("%1 %2, bar %3 of %4, button %5")
            .arg(m_user->downloadLabel(), m_user->downloadCount())
            .arg(m_user->progressBar().isVisible() ? QString::number(m_user->progressBar().value())
                                                   : "hidden")
            .arg(m_user->progressBar().maximum())
            .arg(m_user->canDownload() ? "enabled" : "disabled");
    };
    support::eventually([&] { return seen() == faultCase.expected; });
    QTest::qWait(steadyTime);
    QCOMPARE(seen(), faultCase.expected);
}

void FaultRun::playChange(const FaultCase& faultCase)
{
    link();
    browse();
    const QString statusesBefore = m_statuses.join(", ");
    set(faultCase.faults);
    if (QTest::currentTestFailed()) {
        return;
    }
    support::MessageBoxWatcher watcher;
    if (faultCase.expected.contains("message")) {
        watcher.answerNext(QMessageBox::Ok);
    }
    if (faultCase.action == FaultAction::Delete) {
        m_user->chooseRows({0});
        m_user->clickDelete();
    } else if (faultCase.action == FaultAction::DeleteAll) {
        m_user->clickDeleteAll();
    } else {
        m_user->clickFormat();
    }
    QString seen = seenTable();
    for (const support::SeenBox& box : watcher.boxes()) {
        seen += "\nmessage " + box.text;
    }
    if (!m_user->canDeleteAll()) {
        seen += "\ndelete all is disabled";
    }
    QCOMPARE(seen, faultCase.expected);
    if (faultCase.faultNames().contains("link-lost-mid-command")) {
        const QString after = statusesBefore + ", Link Fail!, Link Success!";
        QVERIFY2(support::eventually([&] { return m_statuses.join(", ").startsWith(after); }),
                 qPrintable(m_statuses.join(", ")));
    }
}

void FaultRun::play(const FaultCase& faultCase)
{
    startSimulator();
    if (QTest::currentTestFailed()) {
        return;
    }
    switch (faultCase.action) {
    case FaultAction::Link:
        set(faultCase.faults);
        m_user->clickLink();
        compareLink(faultCase);
        break;
    case FaultAction::Linked:
        link();
        set(faultCase.faults);
        compareLink(faultCase);
        break;
    case FaultAction::BrowseAgain:
        browse();
        set(faultCase.faults);
        m_user->clickBrowse();
        QCOMPARE(seenTable(), faultCase.expected);
        break;
    case FaultAction::Browse:
        set(faultCase.faults);
        m_user->clickBrowse();
        QCOMPARE(seenTable(), faultCase.expected);
        break;
    case FaultAction::Delete:
    case FaultAction::DeleteAll:
    case FaultAction::Format:
        playChange(faultCase);
        break;
    case FaultAction::Download:
        playDownload(faultCase, 0);
        break;
    case FaultAction::DownloadSmall:
        playDownload(faultCase, 1);
        break;
    case FaultAction::Stalled:
        playStalled(faultCase);
        break;
    }
}

void addFaultRows(const QList<FaultCase>& cases)
{
    QTest::addColumn<int>("index");
    for (int i = 0; i < cases.size(); ++i) {
        QTest::newRow(cases.at(i).tag().constData()) << i;
    }
}

void playFaultRow(const QList<FaultCase>& cases)
{
    QFETCH(int, index);
    FaultRun run;
    run.play(cases.at(index));
    if (!QTest::currentTestFailed()) {
        run.close();
    }
}
