"""Whether time and memory per item stay constant as the number of items grows."""

import pathlib
import statistics

from figures import Line, at_most
from peers import CAMERA, camera, driver, folder_in_memory, home, modules, vehicle

TOPIC = "growth"
ROWS = (16, 32, 64, 128)
KILOBYTES = (1, 10, 100, 1000, 20_000)


def selection(options):
    """Returns, for each number of rows, the microseconds per row of collecting the selection."""
    result = {}
    for count in ROWS:
        with folder_in_memory() as folder:
            for i in range(count):
                pathlib.Path(folder, f"REC{i:05}.MP4").write_bytes(b"x")
            with vehicle("--card", folder):
                times = [driver("bench_window", "select", 200)[0]["seconds"]
                         for _ in range(options.pairs)]
        result[count] = [1e6 * value / count for value in times]
    return result


def answers(options):
    """Returns, for each size in kilobytes, the seconds per answer and the growth of the memory."""
    result = {}
    with camera([1]) as (folder, _):
        for size in KILOBYTES:
            entries = b"sd/DCIM/100ZEPNA/REC00000.MP4;" * (size * 1000 // 30)
            pathlib.Path(folder, f"www/list{size}").write_bytes(entries + b"\r\n")
            times = [driver("bench_exchange", "http", CAMERA + f"/list{size}", 10)[0]
                     for _ in range(options.pairs)]
            result[size] = {"seconds": [each["seconds"] / 10 for each in times],
                            "grownKilobytes": [each["grownKilobytes"] for each in times]}
    return result


def downloads(options):
    count = 120 if options.quick else 300
    with home() as (folder, _), modules(), camera([1]):
        return driver("bench_window", "downloads", count, HOME=str(folder))


def thirds(values):
    """Returns the medians of the last and of the first third of the values. The first third begins
    after five values, which include work that is done only once."""
    part = len(values) // 3
    return statistics.median(values[-part:]), statistics.median(values[5:5 + part])


def measure(options):
    per_row, per_answer, per_download = selection(options), answers(options), downloads(options)
    most, fewest = per_row[ROWS[-1]], per_row[ROWS[0]]
    lines = [at_most(TOPIC, f"selection, time per row, {ROWS[-1]} rows to {ROWS[0]}",
                     [many / few for many, few in zip(most, fewest)], 1.25,
                     why="rows are inserted in order")]

    big, middle = per_answer[KILOBYTES[-1]], per_answer[KILOBYTES[-2]]
    factor = KILOBYTES[-1] / KILOBYTES[-2]
    lines.append(at_most(TOPIC, "list answer, time per megabyte, 20 MB to 1 MB",
                         [many / few / factor for many, few in zip(big["seconds"],
                                                                   middle["seconds"])], 1.25,
                         why="read in blocks, appended to one string"))
    lines.append(at_most(TOPIC, "list answer of 20 MB, memory to its size",
                         [each / KILOBYTES[-1] for each in big["grownKilobytes"]], 3,
                         why="a string grows by doubling"))

    seconds = [each["seconds"] for each in per_download]
    late, early = thirds(seconds)
    lines.append(at_most(TOPIC, f"{len(seconds)} downloads, time each, last third to first",
                         [late / early], 1.25,
                         why="finished downloads are kept, but never searched"))
    memory = [each["residentKilobytes"] for each in per_download]
    last = memory[-len(memory) // 3:]
    lines.append(at_most(TOPIC, f"{len(seconds)} downloads, memory each in the last third",
                         [(last[-1] - last[0]) / (len(last) - 1)], 20, " kB", 1,
                         why="the thread object and two descriptors stay, as required"))
    lines.append(Line(TOPIC, f"{len(seconds)} downloads, memory of the first two thirds",
                      f"{(last[0] - memory[0]) / 1024:.1f} MB"))
    return lines, {"shares": {line.what: (line.middle, line.limit)
                              for line in lines if line.target},
                   "selection": per_row, "answers": per_answer, "seconds": seconds,
                   "memory": memory}
