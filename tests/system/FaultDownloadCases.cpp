#include "tests/system/FaultCase.h"

using A = FaultAction;

const QList<FaultCase> downloadFaults = {
    {{}, A::Download, "whole"},
    {{"refuse=camera"}, A::Download, "empty, connect failed, return: -1"},
    {{"status=404"}, A::Download, "41 other bytes"},
    {{"status=500"}, A::Download, "53 other bytes"},
    {{"answer-delay=200"}, A::Download, "whole"},
    {{"no-reason"}, A::Download, "whole"},
    {{"long-type"}, A::Download, "whole"},
    {{"long-header=102400"}, A::Download, "whole"},
    {{"many-headers=10000"}, A::Download, "whole"},
    {{"odd-head-end"}, A::Download, "whole"},
    {{"split-head"}, A::Download, "whole"},
    {{"byte-by-byte=0"}, A::DownloadSmall, "whole"},
    // Bytes after the announced length are saved if they arrive in the same receive.
    {{"growing-recording=3000"}, A::DownloadSmall, "3500 other bytes"},
    {{"no-card"}, A::Download, "41 other bytes"},
    {{"swapped-card"}, A::Download, "4000 other bytes"},
    {{"length-offset=10"}, A::Download, "whole"},
    {{"length-offset=-39900"}, A::Download, "first 4096 bytes"},
    {{"length-text=4294967296"}, A::Download, "whole"},
    // None of the body is saved if the announced length is missing, unrecognised or negative;
    // empty-answer has no body.
    {{"length-text=-1"}, A::Download, "empty"},
    {{"no-length"}, A::Download, "empty"},
    {{"lower-case-names"}, A::Download, "empty"},
    {{"empty-answer"}, A::Download, "empty"},
    {{"chunked"}, A::Download, "empty"},
    {{"chunk-extension"}, A::Download, "empty"},
    {{"chunk-bad-hex"}, A::Download, "empty"},
    {{"chunk-size"}, A::Download, "empty"},
    {{"chunk-no-last"}, A::Download, "empty"},
    {{"chunk-trailers"}, A::Download, "empty"},
    // No end of the head is recognised, so the body is taken for a part of the head.
    {{"bare-lf"}, A::Download, "empty"},
    // What the program takes for the head announces no length.
    {{"continue-first"}, A::Download, "empty"},
    {{"garbage"}, A::Download, "empty"},
    // The connection ends before the body.
    {{"close-before-head"}, A::Download, "empty"},
    {{"reset-before-head"}, A::Download, "empty"},
    {{"close-in-head"}, A::Download, "empty"},
    {{"reset-in-head"}, A::Download, "empty"},
    {{"close-after-head"}, A::Download, "empty"},
    {{"reset-after-head"}, A::Download, "empty"},
    // The part of the body that arrived is saved.
    {{"close-mid-body=100"}, A::Download, "first 100 bytes"},
    {{"reset-mid-body=100"}, A::Download, "first 100 bytes"},

    {{"name-29"}, A::Download, "whole"},
    {{"name-space"}, A::Download, "whole"},
    {{"name-ampersand"}, A::Download, "whole"},
    {{"name-hash"}, A::Download, "whole"},
    {{"name-percent"}, A::Download, "whole"},
    {{"name-custom=A.MP4"}, A::Download, "whole"},
    {{"name-300"}, A::Download, "no file, Create file failed"},
    {{"name-markup"}, A::Download, "no file, Create file failed"},
    {{"name-slash"}, A::Download, "no file, Create file failed"},
    {{"name-outside"}, A::Download, "no file, Create file failed"},
    {{"name-parent"}, A::Download, "no file, Create file failed"},
    // The camera receives a name that is not on the card, so it answers with an error page.
    {{"name-line-end"}, A::Download, "43 other bytes"},
    {{"name-utf8"}, A::Download, "41 other bytes"},

    // In each of these cases the window is closed during the download.
    {{"stall=95"}, A::Stalled, "Download Progress: 1/1, bar 38000 of 40000, button disabled"},
    {{"silent=camera"}, A::Stalled, "Download Progress: 1/1, bar 0 of 100, button disabled"},
    {{"never-accept=camera"}, A::Stalled, "Download Progress: 1/1, bar 0 of 100, button disabled"},
    {{"down=camera"}, A::Stalled, "Download Progress: 1/1, bar 0 of 100, button disabled"},
    {{"byte-by-byte=1000"}, A::Stalled, "Download Progress: 1/1, bar 0 of 100, button disabled"},
    // A fault that has been cleared does not affect the download.
    {{"stall=95", "clear stall"}, A::Download, "whole"},
};
