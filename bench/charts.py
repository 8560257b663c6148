"""One chart per topic, from what the topic measured."""

import statistics

import matplotlib

matplotlib.use("Agg")
matplotlib.rcParams.update({"svg.hashsalt": "belun", "svg.fonttype": "none", "font.size": 9,
                            "axes.spines.top": False, "axes.spines.right": False})
import matplotlib.pyplot as plt  # noqa: E402  behind the choice of what it draws with

COLOURS = {"window": "#5999f7", "http": "#5999f7"}
OTHER = "#b5b5b5"


def bars(axes, series, unit, title):
    """A bar for each name's median, with a line from its lowest to its highest."""
    for position, (name, values) in enumerate(series.items()):
        middle = statistics.median(values)
        axes.bar(position, middle, color=COLOURS.get(name, OTHER), width=0.6)
        axes.plot([position] * 2, [min(values), max(values)], color="black", linewidth=1)
    axes.set_xticks(range(len(series)), list(series), rotation=20, ha="right")
    axes.set_ylabel(unit)
    axes.set_ylim(bottom=0)
    axes.set_title(title)


def of(results, name, factor=1):
    return {key: [factor * each[name] for each in values] for key, values in results.items()}


def download(data):
    figure, axes = plt.subplots(2, len(data), figsize=(9, 5.4))
    for column, (speed, results) in zip(axes.T, data.items()):
        bars(column[0], of(results, "seconds"), "seconds", speed)
        bars(column[1], of(results, "cpu"), "seconds of processor", "")
    return figure


def alive(data):
    figure, axes = plt.subplots(1, 2, figsize=(8, 3))
    for name, title, one in (("percentile99", "timer of 5 ms, 99 of 100 late by at most", 1),
                             ("late", "last progress behind the last byte", 1000)):
        bars(axes[int(one == 1000)], of(data, name, one), "milliseconds", title)
    return figure


def browse(data):
    figure, axes = plt.subplots(figsize=(6, 3.2))
    for name in ("window", "curl"):
        axes.plot(list(data), [1e6 * statistics.median(data[count][name]) for count in data],
                  marker="o", color=COLOURS.get(name, OTHER), label=name)
    axes.set(xlabel="recordings on the card", ylabel="microseconds per file", xticks=list(data))
    axes.set_ylim(bottom=0)
    axes.legend(frameon=False)
    return figure


def start(data):
    figure, axes = plt.subplots(1, 2, figsize=(8, 3))
    bars(axes[0], {name: [1000 * value for value in values]
                   for name, values in data["seconds"].items()}, "milliseconds", "first frame")
    bars(axes[1], data["megabytes"], "megabytes", "resident memory")
    return figure


def idle(data):
    figure, axes = plt.subplots(1, 2, figsize=(8, 3))
    bars(axes[0], {name: [state["percent"]] for name, state in data.items()}, "% of a core",
         "processor")
    bars(axes[1], {name: [sum(state["waits"].values())] for name, state in data.items()},
         "a second", "wake-ups")
    return figure


def exchange(data):
    figure, axes = plt.subplots(1, 2, figsize=(8, 3))
    bars(axes[0], {name: [1e6 * value for value in values]
                   for name, values in data["seconds"].items()}, "microseconds",
         "GET of 300 bytes")
    names = list(data["micro"])
    axes[1].barh(names, [data["micro"][name] for name in names], color=COLOURS["http"])
    axes[1].set(xscale="log", xlabel="nanoseconds", title="parts")
    return figure


def growth(data):
    figure, axes = plt.subplots(2, 2, figsize=(8, 5.6))
    selection, answers = data["selection"], data["answers"]
    axes[0, 0].plot(list(selection), [statistics.median(selection[rows]) for rows in selection],
                    marker="o", color=COLOURS["window"])
    axes[0, 0].set(xlabel="rows", ylabel="microseconds per row", title="selection")
    axes[0, 1].plot(list(answers), [1000 * statistics.median(answers[size]["seconds"]) /
                                    (size / 1000) for size in answers],
                    marker="o", color=COLOURS["window"])
    axes[0, 1].set(xscale="log", yscale="log", xlabel="kilobytes",
                   ylabel="milliseconds per MB", title="list answer")
    axes[1, 0].plot([1000 * value for value in data["seconds"]], color=COLOURS["window"])
    axes[1, 0].set(xlabel="download", ylabel="milliseconds", title="downloads in one run")
    axes[1, 1].plot([value / 1024 for value in data["memory"]], color=COLOURS["window"])
    axes[1, 1].set(xlabel="download", ylabel="megabytes", title="resident memory")
    for each in (axes[0, 0], axes[1, 0], axes[1, 1]):
        each.set_ylim(bottom=0)
    return figure


def draw(topic, data, path):
    figure = globals()[topic](data)
    figure.tight_layout()
    figure.savefig(path, metadata={"Date": None, "Creator": None})
    plt.close(figure)
