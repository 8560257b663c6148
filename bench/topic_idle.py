"""CPU time and wake-ups of the idle window, when only opened and when linked to the vehicle."""

import os
import pathlib
import subprocess
import time

from figures import Line, at_most
from peers import BUILT, Failed, vehicle

TOPIC = "idle"


def threads(process):
    """Returns, for each thread by name and number, its CPU seconds and voluntary waits so far."""
    result = {}
    for task in pathlib.Path(f"/proc/{process}/task").iterdir():
        fields = (task / "stat").read_text().rpartition(")")[2].split()
        status = dict(line.split(":", 1) for line in (task / "status").read_text().splitlines())
        name = f'{status["Name"].strip()} {task.name}'
        ticks = int(fields[11]) + int(fields[12])
        result[name] = (ticks / os.sysconf("SC_CLK_TCK"),
                        int(status["voluntary_ctxt_switches"]))
    return result


def watch(job, seconds):
    process = subprocess.Popen([BUILT / "bench_window", job, str(seconds + 10)],
                               stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
    try:
        if b"begin" not in process.stdout.readline():
            raise Failed(f"bench_window {job} does not run")
        time.sleep(2)  # so that the work of starting up is not measured
        before = threads(process.pid)
        time.sleep(seconds)
        after = threads(process.pid)
    finally:
        process.kill()
        process.wait()
    cpu = sum(after[name][0] - before[name][0] for name in after if name in before)
    waits = {name.rpartition(" ")[0] + f" {index}": (after[name][1] - before[name][1]) / seconds
             for index, name in enumerate(sorted(after)) if name in before}
    return 100 * cpu / seconds, waits


def measure(options):
    seconds = 15 if options.quick else 60
    lines, data = [], {}
    with vehicle("--sample"):
        for job, what in (("idle", "open"), ("linked", "linked")):
            share, waits = watch(job, seconds)
            data[what] = {"percent": share, "waits": waits}
            lines.append(at_most(TOPIC, f"{what}, CPU time over {seconds} s", [share], 0.3,
                                 " % of a core"))
            lines.append(Line(TOPIC, f"{what}, wake-ups a second", f"{sum(waits.values()):.1f}"))
            lines += [Line(TOPIC, f"{what}, wake-ups a second of thread {name}", f"{value:.1f}")
                      for name, value in waits.items() if value >= 0.05]
    return lines, data
