"""Draws one chart per topic from the topic's results."""

import statistics

import matplotlib

matplotlib.use("Agg")
matplotlib.rcParams.update({
    "svg.hashsalt": "belun", "svg.fonttype": "none", "font.size": 9,
    "axes.spines.top": False, "axes.spines.right": False, "axes.spines.bottom": False,
    "figure.facecolor": "white", "savefig.facecolor": "white"})
import matplotlib.pyplot as plt  # noqa: E402  imported after the backend has been chosen

import topic_alive  # noqa: E402

OURS = {"window", "http", "open", "linked"}
COLOUR_OF_OURS, COLOUR_OF_OTHERS, COLOUR_OF_LIMITS = "#2f6fd0", "#b5b5b5", "#c0392b"
SHOWN_NAMES = {"window": "BELUN-DownLoad", "http": "BELUN-DownLoad", "least": "least window",
               "loop": "bare loop", "bare": "bare window", "bare with icon": "with an icon",
               "open": "window open", "linked": "linked"}
LEGEND = "Less is better. Bar: median. Line: lowest to highest. Dashed: limit."


def bars(axes, series, title, unit, limit=None, places=2):
    """Draws a horizontal bar for the median of each named series, labelled with its value."""
    medians = {name: statistics.median(values) for name, values in series.items()}
    widest = max([*(max(values) for values in series.values()), limit or 0])
    for position, (name, values) in enumerate(series.items()):
        colour = COLOUR_OF_OURS if name in OURS else COLOUR_OF_OTHERS
        axes.barh(position, medians[name], color=colour, height=0.6)
        axes.plot([min(values), max(values)], [position] * 2, color="black", linewidth=1)
        axes.text(1.04 * widest, position, f"{medians[name]:.{places}f} {unit}", va="center")
    if limit is not None:
        axes.axvline(limit, color=COLOUR_OF_LIMITS, linestyle="--", linewidth=1)
        axes.text(limit, len(series) - 0.15, f"limit {limit:.{places}f} {unit}", ha="center",
                  va="center", color=COLOUR_OF_LIMITS, fontsize=8, backgroundcolor="white")
    axes.set_yticks(range(len(series)), [SHOWN_NAMES.get(name, name) for name in series])
    axes.set(xlim=(0, 1.25 * widest), ylim=(-0.5, len(series) + 0.1), xticks=[])
    axes.invert_yaxis()
    axes.set_title(title, loc="left", pad=12)


def of(results, name, factor=1):
    return {key: [factor * each[name] for each in values] for key, values in results.items()}


def times(limit, reference):
    """Returns the limit in the unit of the axis: the ratio times the median of the reference."""
    return limit * statistics.median(reference)


def download(data):
    figure, axes = plt.subplots(3, 1, figsize=(7.5, 6), height_ratios=[4, 4, 6])
    for panel, (speed, results) in zip(axes, data.items()):
        seconds = of(results, "seconds")
        bars(panel, seconds, f"One recording, {speed}", "s", times(1.1, seconds["least"]))
    return figure


def alive(data):
    figure, axes = plt.subplots(len(data), 1, figsize=(7.5, 1.2 * len(data) + 0.6))
    for panel, (speed, results) in zip(axes, data.items()):
        bars(panel, {"window": [each["percentile99"] for each in results]},
             f"Delay of the window's thread, 99 of 100, {speed}", "ms",
             topic_alive.LIMITS[speed], 1)
    return figure


def browse(data):
    figure, axes = plt.subplots(len(data), 1, figsize=(7.5, 5))
    for panel, (count, results) in zip(axes, data.items()):
        micro = {name: [1e6 * value for value in values] for name, values in results.items()}
        bars(panel, micro, f"Time per file, {count} recordings", "us",
             statistics.median(micro["curl"]), 0)
    return figure


def start(data):
    figure, axes = plt.subplots(2, 1, figsize=(7.5, 4))
    seconds = {name: [1000 * value for value in values]
               for name, values in data["seconds"].items()}
    bars(axes[0], seconds, "First frame", "ms", times(1.3, seconds["bare"]), 0)
    bars(axes[1], data["megabytes"], "Resident memory", "MB",
         6 + statistics.median(data["megabytes"]["bare"]), 1)
    return figure


def idle(data):
    figure, axes = plt.subplots(figsize=(7.5, 2))
    bars(axes, {name: [state["percent"]] for name, state in data.items()}, "CPU time when idle",
         "% of a core", 0.3)
    return figure


def exchange(data):
    figure, axes = plt.subplots(figsize=(7.5, 2))
    micro = {name: [1e6 * value for value in values] for name, values in data["seconds"].items()}
    bars(axes, micro, "GET of 300 bytes, beside libcurl", "us", statistics.median(micro["curl"]),
         0)
    return figure


def growth(data):
    """Draws each figure of the topic as a share of its limit."""
    figure, axes = plt.subplots(figsize=(7.5, 2.8))
    bars(axes, {name: [figure / limit] for name, (figure, limit) in data["shares"].items()},
         "Cost of one more, as a share of its limit", "", 1)
    for bar in axes.patches:
        bar.set_color(COLOUR_OF_OURS)
    return figure


def draw(topic, data, path):
    figure = globals()[topic](data)
    points = 72 * figure.get_figheight()
    figure.text(0.01, 3 / points, LEGEND, fontsize=8, color="#555555")
    figure.tight_layout(rect=(0, 0.03, 1, 1))
    figure.savefig(path, metadata={"Date": None, "Creator": None})
    plt.close(figure)
