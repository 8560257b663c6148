"""Small GETs of the HTTP client, each over a new connection, compared with libcurl; and single
functions of the libraries."""

import json
import pathlib

from figures import Line, alternating, at_most, field, ratios
from peers import BUILT, CAMERA, camera, driver, run

TOPIC = "exchange"


def exchanges(options, by):
    count = 300 if options.quick else 1000
    result, = driver("bench_exchange", by, CAMERA + "/small", count)
    return {name: result[name] / count for name in ("seconds", "cpu")}


def parts(options):
    """Returns the nanoseconds that each function takes, measured by Google Benchmark."""
    output = run([BUILT / "bench_micro", "--benchmark_format=json",
                  f"--benchmark_min_time={0.05 if options.quick else 0.5}"])["output"]
    return {part["name"]: part["cpu_time"] for part in json.loads(output)["benchmarks"]}


def measure(options):
    with camera([1]) as (folder, _):
        pathlib.Path(folder, "www/small").write_bytes(b"x" * 300)
        results = alternating(options.pairs, {
            "http": lambda: exchanges(options, "http"),
            "curl": lambda: exchanges(options, "curl")})
    seconds = {name: field(result, "seconds") for name, result in results.items()}
    cpu = {name: field(result, "cpu") for name, result in results.items()}
    micro = parts(options)
    lines = [
        at_most(TOPIC, "GET of 300 bytes, time, to libcurl's easy interface",
                ratios(seconds["http"], seconds["curl"]), 1.0,
                why="the head takes one system call per byte, by design"),
        at_most(TOPIC, "GET of 300 bytes, CPU time, to libcurl's",
                ratios(cpu["http"], cpu["curl"]), None),
        at_most(TOPIC, "GETs of 300 bytes a second", [1 / value for value in seconds["http"]],
                None, places=0),
    ]
    lines += [Line(TOPIC, f"part {name}", f"{value:,.0f} ns") for name, value in micro.items()]
    return lines, {"seconds": seconds, "micro": micro}
