"""Sends mouse and keyboard input to an X display, and takes screenshots of it.

window.py reads texts and positions. A wait that times out raises NotSeen with a description of what
was expected.
"""

import subprocess
import time


class NotSeen(Exception):
    """Something expected did not appear in time."""


def wait_for(what, condition, seconds=20.0):
    """Calls the condition until its result is true and returns the result."""
    end = time.monotonic() + seconds
    while True:
        result = condition()
        if result:
            return result
        if time.monotonic() > end:
            raise NotSeen(f"not within {seconds:g} s: {what}")
        time.sleep(0.05)


def _run(*command):
    return subprocess.run(command, check=True, stdout=subprocess.PIPE, timeout=30).stdout


class Screenshot:
    """The pixels of the whole display, with 8 bits each for red, green and blue."""

    def __init__(self, ppm):
        kind, width, height, most = ppm.split(maxsplit=4)[:4]
        if kind != b"P6" or most != b"255":
            raise ValueError("not a binary pixmap of 8 bits")
        self.width, self.height = int(width), int(height)
        self.ppm = ppm
        self.pixels = ppm[-3 * self.width * self.height:]

    def __eq__(self, other):
        return self.pixels == other.pixels

    def row(self, y, left=0, right=None):
        right = self.width if right is None else right
        return self.pixels[3 * (y * self.width + left):3 * (y * self.width + right)]

    def pixel(self, x, y):
        return tuple(self.row(y, x, x + 1))

    def count(self, box, matches):
        """Returns how many pixels in the box have a matching colour (red, green, blue)."""
        left, top, right, bottom = box
        return sum(matches(self.pixel(x, y)) for y in range(top, bottom)
                   for x in range(left, right))

    def text(self, box):
        """Returns the text in the box as pixel columns, without the empty columns on both sides."""
        left, top, right, bottom = box
        columns = [tuple(self.pixel(x, y) for y in range(top, bottom)) for x in range(left, right)]
        drawn = [x for x, column in enumerate(columns) if column != columns[0]]
        return columns[drawn[0]:drawn[-1] + 1] if drawn else []

    def save(self, path):
        subprocess.run(["convert", "ppm:-", str(path)], input=self.ppm, check=True, timeout=30)


def is_one_shape_repeated(text):
    """Returns whether the columns of a text repeat at some distance.

    Only the boxes drawn in place of characters that no font has repeat in this way, whether they
    touch or not.
    """
    return any(text[distance:] == text[:-distance] for distance in range(4, len(text) // 2 + 1))


def look():
    return Screenshot(_run("import", "-silent", "-window", "root", "-depth", "8", "ppm:-"))


def look_when_still(seconds=20.0):
    """Returns a screenshot after the display has stopped changing."""
    shots = [look()]

    def still():
        shots.append(look())
        return shots[-1] == shots[-2]

    wait_for("a display that no longer changes", still, seconds)
    return shots[-1]


def centre(box):
    return (box[0] + box[2]) // 2, (box[1] + box[3]) // 2


def click(point, holding=None):
    """Clicks the left button at the point, while holding a key if one is given."""
    held = ["keydown", holding] if holding else []
    released = ["keyup", holding] if holding else []
    x, y = (str(number) for number in point)
    # Without --sync, which waits for a long time if the pointer is already at the point.
    _run("xdotool", "mousemove", x, y, *held, "click", "1", *released)


def key(*names):
    _run("xdotool", "key", *names)


def find_window(title, seconds=20.0):
    """Waits until the window with that title is visible and active."""
    def active():
        result = subprocess.run(["xdotool", "getactivewindow", "getwindowname"], timeout=30,
                                stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, check=False)
        return result.stdout.decode().strip() == title
    wait_for(f"a window with the title {title}", active, seconds)
