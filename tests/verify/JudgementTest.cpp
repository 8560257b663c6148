#include "verify/Judgement.h"

#include "tests/kit/Rows.h"
#include "tests/kit/TestMain.h"

using verify::Reason;
using verify::Recording;
using verify::Result;
using verify::Summary;
using verify::Verdict;

Q_DECLARE_METATYPE(Reason)
Q_DECLARE_METATYPE(Summary)
Q_DECLARE_METATYPE(Verdict)

namespace {

Recording judged(Result result)
{
    Recording recording;
    recording.result = result;
    return recording;
}

Summary completed(std::vector<Recording> notSafe = {})
{
    Summary summary;
    summary.complete = true;
    summary.counted = 3;
    summary.listed = 3;
    summary.notSafe = std::move(notSafe);
    return summary;
}

} // namespace

class JudgementTest : public QObject
{
    Q_OBJECT

private slots:
    void namesThatTheWindowAsksForAreComparable_data();
    void namesThatTheWindowAsksForAreComparable();
    void doubtCountsMoreThanWhatIsKnown_data();
    void doubtCountsMoreThanWhatIsKnown();
    void missingBytesAreThoseStillToFetch();
    void onlyEqualOnesAreSafe();
};

void JudgementTest::namesThatTheWindowAsksForAreComparable_data()
{
    const support::Rows<QByteArray, Reason> row("name", "reason");
    row("ordinary", "REC_1.MP4", Reason::None);
    row("spaces and marks", "a b&c#d%41:e.MP4", Reason::None);
    row("30 bytes", QByteArray(30, 'x'), Reason::None);
    row("hidden", ".x", Reason::None);
    row("three dots", "...", Reason::None);
    row("tab", "a\tb", Reason::None);
    row("empty", "", Reason::NoName);
    row("slash", "a/b", Reason::NotDownloadable);
    row("two up", "../../a", Reason::NotDownloadable);
    row("dot", ".", Reason::NotDownloadable);
    row("dots", "..", Reason::NotDownloadable);
    row("UTF-8 within Latin-1", "\xc3\xa9", Reason::NotDownloadable);
    row("Chinese", "\xe6\xb5\xb7", Reason::NotDownloadable);
    row("Latin-1", "\xe9", Reason::NotDownloadable);
    row("carriage return", "a\rb", Reason::NotDownloadable);
    row("line feed", "a\nb", Reason::NotDownloadable);
}

void JudgementTest::namesThatTheWindowAsksForAreComparable()
{
    QFETCH(QByteArray, name);
    QTEST(verify::reasonAgainstName(name.toStdString()), "reason");
}

void JudgementTest::doubtCountsMoreThanWhatIsKnown_data()
{
    const support::Rows<Summary, Verdict, int> row("summary", "verdict", "status");
    Summary empty = completed();
    empty.counted = 0;
    empty.listed = 0;
    Summary disagreeing = completed();
    disagreeing.counted = 4;
    Summary disagreeingEmpty = empty;
    disagreeingEmpty.counted = 4;
    Summary changed = completed({judged(Result::NotHere)});
    changed.changed = true;
    Summary failed = completed({judged(Result::NotHere)});
    failed.complete = false;
    Summary failedAtOnce;

    row("all the same", completed(), Verdict::Safe, 0);
    row("empty card", empty, Verdict::Empty, 0);
    row("one missing", completed({judged(Result::NotHere)}), Verdict::NotSafe, 1);
    row("one cannot be compared", completed({judged(Result::Unknown)}), Verdict::Unknown, 2);
    row("one missing, one not comparable",
        completed({judged(Result::Unknown), judged(Result::NotHere)}), Verdict::NotSafe, 1);
    row("asked for and nowhere", completed({judged(Result::Nowhere)}), Verdict::NotSafe, 1);
    row("counts disagree", disagreeing, Verdict::Unknown, 2);
    row("counted, but none listed", disagreeingEmpty, Verdict::Unknown, 2);
    row("changed meanwhile", changed, Verdict::Unknown, 2);
    row("failed half-way", failed, Verdict::Unknown, 2);
    row("failed at once", failedAtOnce, Verdict::Unknown, 2);
}

void JudgementTest::doubtCountsMoreThanWhatIsKnown()
{
    QFETCH(Summary, summary);
    const Verdict verdict = verify::verdictOf(summary);
    QTEST(verdict, "verdict");
    QTEST(verify::statusOf(verdict), "status");
}

void JudgementTest::missingBytesAreThoseStillToFetch()
{
    Recording recording = judged(Result::Shorter);
    recording.cardBytes = 100;
    recording.localBytes = 30;
    QCOMPARE(quint64(recording.missingBytes()), quint64(70));
    recording.result = Result::NotHere;
    recording.localBytes.reset();
    QCOMPARE(quint64(recording.missingBytes()), quint64(100));
    recording.result = Result::Longer;
    recording.localBytes = 130;
    QCOMPARE(quint64(recording.missingBytes()), quint64(0));
}

void JudgementTest::onlyEqualOnesAreSafe()
{
    QVERIFY(judged(Result::SameSize).isSafe());
    QVERIFY(judged(Result::SameContent).isSafe());
    for (const Result result : {Result::Different, Result::Shorter, Result::Longer, Result::NotHere,
                                Result::NotOnCard, Result::Nowhere, Result::Unknown}) {
        QVERIFY(!judged(result).isSafe());
    }
}

BELUN_TEST(JudgementTest)

#include "JudgementTest.moc"
