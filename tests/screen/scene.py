"""One vehicle and one program: what is seen, what the user does, what the vehicle sees.

The tests of a language are the cases upon this scene; see screen_test.py.
"""

import os
import pathlib
import subprocess

import harness
import screen
import texts
from window import Program, readable

LIMIT = 20  # seconds that anything may take on a busy machine

# The card: name, bytes; and what the table says of it, whatever the language. Sizes are cut to
# whole units, and a size below one unit shows the bare unit.
CARD = (("VID_0001", 500), ("VID_0002", 2048), ("VID_0003", 1572864), ("VID_0004", 4000000),
        ("VID_0005", 1000000))
DATE = "2020-01-31  12:45:02"
ROWS = (("VID_0001.MP4", DATE, "KB", "1s"), ("VID_0002.MP4", DATE, "2KB", "1s"),
        ("VID_0003.MP4", DATE, "1MB", "2s"), ("VID_0004.MP4", DATE, "3MB", "4s"),
        ("VID_0005.MP4", DATE, "976KB", "1s"))
VERSIONS = ("v7", "v3", "v6", "v1", "v0.1")

GREEN, RED, BLUE = (0, 128, 0), (255, 0, 0), (89, 153, 247)

# The command line of screen_test.py.
options = None


def without(rows, *numbers):
    return tuple(row for number, row in enumerate(rows) if number not in numbers)


