#!/usr/bin/python3
"""Measures the built program and prints the results.

Called by bench/run, which builds the programs and creates the private network and the display.
"""

import argparse
import importlib
import json
import os
import pathlib
import platform
import sys
import time

from figures import markdown, printed
from peers import Failed, ROOT

QUIET = 0.5  # load
LONGEST_WAIT = 180  # seconds
TOPICS = ("download", "alive", "browse", "start", "idle", "exchange", "growth")


def machine():
    """Returns a description of the machine on which the figures were measured."""
    processor = next((line.split(":", 1)[1].strip() for line in open("/proc/cpuinfo")
                      if line.startswith("model name")), platform.machine())
    memory = os.sysconf("SC_PAGE_SIZE") * os.sysconf("SC_PHYS_PAGES") / 2**30
    system = platform.freedesktop_os_release().get("PRETTY_NAME", "")
    return (f"{os.cpu_count()} cores of {processor}, {memory:.0f} GiB, {system}, "
            f"Linux {platform.release()}")


def publish(text):
    """Replaces the text between the two marker comments in docs/performance.md."""
    page = ROOT / "docs/performance.md"
    begin, end = "<!-- figures: begin -->", "<!-- figures: end -->"
    before, _, rest = page.read_text(encoding="utf-8").partition(begin)
    _, _, after = rest.partition(end)
    page.write_text(f"{before}{begin}\n{text}\n{end}{after}", encoding="utf-8")


def wait_for_rest():
    """Waits, for a limited time, until the load of the build has decreased; returns the load."""
    deadline = time.monotonic() + LONGEST_WAIT
    while os.getloadavg()[0] > QUIET and time.monotonic() < deadline:
        time.sleep(5)
    return os.getloadavg()[0]


def main():
    parser = argparse.ArgumentParser(prog="./check --bench")
    parser.add_argument("topics", nargs="*", metavar="TOPIC")
    parser.add_argument("--quick", action="store_true")
    parser.add_argument("--pairs", type=int)
    parser.add_argument("--publish", action="store_true")
    options = parser.parse_args()
    options.pairs = options.pairs or (3 if options.quick else 7)
    topics = options.topics or TOPICS

    if options.publish and options.topics:
        parser.error("--publish measures all topics; name none")
    load = os.getloadavg()[0] if options.quick else wait_for_rest()
    rest = "a machine at rest" if load <= QUIET else f"a machine NOT at rest (load {load:.1f})"
    when = f"{time.strftime('%Y-%m-%d')} on {rest}: {machine()}"
    print(f"Measured {when}", flush=True)
    lines, data = [], {}
    for topic in topics:
        print(f"... {topic}", file=sys.stderr, flush=True)
        measured, data[topic] = importlib.import_module(f"topic_{topic}").measure(options)
        lines += measured
    print(printed(lines))

    import charts
    folder = ROOT / ("docs/images" if options.publish else "build/bench/charts")
    folder.mkdir(parents=True, exist_ok=True)
    for topic in topics:
        charts.draw(topic, data[topic], folder / f"performance-{topic}.svg")
    pathlib.Path(ROOT / "build/bench/results.json").write_text(json.dumps(
        {"machine": machine(), "lines": [vars(line) for line in lines], "data": data}, indent=1),
        encoding="utf-8")
    if options.publish:
        publish(f"Measured {when}; {options.pairs} runs each.\n\n{markdown(lines)}")
    print(f"Charts in {folder.relative_to(ROOT)}, all figures in build/bench/results.json")
    return 0


if __name__ == "__main__":
    try:
        sys.exit(main())
    except Failed as failure:
        print(f"bench: {failure}", file=sys.stderr)
        sys.exit(1)
