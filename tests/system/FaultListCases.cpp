#include "tests/system/FaultCase.h"

using A = FaultAction;

namespace {

const QString first = "REC00001.MP4|2020-01-31  12:45:02|39KB|1s";
const QString second = "REC00002.MP4|2021-12-31  23:59:59|KB|1s";
const QString healthy = first + '\n' + second;
const QString none = "no rows";
const QString noDetails = "|--  ::|KB|s";
// The rows if the program gets no details. After a chunked list, for example, it reads only the
// first line of each later body and drops that line.
const QString namesOnly = "REC00001.MP4" + noDetails + "\nREC00002.MP4" + noDetails;
const QString disabled = "\ndelete all is disabled";

QString named(const QString& name)
{
    return name + "|2020-01-31  12:45:02|39KB|1s\n" + second;
}

/// Returns the rows if the list contains this name but the camera returns no details for it.
QString unknown(const QString& name)
{
    return name + noDetails + '\n' + second;
}

/// Returns the rows for the generated card if the last row shows the recording with this number.
QString uniform(const QString& last)
{
    const QString details = "|2020-01-31  12:45:02|3KB|4s";
    return "REC00001.MP4" + details + "\n[" + last + " rows]\nREC00" + last + ".MP4" + details;
}

QString detailed(const QString& details)
{
    return "REC00001.MP4|" + details + "\nREC00002.MP4|" + details;
}

} // namespace

const QList<FaultCase> listFaults = {
    {{}, A::Browse, healthy},
    {{}, A::BrowseAgain, healthy},
    {{"count=0"}, A::Browse, none},
    {{"count=-5"}, A::Browse, none},
    {{"count=abc"}, A::Browse, none},
    {{"count=1234567890123456789012345678901234567890"}, A::Browse, healthy},
    {{"count-offset=1"}, A::Browse, healthy},
    {{"count-offset=-1"}, A::Browse, first},
    {{"no-count-markers"}, A::Browse, none},
    {{"entries=0"}, A::Browse, none},
    {{"entries=127"}, A::Browse, uniform("127")},
    {{"entries=128"}, A::Browse, uniform("128")},
    {{"entries=129"}, A::Browse, uniform("128")},
    {{"entries=10000"}, A::Browse, uniform("128")},
    {{"no-card"}, A::Browse, none},
    {{"no-card"}, A::BrowseAgain, none},
    {{"write-protected"}, A::Browse, healthy},
    // The count and the first details come from one camera, the list and the second details
    // from the other, whose card has the same names.
    {{"swapped-cameras"}, A::Browse, first + "\nREC00002.MP4|2020-01-31  12:45:02|3KB|4s"},
    {{"no-list-end"}, A::Browse, healthy},
    {{"infinite-list", "close-mid-body=1000000", "only=list"}, A::BrowseAgain, healthy},
    {{"no-semicolon"}, A::Browse, noDetails},
    {{"no-list-markers"}, A::Browse, noDetails + '\n' + noDetails},
    {{"list-padding=10240"}, A::Browse, healthy},
    // Where the receives end is chance, so the lost bytes are in an entry that is not shown.
    {{"list-padding=20971520", "entries=129"}, A::Browse, uniform("128")},

    {{"name-29"}, A::Browse, named("ZEPNA_20200131_124502_029.MP4")},
    {{"name-30"}, A::Browse, unknown("ZEPNA_20200131_124502_0030.MP4")},
    {{"name-300"}, A::Browse, unknown("N{296}.MP4")},
    {{"name-utf8"}, A::Browse, named("海底_01.MP4")},
    {{"name-space"}, A::Browse, named("REC 20200131 12.MP4")},
    {{"name-ampersand"}, A::Browse, named("REC&-name=B&C.MP4")},
    {{"name-hash"}, A::Browse, named("REC#1.MP4")},
    {{"name-percent"}, A::Browse, named("REC%41%2F%s.MP4")},
    {{"name-slash"}, A::Browse, named("SUB/REC.MP4")},
    {{"name-outside"}, A::Browse, named("../../REC.MP4")},
    {{"name-parent"}, A::Browse, named("..")},
    // The client rejects an address with a colon after a slash and sends nothing.
    {{"name-line-end"}, A::Browse, "REC\\r\\nX-Injected: 1|||\n" + second},
    {{"name-line-end=REC\\r\\nB.MP4"}, A::Browse, unknown("REC\\r\\nB.MP4")},
    {{"name-markup"}, A::Browse, named("<b>REC</b>.MP4")},
    {{"name-custom=A.MP4"}, A::Browse, named("A.MP4")},

    {{"info-reordered"}, A::Browse, healthy},
    {{"info-missing=create"}, A::Browse, "REC00001.MP4|--  ::|39KB|1s\nREC00002.MP4|--  ::|KB|1s"},
    // The sizes are the low 32 bits of the creation times: 899,931,414 bytes, and a negative
    // number, for which the text of the creation time is shown.
    {{"info-missing=size"},
     A::Browse,
     "REC00001.MP4|2020-01-31  12:45:02|858MB|1s\n"
     "REC00002.MP4|2021-12-31  23:59:59|20211231235959KB|1s"},
    {{"info-missing=time"},
     A::Browse,
     "REC00001.MP4|2020-01-31  12:45:02|39KB|39s\n"
     "REC00002.MP4|2021-12-31  23:59:59|KB|s"},
    {{"info-missing"}, A::Browse, "REC00001.MP4|||\nREC00002.MP4|||"},
    {{"info-create=20200131"},
     A::Browse,
     "REC00001.MP4|2020-01-31  ::|39KB|1s\nREC00002.MP4|2020-01-31  ::|KB|1s"},
    {{"info-create=abcdefghijklmn"},
     A::Browse,
     "REC00001.MP4|abcd-ef-gh  ij:kl:mn|39KB|1s\nREC00002.MP4|abcd-ef-gh  ij:kl:mn|KB|1s"},
    {{"info-size=1048576", "info-create=20200131124502"},
     A::Browse,
     detailed("2020-01-31  12:45:02|1MB|1s")},
    {{"info-time=-1", "info-size=1024", "info-create=20200131124502"},
     A::Browse,
     detailed("2020-01-31  12:45:02|1KB|-1s")},
    {{"info-long=31"}, A::Browse, detailed("1111-11-11  11:11:11|KB|1{31}s")},
    {{"info-long=32"}, A::Browse, detailed("1111-11-11  11:11:11|KB|1{32}s")},
    // The count of received bytes is never reset. It already exceeds the announced length of the
    // second details, which therefore end with their first receive, of at most 10,240 bytes.
    {{"info-long=4000"},
     A::Browse,
     "REC00001.MP4|1111-11-11  11:11:11|KB|1{4000}s\n"
     "REC00002.MP4|1111-11-11  11:11:11|KB|s"},
    {{"info-fails=1"}, A::Browse, "REC00001.MP4|||\n" + second},
};

