"""Downloading one recording from nginx, compared with the smallest window that does the same, a
bare loop of reads and writes, curl, wget and aria2c."""

import time

from figures import alternating, at_most, field, ratios
from peers import (CAMERA, RECORDINGS, Failed, camera, driver, home, modules, shaped, usage_of)

TOPIC = "download"
NAME = "REC00000.MP4"
TARGET = RECORDINGS + NAME
# Name, bits per second (0: unlimited), megabytes, megabytes in a quick run.
SPEEDS = (("100 Mbit/s", 100_000_000, 128, 8), ("1 Gbit/s", 1_000_000_000, 512, 64),
          ("unthrottled", 0, 512, 128))

SHOWN = {"least": "the least window's", "loop": "the bare loop's", "curl": "curl's"}
REQUIRED_WORK = "the same signals and repaints; the rest is the form's larger window"
# Reference, compared quantity, limit, explanation of the figure.
LIMITS = {
    "100 Mbit/s": (("least", "time", 1.1, "the network sets the pace"),
                   ("least", "cpu", 1.1, REQUIRED_WORK),
                   ("curl", "time", 1.01, "the network sets the pace"),
                   ("loop", "cpu", 1.5, "one signal per 4,096 bytes and the bar's repaints")),
    "1 Gbit/s": (("least", "time", 1.1, "the network sets the pace"),
                 ("least", "cpu", 1.1, REQUIRED_WORK),
                 ("curl", "time", 1.05, "the network sets the pace")),
    "unthrottled": (("least", "time", 1.1, REQUIRED_WORK),
                    ("least", "cpu", 1.1, REQUIRED_WORK),
                    ("loop", "time", 1.25, "signals are handled on the other core"),
                    ("curl", "time", 1.6, "reads of 4,096 bytes; curl reads far more at once")),
}


class Download:
    """The download with each of the programs, into a new file that is removed afterwards."""

    def __init__(self, folder, recordings, megabytes, starts_of_second):
        self.folder = folder
        self.file = recordings / NAME
        self.size = megabytes << 20
        self.starts_of_second = starts_of_second

    def finish(self, result):
        if self.file.stat().st_size != self.size:
            raise Failed(f"{self.file} has {self.file.stat().st_size} bytes, not {self.size}")
        self.file.unlink()
        return result

    def begin(self):
        """Waits for the start of a second if nginx limits the rate, which it does per second."""
        if self.starts_of_second:
            time.sleep(1 - time.time() % 1)

    def window(self):
        self.begin()
        return self.finish(driver("bench_window", "download", HOME=str(self.folder))[0])

    def least(self):
        self.begin()
        return self.finish(driver("bench_least_window", TARGET, self.file)[0])

    def loop(self):
        self.begin()
        return self.finish(driver("bench_bare_loop", TARGET, self.file)[0])

    def by(self, *command):
        self.begin()
        return self.finish(usage_of([*command, CAMERA + TARGET]))

    def curl(self):
        return self.by("curl", "-s", "-o", self.file)

    def wget(self):
        return self.by("wget", "-q", "-O", self.file)

    def aria2c(self):
        return self.by("aria2c", "-q", "--file-allocation=none", "-d", self.file.parent, "-o", NAME)


def measure_at(options, bits, megabytes, everyone):
    with home() as (folder, recordings), modules(), shaped(bits) as in_network, \
            camera([megabytes], 0 if in_network else bits // 8):
        download = Download(folder, recordings, megabytes, not in_network)
        names = ["window", "least", "loop", "curl"] + (["wget", "aria2c"] if everyone else [])
        return alternating(options.pairs, {name: getattr(download, name) for name in names})


def lines_of(name, megabytes, results, limits):
    what = f"{megabytes} MiB, {name}"
    seconds = {key: field(values, "seconds") for key, values in results.items()}
    cpu = {key: field(values, "cpu") for key, values in results.items()}
    lines = []
    for reference, measured, limit, why in limits:
        values, kind = (seconds, "time") if measured == "time" else (cpu, "CPU time")
        lines.append(at_most(TOPIC, f"{what}: {kind}, to {SHOWN[reference]}",
                             ratios(values["window"], values[reference]), limit, places=3,
                             why=why))
    for key in results:
        peak = sorted(field(results[key], "peakKilobytes"))[len(results[key]) // 2] / 1024
        lines.append(at_most(TOPIC, f"{what}, {key}: time; peak memory {peak:.1f} MB",
                             seconds[key], None, " s"))
        lines.append(at_most(TOPIC, f"{what}, {key}: CPU time", cpu[key], None, " s"))
    return lines


def measure(options):
    lines, data = [], {}
    for name, bits, whole, quick in SPEEDS:
        megabytes = quick if options.quick else whole
        results = measure_at(options, bits, megabytes, not bits)
        data[name] = results
        lines += lines_of(name, megabytes, results, LIMITS[name])
    return lines, data
