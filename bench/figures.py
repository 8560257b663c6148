"""Figures with their spread, and the lines of the table."""

import dataclasses
import statistics


@dataclasses.dataclass
class Line:
    """One line of the table. A line without a target is only informative. `what` names what was
    measured and the reference of a ratio; `why` explains the figure in a few words."""

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
    """Returns a line with the median, the lowest and the highest of the values. The verdict is
    "unsettled" if the values are widely spread and the limit lies within their middle half."""
    middle = statistics.median(values)
    figure = f"{middle:.{places}f}{unit}"
    if len(values) > 1:
        figure += f" ({min(values):.{places}f} to {max(values):.{places}f})"
    if limit is None:
        return Line(topic, what, figure)
    # Compares the limit with the rounded figure, as printed, so that readers can check the verdict.
    reached = round(middle, places) <= limit
    if len(values) > 2:
        lower, _, upper = statistics.quantiles(values, n=4, method="inclusive")
        if lower < limit < upper and upper > 1.2 * lower:
            reached = f"unsettled, {'below' if reached else 'above'}"
    return Line(topic, what, figure, f"at most {limit:g}{unit}", reached, why,
                middle, limit)


def ratios(measured, reference):
    """Returns the ratio of each pair of values, which were measured one after the other."""
    return [ours / theirs for ours, theirs in zip(measured, reference)]


def alternating(count, measurements):
    """Calls each of the named functions `count` times, interleaved and in alternating order, so
    that other load on the machine affects all of them alike. Returns the results by name."""
    results = {name: [] for name in measurements}
    names = list(measurements)
    for turn in range(count):
        for name in names if turn % 2 == 0 else reversed(names):
            results[name].append(measurements[name]())
    return results


def field(results, name):
    return [result[name] for result in results]


def printed(lines):
    """Returns the table as text for a terminal."""
    head = Line("topic", "what", "figure, median (lowest to highest)", "target")
    rows = [[*map(str, (line.topic, line.what, line.figure, line.target)), line.verdict]
            for line in [head, *lines]]
    rows[0][4] = "verdict"
    widths = [max(len(row[i]) for row in rows) for i in range(4)]
    return "\n".join("  ".join([*(text.ljust(width) for text, width in zip(row, widths)), row[4]])
                     .rstrip() for row in rows)


def markdown(lines):
    """Returns the lines that have a limit as a Markdown table."""
    rows = ["| What | Figure, median (lowest to highest) | Target | Verdict | Why |",
            "| --- | --- | --- | --- | --- |"]
    rows += [f"| {line.what} | {line.figure} | {line.target} | {line.verdict} | {line.why} |"
             for line in lines if line.target]
    return "\n".join(rows)