const QList<FaultCase> answerFaults = {
    {{"refuse=camera"}, A::Browse, none},
    {{"refuse=camera"}, A::BrowseAgain, healthy},
    {{"status=404"}, A::Browse, "|||"},
    {{"status=500"}, A::Browse, "|||"},
    {{"status=404", "only=count"}, A::Browse, none},
    {{"status=404", "only=info"}, A::Browse, namesOnly},
    {{"status=201"}, A::Browse, healthy},
    {{"answer-delay=200"}, A::Browse, healthy},
    {{"no-reason"}, A::Browse, healthy},
    {{"lower-case-names"}, A::Browse, healthy},
    {{"no-length"}, A::Browse, healthy},
    {{"length-offset=-10"}, A::Browse, healthy},
    {{"length-offset=10"}, A::Browse, none},
    {{"length-offset=10000"}, A::BrowseAgain, healthy},
    {{"length-text=4294967296"}, A::Browse, healthy},
    {{"length-text=-1"}, A::Browse, none},
    {{"length-text=-1"}, A::BrowseAgain, healthy},
    {{"empty-answer"}, A::Browse, none},
    {{"empty-answer"}, A::BrowseAgain, healthy},
    {{"empty-answer", "only=list"}, A::Browse, none},
    {{"empty-answer", "only=list"}, A::BrowseAgain, healthy},
    {{"empty-answer", "only=info"}, A::Browse, "REC00001.MP4|||\nREC00002.MP4|||"},
    {{"chunked=1"}, A::Browse, none},
    {{"chunked", "only=list"}, A::Browse, namesOnly},
    {{"chunk-extension", "only=list"}, A::Browse, namesOnly},
    {{"chunk-trailers", "only=list"}, A::Browse, namesOnly},
    {{"chunk-bad-hex", "only=list"}, A::Browse, none},
    {{"chunk-size=80000000", "only=list"}, A::Browse, none},
    {{"chunk-no-last", "only=list"}, A::BrowseAgain, healthy},
    {{"bare-lf"}, A::BrowseAgain, healthy},
    {{"bare-lf"}, A::Browse, none},
    {{"odd-head-end"}, A::Browse, healthy},
    {{"continue-first"}, A::Browse, healthy},
    {{"long-header=102400"}, A::Browse, healthy},
    {{"many-headers=10000", "only=list"}, A::Browse, healthy},
    {{"long-type"}, A::Browse, healthy},
    {{"close-before-head"}, A::BrowseAgain, healthy},
    {{"reset-before-head"}, A::BrowseAgain, healthy},
    {{"close-in-head"}, A::BrowseAgain, healthy},
    {{"reset-in-head"}, A::BrowseAgain, healthy},
    {{"close-after-head"}, A::BrowseAgain, healthy},
    {{"reset-after-head"}, A::BrowseAgain, healthy},
    {{"close-before-head", "only=list"}, A::Browse, none},
    {{"close-in-head", "only=info"}, A::Browse, "REC00001.MP4|||\nREC00002.MP4|||"},
    {{"close-mid-body=8"}, A::Browse, none},
    {{"reset-mid-body=8"}, A::Browse, none},
    {{"split-head"}, A::Browse, healthy},
    {{"byte-by-byte=1", "only=count"}, A::Browse, healthy},
    // The count of received bytes is never reset: a list in single bytes ends 16 bytes early, and
    // details in single bytes end after their first receive. Without the pauses of 40 and 25
    // milliseconds, bytes could arrive together on a busy machine.
    {{"byte-by-byte=40", "only=list"}, A::Browse, first + '\n' + noDetails},
    {{"byte-by-byte=25", "only=info"}, A::Browse, namesOnly},
    {{"garbage"}, A::BrowseAgain, healthy},
    {{"garbage"}, A::Browse, none},
};

