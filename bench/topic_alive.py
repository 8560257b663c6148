"""How soon the window answers while it downloads, and when the last progress is seen."""

import time

from figures import atMost, field
from peers import camera, driver, home, modules, shaped
from topic_download import NAME, SPEEDS

TOPIC = "alive"
LIMITS = {"1 Gbit/s": 5, "unthrottled": 16}  # milliseconds


def watched(folder, recordings, clockOffset):
    """One download; `late` is from the last byte in the file to the full bar, in seconds."""
    result, = driver("bench_window", "watch", HOME=str(folder))
    file = recordings / NAME
    result["late"] = result["shownAt"] - (file.stat().st_mtime - clockOffset)
    file.unlink()
    return result


def measure(options):
    clockOffset = time.time() - time.monotonic()
    lines, data = [], {}
    for name, bits, whole, quick in SPEEDS:
        if name not in LIMITS:
            continue
        megabytes = quick if options.quick else whole
        with home() as (folder, recordings), modules(), shaped(bits) as inNetwork, \
                camera([megabytes], 0 if inNetwork else bits // 8):
            results = [watched(folder, recordings, clockOffset) for _ in range(options.pairs)]
        data[name] = results
        what = f"{megabytes} MiB, {name}"
        lines += [
            atMost(TOPIC, f"{what}, delay of a 5 ms timer, 99 of 100",
                   field(results, "percentile99"), LIMITS[name], " ms", 1),
            atMost(TOPIC, f"{what}, delay of a 5 ms timer, half of them", field(results, "median"),
                   None, " ms"),
            atMost(TOPIC, f"{what}, delay of a 5 ms timer, longest",
                   field(results, "longest"), None, " ms", 1),
            atMost(TOPIC, f"{what}, last progress behind the last byte",
                   [1000 * late for late in field(results, "late")], 100, " ms", 1),
        ]
    return lines, data
