"""One recording from nginx, beside curl, wget, aria2c and a bare loop of reads and writes."""

import time

from figures import alternating, atMost, field, ratios
from peers import (CAMERA, RECORDINGS, Failed, camera, driver, home, modules, shaped, usageOf)

TOPIC = "download"
NAME = "REC00000.MP4"
TARGET = RECORDINGS + NAME
# Name, bits a second, megabytes, the same in a quick run.
SPEEDS = (("100 Mbit/s", 100_000_000, 128, 8), ("1 Gbit/s", 1_000_000_000, 512, 64),
          ("unthrottled", 0, 512, 128))


class Download:
    """One download each by whoever is asked, into a file that is not there before."""

    def __init__(self, folder, recordings, megabytes, startsOfSecond):
        self.folder = folder
        self.file = recordings / NAME
        self.size = megabytes << 20
        self.startsOfSecond = startsOfSecond

    def finish(self, result):
        if self.file.stat().st_size != self.size:
            raise Failed(f"{self.file} has {self.file.stat().st_size} bytes, not {self.size}")
        self.file.unlink()
        return result

    def begin(self):
        """A server that limits a rate counts it in whole seconds."""
        if self.startsOfSecond:
            time.sleep(1 - time.time() % 1)

    def window(self):
        self.begin()
        return self.finish(driver("bench_window", "download", HOME=str(self.folder))[0])

    def loop(self):
        self.begin()
        return self.finish(driver("bench_bare_loop", TARGET, self.file)[0])

    def by(self, *command):
        self.begin()
        return self.finish(usageOf([*command, CAMERA + TARGET]))

    def curl(self):
        return self.by("curl", "-s", "-o", self.file)

    def wget(self):
        return self.by("wget", "-q", "-O", self.file)

    def aria2c(self):
        return self.by("aria2c", "-q", "--file-allocation=none", "-d", self.file.parent, "-o", NAME)


def measureAt(options, bits, megabytes, everyone):
    with home() as (folder, recordings), modules(), shaped(bits) as inNetwork, \
            camera([megabytes], 0 if inNetwork else bits // 8):
        download = Download(folder, recordings, megabytes, not inNetwork)
        names = ["window", "loop", "curl"] + (["wget", "aria2c"] if everyone else [])
        return alternating(options.pairs, {name: getattr(download, name) for name in names})


def linesOf(name, megabytes, results, wallToCurl, wallToLoop, cpuToLoop):
    """Only what has a limit, or explains one."""
    what = f"{megabytes} MiB, {name}"
    seconds = {key: field(values, "seconds") for key, values in results.items()}
    cpu = {key: field(values, "cpu") for key, values in results.items()}
    lines = [atMost(TOPIC, f"{what}, time, to curl's", ratios(seconds["window"], seconds["curl"]),
                    wallToCurl, places=3),
             atMost(TOPIC, f"{what}, time, to the bare loop's",
                    ratios(seconds["window"], seconds["loop"]), wallToLoop, places=3),
             atMost(TOPIC, f"{what}, processor, to the bare loop's",
                    ratios(cpu["window"], cpu["loop"]), cpuToLoop)]
    for key in results:
        peak = sorted(field(results[key], "peakKilobytes"))[len(results[key]) // 2] / 1024
        lines.append(atMost(TOPIC, f"{what}, {key}: seconds; peak memory {peak:.1f} MB",
                            seconds[key], None, " s"))
        lines.append(atMost(TOPIC, f"{what}, {key}: processor", cpu[key], None, " s"))
    return lines


def measure(options):
    lines, data = [], {}
    for name, bits, whole, quick in SPEEDS:
        megabytes = quick if options.quick else whole
        results = measureAt(options, bits, megabytes, not bits)
        data[name] = results
        wallToCurl, wallToLoop, cpuToLoop = {
            "100 Mbit/s": (1.01, None, 1.5), "1 Gbit/s": (1.05, None, None),
            "unthrottled": (1.6, 1.25, None)}[name]
        lines += linesOf(name, megabytes, results, wallToCurl, wallToLoop, cpuToLoop)
    return lines, data
