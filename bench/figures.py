"""Figures, their spread, and the lines of the table."""

import dataclasses
import statistics


@dataclasses.dataclass
class Line:
    """One line of the table. Without a limit it is for information; a ratio is to the named
    reference. `why` says in a few words what the figure comes from."""

    topic: str
    what: str
    figure: str
    target: str = ""
    reached: object = None
    why: str = ""
    middle: float = 0
    limit: float = 0

    @property
    def verdict(self):
        return {None: "", True: "reached", False: "not reached"}.get(self.reached, self.reached)


def at_most(topic, what, values, limit, unit="", places=2, why=""):
    """A line whose figure is the median of the values, with the lowest and the highest. Where the
    limit is within the middle half of values that spread widely, nothing has been settled: that
    takes a quieter machine."""
    middle = statistics.median(values)
    figure = f"{middle:.{places}f}{unit}"
    if len(values) > 1:
        figure += f" ({min(values):.{places}f} to {max(values):.{places}f})"
    if limit is None:
        return Line(topic, what, figure)
    # The figure as it is printed decides: a reader has to be able to check it.
    reached = round(middle, places) <= limit
    if len(values) > 2:
        lower, _, upper = statistics.quantiles(values, n=4, method="inclusive")
        if lower < limit < upper and upper > 1.2 * lower:
            reached = f"unsettled, {'below' if reached else 'above'}"
    return Line(topic, what, figure, f"at most {limit:g}{unit}", reached, why,
                middle, limit)


def ratios(measured, reference):
    """Of pairs that were measured one after the other."""
    return [ours / theirs for ours, theirs in zip(measured, reference)]


def alternating(count, measurements):
    """Measures each of the named functions `count` times, interleaved and in alternating order, so
    that what else the machine does affects all alike. Returns the results by name."""
    results = {name: [] for name in measurements}
    names = list(measurements)
    for turn in range(count):
        for name in names if turn % 2 == 0 else reversed(names):
            results[name].append(measurements[name]())
    return results


def field(results, name):
    return [result[name] for result in results]


def printed(lines):
    """The table as text for a terminal."""
    head = Line("topic", "what", "figure, median (lowest to highest)", "target")
    rows = [[*map(str, (line.topic, line.what, line.figure, line.target)), line.verdict]
            for line in [head, *lines]]
    rows[0][4] = "verdict"
    widths = [max(len(row[i]) for row in rows) for i in range(4)]
    return "\n".join("  ".join([*(text.ljust(width) for text, width in zip(row, widths)), row[4]])
                     .rstrip() for row in rows)


def markdown(lines):
    """The table of verdicts: only what has a limit."""
    rows = ["| What | Figure, median (lowest to highest) | Target | Verdict | Why |",
            "| --- | --- | --- | --- | --- |"]
    rows += [f"| {line.what} | {line.figure} | {line.target} | {line.verdict} | {line.why} |"
             for line in lines if line.target]
    return "\n".join(rows)
