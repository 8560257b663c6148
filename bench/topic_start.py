"""Time from the start of the process to the first painted frame, compared with a bare window."""

import json
import statistics

from figures import Line, alternating, at_most, field, ratios
from peers import BUILT, ROOT, run

TOPIC = "start"
ICON = ROOT / "resources/Images/appicon.png"


def start(name, *arguments):
    result = run([BUILT / name, *arguments])
    told = json.loads(result["output"].splitlines()[-1])
    return {"seconds": told["painted"] - result["begin"],
            "cpu": told["cpu"], "megabytes": told["residentKilobytes"] / 1024}


def measure(options):
    # More runs than for other topics, because each run is short.
    results = alternating(options.pairs * 2 + 1, {
        "window": lambda: start("bench_start"),
        "bare": lambda: start("bench_bare_window"),
        "bare with icon": lambda: start("bench_bare_window", ICON)})
    seconds = {name: field(values, "seconds") for name, values in results.items()}
    memory = {name: field(values, "megabytes") for name, values in results.items()}
    cpu = {name: statistics.median(field(values, "cpu")) for name, values in results.items()}
    icon = 1000 * (cpu["bare with icon"] - cpu["bare"])
    lines = [at_most(TOPIC, "first frame, to a bare window's",
                     ratios(seconds["window"], seconds["bare"]), 1.3,
                     why="both spend most of this time loading libraries"),
             at_most(TOPIC, "first frame, CPU time, to a bare window's",
                     ratios(field(results["window"], "cpu"), field(results["bare"], "cpu")), None)]
    lines += [at_most(TOPIC, f"first frame, {name}", [1000 * value for value in values], None,
                      " ms", 0) for name, values in seconds.items()]
    lines.append(Line(TOPIC, "the icon's share, CPU time", f"{icon:.1f} ms"))
    lines.append(at_most(TOPIC, "resident memory above the bare window's",
                         [ours - bare for ours, bare in zip(memory["window"], memory["bare"])], 6,
                         " MB", 1))
    return lines, {"seconds": seconds, "megabytes": memory}