class ScreenTest(harness.SimulatorTest):
    """One vehicle and one program for each test, in the language of the class."""

    texts = None  # of the class's language
    maxDiff = None

    def setUp(self):
        super().setUp()
        name = self.id().rpartition(".")[2]
        self.pictures = pathlib.Path(options.folder) / self.texts.chosen.lower() / name
        self.pictures.mkdir(parents=True, exist_ok=True)
        for old in self.pictures.glob("*.png"):
            old.unlink()
        self.pictureCount = 0
        self.card = self.makeCard(**{name: bytes([65 + number]) * size
                                     for number, (name, size) in enumerate(CARD)})
        # What is expected of the window as a whole; the tests change it step by step.
        self.expected = {}

    def startAll(self, *arguments):
        self.start("--card", self.card, *arguments)
        self.startProgram()
        self.window = Program(self.program.pid)
        screen.findWindow("BELUN-DownLoad", LIMIT)
        self.shows(language=texts.ENGLISH)
        if self.texts is not texts.ENGLISH:
            self.chooseWithMouse(self.texts.chosen)
            self.shows()

    def startProgram(self):
        folder = pathlib.Path(self.folder)
        self.desktop = folder / "Desktop"
        self.desktop.mkdir()
        (folder / "user-dirs.dirs").write_text(f'XDG_DESKTOP_DIR="{self.desktop}"\n')
        self.log = folder / "program.log"
        with open(self.log, "wb") as log:
            self.program = subprocess.Popen(
                [options.program], stdin=subprocess.DEVNULL, stdout=log, stderr=log,
                env={**os.environ, "XDG_CONFIG_HOME": self.folder, "TZ": "UTC",
                     "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1",
                     "QT_MESSAGE_PATTERN": "%{type}: %{message}"})
        self.addCleanup(self.stopProgram)

    def stopProgram(self):
        if self.program.poll() is None:
            self.program.kill()
            self.program.wait()

    def closeProgram(self):
        """As the user does; the program ends well and has warned of nothing."""
        screen.key("alt+F4")
        self.assertEqual(0, self.program.wait(LIMIT), "exit status of the program")
        warnings = [line for line in self.log.read_text(errors="replace").splitlines()
                    if line.startswith(("warning:", "critical:", "fatal:"))]
        self.assertEqual([], warnings)

    # What is seen.

    def waitUntil(self, what, condition):
        try:
            return screen.waitFor(what, condition, LIMIT)
        except screen.NotSeen as complaint:
            self.picture("not-seen")
            self.fail(str(complaint))

    def shows(self, language=None, **changes):
        """Waits until the window says exactly what is expected of it, everything in it."""
        self.expected.update(changes)
        expected = texts.window(language or self.texts, **self.expected)
        try:
            screen.waitFor("the expected texts", lambda: self.window.read() == expected, LIMIT)
        except screen.NotSeen:
            self.picture("not-seen")
            self.assertEqual(expected, self.window.read())

    def picture(self, name):
        self.pictureCount += 1
        picture = screen.look()
        picture.save(self.pictures / f"{self.pictureCount}-{name}.png")
        return picture

    def item(self, role, name=None, number=0):
        found = self.waitUntil(f"{role} {name}", lambda: [
            item for item in self.window.items()
            if item.role == role and name in (None, item.name)][number:])
        return found[0]

    def statusIs(self, colour, otherColour):
        def pixels():
            box = self.item("text", self.texts.link).box
            picture = screen.look()
            return (picture.count(box, lambda pixel: pixel == colour),
                    picture.count(box, lambda pixel: pixel == otherColour))
        self.waitUntil(f"a status in {colour}", lambda: pixels()[0] > 50 and pixels()[1] == 0)

    def selectedRows(self):
        cells = [item for item in self.window.items() if item.role == "table cell"]
        return sorted({number // 4 for number, cell in enumerate(cells) if cell.has("SELECTED")})

    def selects(self, rows):
        self.waitUntil(f"selected rows {rows}", lambda: self.selectedRows() == rows)
        cells = [item for item in self.window.items() if item.role == "table cell"]
        self.waitUntil(f"the colour of selected rows {rows}", lambda: [
            row for row in range(len(cells) // 4)
            if screen.look().pixel(cells[4 * row + 3].box[2] - 3, cells[4 * row].box[1] + 3)
            == BLUE] == rows)

    def focusIsOn(self, role, name):
        self.waitUntil(f"the keyboard focus on {role} {name}", lambda: [
            item for item in self.window.items()
            if item.role == role and item.name == name and item.has("FOCUSED")])

    def everyTextIsDrawn(self, picture):
        """Where a text is said to be, something is drawn; where none is, nothing."""
        for item in self.window.items():
            if item.role in ("push button", "label", "text", "table column header"):
                left, top, right, bottom = item.box
                inner = (left + 4, top + 4, right - 4, bottom - 4)
                dark = picture.count(inner, lambda pixel: max(pixel) < 100)
                self.assertEqual(bool(item.text), dark > 10, f"{item.role} {item.text}: {dark}")

    # What the user does.

    def press(self, name, role="push button"):
        screen.click(screen.centre(self.item(role, name).box))

    def clickRow(self, row, holding=None):
        screen.click(screen.centre(self.item("table cell", number=4 * row).box), holding)

    def chooseWithMouse(self, language):
        def clickEntry():
            entries = self.window.languages()
            for item in entries:
                if item.name == language:
                    left, top, _, bottom = item.box
                    screen.click((left + 10, (top + bottom) // 2))
            return not entries
        screen.click(screen.centre(self.item("combo box").box))
        self.waitUntil("the list of languages", self.window.languages)
        # A list that has only just been opened takes no click.
        self.waitUntil(f"the choice of {language}", clickEntry)

    def link(self):
        self.press(self.texts.link)
        self.shows(status=self.texts.linked, versions=VERSIONS)

    def linkAndBrowse(self):
        self.link()
        self.press(self.texts.browse)
        self.shows(rows=ROWS)

    def confirmsBox(self, text, key):
        """A box with title, text and one button, which the table waits for."""
        self.waitUntil("a message box", lambda: [
            item for item in self.window.box() if item.role == "push button"])
        screen.findWindow(texts.BOX_TITLE, LIMIT)
        self.assertEqual([("label", text), ("push button", "OK")], readable(self.window.box()))
        self.picture("box")
        self.shows()
        screen.key(key)
        self.waitUntil("the box to close", lambda: not self.window.box())
        screen.findWindow("BELUN-DownLoad", LIMIT)

    # What the vehicle sees.

    def requests(self, kind=None):
        wanted = {"kind": kind} if kind else {}
        return [line["target"].rpartition("/")[2] for line in self.journal(
            device="camera", event="request", **wanted)]

    def linkCount(self):
        return [len(self.journal(device=device, event="open"))
                for device in ("control", "ground")]

    def downloaded(self):
        folder = self.desktop / "DCIM"
        return {path.name: path.read_bytes() for path in folder.iterdir()} \
            if folder.exists() else {}

    def recordings(self, *rows):
        return {CARD[row][0] + ".MP4": bytes([65 + row]) * CARD[row][1] for row in rows}
