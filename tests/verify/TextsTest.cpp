// The English texts for the user.
#include "verify/Texts.h"

#include "tests/kit/Rows.h"
#include "tests/kit/TestMain.h"

using verify::Advance;
using verify::CameraError;
using verify::Letters;
using verify::Reason;
using verify::Recording;
using verify::Result;
using verify::Step;
using verify::Summary;
using verify::Texts;
using verify::Trouble;
using verify::Verdict;

Q_DECLARE_METATYPE(Recording)
Q_DECLARE_METATYPE(Summary)

namespace {

Recording judged(Result result, std::optional<std::uint64_t> card = {},
                 std::optional<std::uint64_t> local = {})
{
    Recording recording;
    recording.name = "A.MP4";
    recording.entry = 1;
    recording.result = result;
    recording.cardBytes = card;
    recording.localBytes = local;
    return recording;
}

Recording unknown(Reason reason, CameraError error = {})
{
    Recording recording = judged(Result::Unknown, 4);
    recording.reason = reason;
    recording.error = error;
    recording.announced = 5;
    recording.systemError = EACCES;
    return recording;
}

Summary safe(std::size_t count, bool contents = false, bool named = false)
{
    Summary summary;
    summary.verdict = Verdict::Safe;
    summary.complete = true;
    summary.contents = contents;
    summary.named = named;
    summary.recordings = summary.listed = summary.counted = summary.safe = count;
    return summary;
}

Summary notSafe(std::size_t safeOnes, const std::vector<std::string>& names)
{
    Summary summary = safe(safeOnes + names.size());
    summary.verdict = Verdict::NotSafe;
    summary.safe = safeOnes;
    for (const std::string& name : names) {
        summary.notSafe.push_back(judged(Result::NotHere));
        summary.notSafe.back().name = name;
    }
    summary.folder = "/d/DCIM/";
    return summary;
}

} // namespace

class TextsTest : public QObject
{
    Q_OBJECT

private slots:
    void lineSaysWhatIsKnownOfARecording_data();
    void lineSaysWhatIsKnownOfARecording();
    void summaryIsForATiredPilot_data();
    void summaryIsForATiredPilot();
    void failureSaysWhatCouldNotBeDone_data();
    void failureSaysWhatCouldNotBeDone();
    void progressShowsRateAndTimeLeft();
    void namesAreShownFitForTheTerminal();
    void percentSignsInNamesAreNoPlaces();
};

void TextsTest::lineSaysWhatIsKnownOfARecording_data()
{
    const support::Rows<Recording, QString> rows("recording", "line");
    const auto row = [&rows](const Recording& recording, const char* line) {
        rows(line, recording, line);
    };
    Recording different = judged(Result::Different, 9, 9);
    different.difference = 4;
    Recording nameless = unknown(Reason::NoName);
    nameless.name.clear();
    nameless.entry = 7;

    row(judged(Result::SameSize, 1572864, 1572864), "A.MP4: same size (1,572,864 bytes)");
    row(judged(Result::SameSize, 1, 1), "A.MP4: same size (1 byte)");
    row(judged(Result::SameContent, 0, 0), "A.MP4: the same, byte for byte (0 bytes)");
    row(different, "A.MP4: same size, but the contents differ from byte 5 onwards");
    row(judged(Result::Shorter, 5000, 4000), "A.MP4: shorter by 1,000 bytes: the download was cut");
    row(judged(Result::Longer, 4, 5), "A.MP4: longer by 1 byte: the tail of an older file");
    row(judged(Result::NotHere, 4), "A.MP4: not on this computer (4 bytes)");
    row(judged(Result::NotOnCard), "A.MP4: not on the card");
    row(judged(Result::Nowhere), "A.MP4: neither on the card nor on this computer");
    row(nameless, "entry 7 of the list: cannot be compared: it has no name");

    const auto doubt = [&rows](Reason reason, const QString& text, const CameraError& error = {}) {
        rows(qPrintable(text), unknown(reason, error), "A.MP4: cannot be compared: " + text);
    };
    doubt(Reason::NoDetails, "no details: the camera answered with status 404",
          {Trouble::Status, 404});
    doubt(Reason::NoContent,
          "no content: the camera closed the connection before its answer was complete",
          {Trouble::Closed});
    doubt(Reason::NoContent, "no content: the camera sent more than it announced",
          {Trouble::Surplus});
    doubt(Reason::LengthsDiffer, "the camera sends 5 bytes, and its details say 4 bytes");
    doubt(Reason::TwoEntries, "the card's list has this name more than once");
    doubt(Reason::NotDownloadable, "the window cannot download a recording of this name");
    doubt(Reason::TooLarge, "it has 2 GiB or more, which the window cannot download (4 bytes)");
    doubt(Reason::Link, "a link has this name on this computer");
    doubt(Reason::Folder, "a folder has this name on this computer");
    doubt(Reason::NoFile, "what has this name on this computer is not a file");
    doubt(Reason::NameTooLong, "no file on this computer can have this name");
    doubt(Reason::FileError, "the file on this computer cannot be read: Permission denied");
    doubt(Reason::FileChanged, "the file on this computer was changed meanwhile");
}

