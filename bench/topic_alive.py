"""How soon the window responds during a download, and when the final progress is visible."""

import time

from figures import at_most, field
from peers import camera, driver, home, modules, shaped
from topic_download import NAME, SPEEDS

TOPIC = "alive"
LIMITS = {"1 Gbit/s": 5, "unthrottled": 16}  # milliseconds


def watched(folder, recordings, clock_offset):
    """Returns the figures of one download; `late` is the time in seconds from the last modification
    of the file until the bar is painted full."""
    result, = driver("bench_window", "watch", HOME=str(folder))
    file = recordings / NAME
    result["late"] = result["shownAt"] - (file.stat().st_mtime - clock_offset)
    file.unlink()
    return result


def measure(options):
    clock_offset = time.time() - time.monotonic()
    lines, data = [], {}
    for name, bits, whole, quick in SPEEDS:
        if name not in LIMITS:
            continue
        megabytes = quick if options.quick else whole
        with home() as (folder, recordings), modules(), shaped(bits) as in_network, \
                camera([megabytes], 0 if in_network else bits // 8):
            results = [watched(folder, recordings, clock_offset) for _ in range(options.pairs)]
        data[name] = results
        what = f"{megabytes} MiB, {name}"
        lines += [
            at_most(TOPIC, f"{what}, delay of a 5 ms timer, 99 of 100",
                    field(results, "percentile99"), LIMITS[name], " ms", 1,
                    why="no slot takes longer than setting the bar"),
            at_most(TOPIC, f"{what}, delay of a 5 ms timer, half of them", field(results, "median"),
                    None, " ms"),
            at_most(TOPIC, f"{what}, delay of a 5 ms timer, longest",
                    field(results, "longest"), None, " ms", 1),
            at_most(TOPIC, f"{what}, last progress after the last byte",
                    [1000 * late for late in field(results, "late")], 100, " ms", 1,
                    why="the signals keep up with the receives"),
        ]
    return lines, data