const QList<FaultCase> changeFaults = {
    {{}, A::Delete, second},
    {{}, A::DeleteAll, none + "\nmessage 已删除卡内所有文件"},
    {{}, A::Format, none + "\nmessage 格式化卡成功"},
    {{"success-bare"}, A::DeleteAll, none},
    {{"success-bare"}, A::Format, none},
    {{"success-and-more"}, A::DeleteAll, none},
    {{"success-and-more"}, A::Format, none},
    {{"error-word"}, A::DeleteAll, none},
    {{"error-word=Busy"}, A::Format, none},
    {{"no-card"}, A::DeleteAll, none},
    {{"no-card"}, A::Format, none},
    {{"write-protected"}, A::DeleteAll, none},
    {{"write-protected"}, A::Format, none},
    {{"no-card"}, A::Delete, second},
    {{"write-protected"}, A::Delete, second},
    // The answer to a single delete is not examined.
    {{"error-word"}, A::Delete, second},
    {{"status=404"}, A::Delete, second},
    {{"status=404"}, A::DeleteAll, none},
    {{"status=404"}, A::Format, none},
    {{"status=500"}, A::Format, none},
    {{"close-before-head"}, A::Delete, healthy + disabled},
    {{"reset-before-head"}, A::Delete, healthy + disabled},
    {{"refuse=camera"}, A::Delete, healthy + disabled},
    {{"close-before-head"}, A::DeleteAll, healthy},
    {{"reset-before-head"}, A::Format, healthy},
    {{"refuse=camera"}, A::Format, healthy},
    {{"link-lost-mid-command"}, A::Delete, second},
    {{"link-lost-mid-command"}, A::DeleteAll, none + "\nmessage 已删除卡内所有文件"},
    {{"link-lost-mid-command"}, A::Format, none + "\nmessage 格式化卡成功"},
};