void TextsTest::lineSaysWhatIsKnownOfARecording()
{
    QFETCH(Recording, recording);
    QTEST(QString::fromStdString(Texts(Letters::Utf8, 15).line(recording)), "line");
}

void TextsTest::summaryIsForATiredPilot_data()
{
    const support::Rows<Summary, QString> row("summary", "text");
    Summary empty = safe(0);
    empty.verdict = Verdict::Empty;
    Summary room = notSafe(1, {"B.MP4", "C.MP4"});
    room.missingBytes = 1000;
    room.freeBytes = 20000;
    Summary noRoom = room;
    noRoom.freeBytes = 999;
    Summary unknownRoom = room;
    unknownRoom.freeBytes.reset();
    Summary disagreeing = notSafe(1, {"B.MP4"});
    disagreeing.counted = 12;
    disagreeing.listed = 2;
    Summary changed = safe(3);
    changed.verdict = Verdict::Unknown;
    changed.changed = true;
    Summary failed;
    Summary long129 = notSafe(128, {"B.MP4"});
    Summary long128 = notSafe(127, {"B.MP4"});

    const QString sizes = " with the same size. Sizes only; --content compares every byte.";
    const QString contents = ", the same, byte for byte.";
    row("sizes", safe(37), "All 37 recordings of the card are on this computer" + sizes);
    row("one size", safe(1), "The only recording of the card is on this computer" + sizes);
    row("contents", safe(1234, true),
        "All 1,234 recordings of the card are on this computer" + contents);
    row("one content", safe(1, true),
        "The only recording of the card is on this computer" + contents);
    row("named sizes", safe(2, false, true), "All 2 named recordings are on this computer" + sizes);
    row("one named size", safe(1, false, true), "The named recording is on this computer" + sizes);
    row("named contents", safe(2, true, true),
        "All 2 named recordings are on this computer" + contents);
    row("one named content", safe(1, true, true),
        "The named recording is on this computer" + contents);
    row("empty card", empty, "The card holds no recordings.");

    const auto doubt = [&row](const char* tag, const Summary& summary, const QString& text) {
        row(tag, summary, "Do not delete yet: " + text);
    };
    const QString two = "not known to be safe (2 of 3): B.MP4, C.MP4. Missing here: 1,000 bytes";
    doubt("not safe", notSafe(35, {"B.MP4", "C.MP4"}),
          "not known to be safe (2 of 37): B.MP4, C.MP4.");
    doubt("room enough", room, two + "; free in /d/DCIM/: 20,000 bytes.");
    doubt("too little room", noRoom, two + "; free in /d/DCIM/: only 999 bytes. Make room first.");
    doubt("room not known", unknownRoom, two + ".");
    doubt("disagreeing", disagreeing,
          "the camera's count (12) and its list (2) disagree; not known to be safe (1 of 2): "
          "B.MP4.");
    doubt("changed", changed, "the card changed meanwhile, so compare again.");
    doubt("failed", failed, "the comparison could not be completed.");
    doubt("more than the window lists", long129,
          "not known to be safe (1 of 129): B.MP4. The window lists only the first 128 recordings "
          "of a card.");
    doubt("as many as the window lists", long128, "not known to be safe (1 of 128): B.MP4.");
}

void TextsTest::summaryIsForATiredPilot()
{
    QFETCH(Summary, summary);
    QTEST(QString::fromStdString(Texts(Letters::Utf8, 15).summary(summary)), "text");
}

