"""Browsing a card, compared with one curl process that makes the same requests, each over a new
connection."""

import os
import pathlib
import statistics

from figures import alternating, at_most, field, ratios
from peers import CAMERA, driver, folder_in_memory, run, vehicle

TOPIC = "browse"
COUNTS = (16, 64, 128)
COMMANDS = CAMERA + "/cgi-bin/hi3510/"


def addresses(names):
    """Returns the addresses that a browse requests."""
    return [COMMANDS + "getfilecount.cgi?",
            COMMANDS + f"getfilelist.cgi?&-start=1&-end={len(names)}",
            *(COMMANDS + f"getfileinfo.cgi?&-name=sd/DCIM/100ZEPNA/{name}" for name in names)]


def curl_browse(folder, count):
    """Returns the seconds that one curl process reports for the requests of a browse of `count`
    files, without its start-up. "Connection: close" keeps curl from reusing a connection."""
    configuration = pathlib.Path(folder, "requests")
    configuration.write_text(
        'silent\nhttp1.1\nheader = "Connection: close"\nwrite-out = "%{time_total}\\n"\n' + "".join(
            f'url = "{address}"\noutput = "{os.devnull}"\n'
            for address in addresses([f"REC{i:05}.MP4" for i in range(count)])), encoding="ascii")
    return sum(map(float, run(["curl", "-K", configuration])["output"].split()))


def measure_card(options, count):
    """Returns the seconds per request, for the window and for curl."""
    requests = count + 2
    with folder_in_memory() as folder:
        card = pathlib.Path(folder, "card")
        card.mkdir()
        for i in range(count):
            (card / f"REC{i:05}.MP4").write_bytes(b"x" * 2048)
        with vehicle("--card", card):
            results = alternating(options.pairs, {
                "window": lambda: statistics.median(
                    field(driver("bench_window", "browse", 3), "seconds")) / requests,
                "curl": lambda: curl_browse(folder, count) / requests})
    return results


def measure(options):
    results = {count: measure_card(options, count) for count in COUNTS}
    lines = [at_most(TOPIC, f"{count} recordings, time per file, to curl's",
                     ratios(result["window"], result["curl"]), 1.0,
                     why="heads are read byte by byte; the time includes painting the rows")
             for count, result in results.items()]
    lines += [at_most(TOPIC, f"{count} recordings, time per file",
                      [value * 1e6 for value in result["window"]], None, " us", 0)
              for count, result in results.items()]
    grown = ratios(results[COUNTS[-1]]["window"], results[COUNTS[0]]["window"])
    lines.append(at_most(TOPIC, f"time per file, {COUNTS[-1]} recordings to {COUNTS[0]}", grown,
                         1.1, why="the work per file does not depend on the rows"))
    return lines, results
