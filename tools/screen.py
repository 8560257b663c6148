"""Mouse, keyboard and eyes on an X display: what a user has, and nothing of the program's inside.

Widgets are found by what can be seen: the frame that the keyboard focus draws around them. Every
wait has a limit and raises NotSeen with what was waited for.
"""

import subprocess
import time


class NotSeen(Exception):
    """Something that should have come up within its time did not."""


def waitFor(what, condition, seconds=10.0):
    """Calls the condition until its result is true and returns that."""
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


class Picture:
    """The pixels of the whole display, 8 bits each of red, green and blue."""

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
        """The number of pixels in the box of a colour (red, green, blue) that matches."""
        left, top, right, bottom = box
        return sum(matches(self.pixel(x, y)) for y in range(top, bottom)
                   for x in range(left, right))

    def changed(self, other, box=None):
        """The smallest box (left, top, right, bottom) around all that differs, or None."""
        left, top, right, bottom = box or (0, 0, self.width, self.height)
        rows = [y for y in range(top, bottom)
                if self.row(y, left, right) != other.row(y, left, right)]
        if not rows:
            return None
        columns = [x for x in range(left, right)
                   if any(self.pixel(x, y) != other.pixel(x, y) for y in rows)]
        return columns[0], rows[0], columns[-1] + 1, rows[-1] + 1

    def textRows(self, box, matches):
        """One number per line of text in the box: how many pixels of a matching colour it has."""
        left, top, right, bottom = box
        rows, before = [], 0
        for y in range(top, bottom):
            now = self.count((left, y, right, y + 1), matches)
            if now and not before:
                rows.append(0)
            if now:
                rows[-1] += now
            before = now
        return rows

    def text(self, box):
        """The text in the box, as its columns without the plain ones on both sides."""
        left, top, right, bottom = box
        columns = [tuple(self.pixel(x, y) for y in range(top, bottom)) for x in range(left, right)]
        drawn = [x for x, column in enumerate(columns) if column != columns[0]]
        return columns[drawn[0]:drawn[-1] + 1] if drawn else []

    def save(self, path):
        subprocess.run(["convert", "ppm:-", str(path)], input=self.ppm, check=True, timeout=30)


def isOneShapeRepeated(text):
    """Whether the columns of a text repeat at some distance, as those of one character do.

    Holds for the boxes that stand for characters that no font has, and for no others, whether they
    touch or not.
    """
    return any(text[distance:] == text[:-distance] for distance in range(4, len(text) // 2 + 1))


def look():
    return Picture(_run("import", "-silent", "-window", "root", "-depth", "8", "ppm:-"))


def lookWhenStill(seconds=10.0):
    """A picture of a display that has stopped changing."""
    pictures = [look()]

    def still():
        pictures.append(look())
        return pictures[-1] == pictures[-2]

    waitFor("a display that stands still", still, seconds)
    return pictures[-1]


def centre(box):
    return (box[0] + box[2]) // 2, (box[1] + box[3]) // 2


def click(point, holding=None):
    """Presses the left button at the point, with a key held down if one is named."""
    held = ["keydown", holding] if holding else []
    released = ["keyup", holding] if holding else []
    x, y = (str(number) for number in point)
    # Without --sync, which waits long in vain where the pointer is there already.
    _run("xdotool", "mousemove", x, y, *held, "click", "1", *released)


def key(*names):
    _run("xdotool", "key", *names)


def findWindow(title, seconds=20.0):
    """Waits for the window of that title to be shown and active."""
    def active():
        result = subprocess.run(["xdotool", "getactivewindow", "getwindowname"], timeout=30,
                                stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, check=False)
        return result.stdout.decode().strip() == title
    waitFor(f"a window with the title {title}", active, seconds)


def findByFocus(names, enter="Tab"):
    """Where the widgets are that the Tab key goes through: {name: box}.

    The names are in the order of the keyboard focus, which is on the first of them. The widget
    before that one, the last to come round to, shows no focus; the key `enter` leads out of it.
    """
    picture = lookWhenStill()

    def press(name, what):
        nonlocal picture
        before = picture
        key(name)
        waitFor(f"the keyboard focus {what}", lambda: look() != before, 5.0)
        picture = lookWhenStill()

    press("Tab", "to show")
    press("shift+Tab", f"on {names[0]}")
    press("shift+Tab", f"to leave {names[0]}")
    without = picture
    boxes = {}
    for name in names:
        press("Tab" if boxes else enter, f"on {name}")
        boxes[name] = picture.changed(without)
    return boxes