void TextsTest::failureSaysWhatCouldNotBeDone_data()
{
    const support::Rows<Summary, QString> rows("summary", "text");
    const auto row = [&rows](Step step, const CameraError& error, const char* text) {
        Summary summary;
        summary.failedStep = step;
        summary.failedName = "A\x1b.MP4";
        summary.error = error;
        rows(text, summary, text);
    };
    row(Step::Count, {Trouble::NoRoute, 0, "Network unreachable"},
        "The recordings cannot be counted: there is no route to the camera at 192.168.1.120 "
        "(Network unreachable).");
    row(Step::Count, {Trouble::Refused},
        "The recordings cannot be counted: the camera at 192.168.1.120 refuses the connection.");
    row(Step::Count, {Trouble::NoConnection},
        "The recordings cannot be counted: the camera at 192.168.1.120 did not answer within 15 "
        "s.");
    row(Step::List, {Trouble::Silent},
        "The recordings cannot be listed: the camera sent nothing for 15 s.");
    row(Step::List, {Trouble::TooLong},
        "The recordings cannot be listed: the camera's answer is too long.");
    row(Step::Details, {Trouble::TooSlow},
        "No details of A\\u{1B}.MP4: the camera's answer took more than 60 s.");
    row(Step::Content, {Trouble::NotUnderstood},
        "No content of A\\u{1B}.MP4: the camera's answer was not understood.");
    row(Step::Count, {}, "");

    Summary folder;
    folder.folder = "/d/DCIM/";
    folder.systemError = EACCES;
    rows("folder", folder, "The folder /d/DCIM/ cannot be read: Permission denied.");
}

void TextsTest::failureSaysWhatCouldNotBeDone()
{
    QFETCH(Summary, summary);
    QTEST(QString::fromStdString(Texts(Letters::Utf8, 15).failure(summary)), "text");
}

void TextsTest::progressShowsRateAndTimeLeft()
{
    const Texts texts(Letters::Utf8, 15);
    Advance advance;
    QCOMPARE(texts.progress(advance, 0), std::string("Counting the recordings"));
    advance.step = Step::Details;
    advance.number = 3;
    advance.count = 200;
    QCOMPARE(texts.progress(advance, 0), std::string("Size of 3/200"));
    advance.step = Step::Content;
    advance.name = "A.MP4";
    advance.total = 4000000000;
    QCOMPARE(texts.progress(advance, 0), std::string("3/200 A.MP4: 0 %"));
    advance.bytes = 1000000000;
    QCOMPARE(texts.progress(advance, 10), std::string("3/200 A.MP4: 25 %, 100.0 MB/s, 00:30 left"));
    QCOMPARE(texts.progress(advance, 1300),
             std::string("3/200 A.MP4: 25 %, 0.8 MB/s, 1:05:00 left"));
    advance.bytes = 0;
    advance.total = 1;
    QCOMPARE(texts.progress(advance, 1), std::string("3/200 A.MP4: 0 %"));
    advance.total = 0;
    QCOMPARE(texts.progress(advance, 1), std::string("3/200 A.MP4: 100 %"));
}

void TextsTest::namesAreShownFitForTheTerminal()
{
    Recording recording = judged(Result::NotOnCard);
    recording.name = "\xe6\xb5\xb7\x1b[2J";
    QCOMPARE(Texts(Letters::Utf8, 15).line(recording),
             std::string("\xe6\xb5\xb7\\u{1B}[2J: not on the card"));
    QCOMPARE(Texts(Letters::Ascii, 15).line(recording),
             std::string("\\u{6D77}\\u{1B}[2J: not on the card"));
    Summary summary = notSafe(0, {"\x1b]0;x\x07"});
    QVERIFY(Texts(Letters::Utf8, 15).summary(summary).find('\x1b') == std::string::npos);
    QVERIFY(Texts(Letters::Utf8, 15).noDesktop("\x1b").find('\x1b') == std::string::npos);
    QVERIFY(Texts(Letters::Utf8, 15)
                .wrongOption({verify::WrongOption::Kind::Unknown, "-\x1b"})
                .find('\x1b') == std::string::npos);
}

void TextsTest::percentSignsInNamesAreNoPlaces()
{
    Recording recording = judged(Result::Shorter, 5, 4);
    recording.name = "%1%2%3";
    QCOMPARE(Texts(Letters::Utf8, 15).line(recording),
             std::string("%1%2%3: shorter by 1 byte: the download was cut"));
    Summary summary = notSafe(0, {"%1%2%3%4"});
    summary.folder = "%1%2%3";
    summary.missingBytes = 1;
    summary.freeBytes = 2;
    QCOMPARE(Texts(Letters::Utf8, 15).summary(summary),
             std::string("Do not delete yet: not known to be safe (1 of 1): %1%2%3%4. Missing "
                         "here: 1 bytes; free in %1%2%3: 2 bytes."));
}

BELUN_TEST(TextsTest)

#include "TextsTest.moc"
