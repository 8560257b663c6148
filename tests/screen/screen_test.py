#!/usr/bin/python3
"""The built program in a window, worked by mouse and keyboard alone, in both languages.

Runs on a display and a message bus of its own inside a private network; see --help.
"""

import argparse
import os
import pathlib
import subprocess
import sys
import unittest

sys.dont_write_bytecode = True
here = pathlib.Path(__file__).resolve().parent
sys.path[:0] = [str(here), str(here.parent / "simulator"), str(here.parents[1] / "simulator")]
import harness  # noqa: E402
import screen  # noqa: E402
import texts  # noqa: E402
from window import Program, readable  # noqa: E402

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
NO_VERSIONS = ("",) * 5

GREEN, RED, BLUE = (0, 128, 0), (255, 0, 0), (89, 153, 247)

options = None


def without(rows, *numbers):
    return tuple(row for number, row in enumerate(rows) if number not in numbers)


class ScreenTest(harness.SimulatorTest):
    """One vehicle and one program for each test, in the language of the class."""

    texts = None
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        if cls.texts is None:
            raise unittest.SkipTest("the tests of both languages are those below")

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
        if self.texts is texts.CHINESE:
            self.chooseWithMouse("Chinese")
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


class Tests:
    def test_startAndBothWaysOfChangingTheLanguage(self):
        self.startAll()
        self.everyTextIsDrawn(self.picture("first"))
        other = texts.ENGLISH if self.texts is texts.CHINESE else texts.CHINESE
        self.chooseWithMouse(other.chosen)
        self.shows(language=other)
        self.everyTextIsDrawn(self.picture("other-language"))
        screen.key("Up" if other is texts.CHINESE else "Down")
        self.shows()
        self.picture("back")
        # The fields only display: a click does not bring the keyboard there.
        for name in (self.texts.link, *self.texts.versions, self.texts.progress):
            field = self.item("text", name)
            self.assertFalse(field.has("ENABLED"), name)
            screen.click(screen.centre(field.box))
            screen.key("x")
        self.shows()
        self.assertEqual([0, 0], self.linkCount())
        self.assertEqual([], self.requests())
        self.closeProgram()

    def everyTextIsDrawn(self, picture):
        """Where a text is said to be, something is drawn; where none is, nothing."""
        for item in self.window.items():
            if item.role in ("push button", "label", "text", "table column header"):
                left, top, right, bottom = item.box
                inner = (left + 4, top + 4, right - 4, bottom - 4)
                dark = picture.count(inner, lambda pixel: max(pixel) < 100)
                self.assertEqual(bool(item.text), dark > 10, f"{item.role} {item.text}: {dark}")

    def test_linkAndItsLoss(self):
        self.startAll("--fault", "refuse=ground")
        self.press(self.texts.link)
        self.shows(status=self.texts.unlinked)
        self.statusIs(RED, GREEN)
        self.picture("ground-module-absent")
        self.assertEqual([0, 0], self.linkCount())

        self.switch("clear refuse")
        self.link()
        self.statusIs(GREEN, RED)
        self.picture("linked")
        self.eventually(lambda: self.linkCount() == [2, 2], "probe and link of both modules")
        self.press(self.texts.link)
        self.switch("versions -1,101,1134,0,5")
        self.shows(versions=("v-1", "v1.01", "v11.34", "v0", "v0.05"))
        self.assertEqual([2, 2], self.linkCount(), "a second click linked again")

        self.switch("fault refuse=control")
        self.switch("drop control")
        self.shows(status=self.texts.unlinked)
        self.statusIs(RED, GREEN)
        self.picture("control-module-lost")
        self.switch("clear refuse")
        self.shows(status=self.texts.linked)
        self.statusIs(GREEN, RED)
        self.picture("linked-again")
        self.closeProgram()

    def test_statusKeepsItsLanguageUntilItIsSetAgain(self):
        self.startAll("--fault", "refuse=ground")
        self.press(self.texts.link)
        self.shows(status=self.texts.unlinked)
        other = texts.ENGLISH if self.texts is texts.CHINESE else texts.CHINESE
        self.chooseWithMouse(other.chosen)
        self.shows(language=other)
        self.press(other.link)
        self.shows(language=other, status=other.unlinked)
        self.switch("clear refuse")
        self.press(other.link)
        self.shows(language=other, status=other.linked, versions=VERSIONS)
        self.chooseWithMouse(self.texts.chosen)
        # The next heartbeat sets the status again.
        self.shows(status=self.texts.linked)
        self.closeProgram()

    def test_unlinkedButtonsDoNothing(self):
        self.startAll()
        self.press(self.texts.browse)  # the one that needs no link
        self.shows(rows=ROWS)
        self.eventually(lambda: len(self.requests()) == 2 + len(ROWS), "the requests of a browse")
        self.clickRow(1)
        self.selects([1])
        for name in (self.texts.download, self.texts.delete, self.texts.format,
                     self.texts.deleteAll):
            self.press(name)
        self.shows()
        self.selects([1])
        self.assertEqual(2 + len(ROWS), len(self.requests()))
        self.assertEqual({}, self.downloaded())
        self.picture("browsed-without-a-link")
        self.closeProgram()

    def test_browseAndSelect(self):
        self.startAll()
        self.linkAndBrowse()
        self.selects([])
        self.picture("browsed")
        self.press(self.texts.selectAll, "check box")
        self.selects([0, 1, 2, 3, 4])
        self.assertTrue(self.item("check box").has("CHECKED"))
        self.picture("all-selected")
        self.press(self.texts.selectAll, "check box")
        self.selects([])
        self.assertFalse(self.item("check box").has("CHECKED"))
        self.clickRow(1)
        self.selects([1])
        self.clickRow(3, holding="ctrl")
        self.selects([1, 3])
        self.clickRow(4, holding="shift")
        self.selects([1, 3, 4])
        self.picture("some-selected")
        self.chooseWithMouse(self.texts.chosen)
        self.shows()

        # Without the camera the table stays; an empty card empties it.
        self.switch("fault refuse=camera")
        self.press(self.texts.browse)
        self.shows()
        self.switch("clear refuse")
        self.switch("fault entries=0")
        self.press(self.texts.browse)
        self.shows(rows=())
        self.picture("empty-card")
        self.press(self.texts.selectAll, "check box")
        self.press(self.texts.download)
        self.press(self.texts.delete)
        self.shows()
        self.assertEqual([], self.requests("delete") + self.requests("recording"))
        self.closeProgram()

    def test_downloadsOneAfterTheOther(self):
        self.startAll("--rate", "500000")
        self.linkAndBrowse()
        self.press(self.texts.download)  # with nothing selected
        self.shows()
        self.clickRow(3)
        self.clickRow(4, holding="ctrl")
        self.selects([3, 4])
        self.switch("fault only=recording")
        self.switch("fault stall=50")
        self.press(self.texts.download)
        self.shows(download=(self.texts.progress, "50%", "1/2"), disabled=(self.texts.download,))
        self.picture("half-of-the-first")
        self.press(self.texts.download)  # which is disabled
        self.switch("clear all")
        self.seesProgress("2/2")
        self.shows(download=("", None, ""), disabled=())
        self.picture("downloaded")
        self.assertEqual(["VID_0005.MP4", "VID_0004.MP4"], self.requests("recording"))
        self.assertEqual(self.recordings(3, 4), self.downloaded())
        self.closeProgram()

    def seesProgress(self, count):
        """Three rising percentages of this file; all else in the window stays as it was."""
        seen = []
        # A look takes its time: in the first one the bar may still be that of the file before.
        self.waitUntil(f"file {count}", lambda: ("text", count) in self.window.read())

        def look():
            read = self.window.read()
            percentages = [text for kind, text in read if kind == "progress bar"]
            if len(percentages) != 1 or ("text", count) not in read:
                return False
            self.assertEqual(texts.window(self.texts, **{
                **self.expected, "download": (self.texts.progress, percentages[0], count)}), read)
            percentage = int(percentages[0].rstrip("%"))
            if 0 < percentage < 100 and percentage not in seen:
                seen.append(percentage)
                if len(seen) == 1:
                    self.picture("second-on-its-way")
            return len(seen) == 3
        self.waitUntil(f"progress of {count}", look)
        self.assertEqual(sorted(seen), seen)

    def test_deleteChosenAndAll(self):
        self.startAll()
        self.linkAndBrowse()
        self.clickRow(1)
        self.clickRow(3, holding="ctrl")
        self.selects([1, 3])
        self.press(self.texts.delete)
        self.shows(rows=without(ROWS, 1, 3))
        self.picture("two-deleted")
        self.assertEqual(2, len(self.requests("delete")))

        # A delete that fails leaves its row and bars the way to deleting all.
        self.switch("fault only=delete")
        self.switch("fault close-before-head")
        self.clickRow(0)
        self.selects([0])
        self.press(self.texts.delete)
        self.shows(disabled=(self.texts.deleteAll,))
        self.picture("delete-failed")
        self.press(self.texts.deleteAll)
        self.switch("clear all")
        self.press(self.texts.delete)
        self.shows(rows=without(ROWS, 0, 1, 3), disabled=())
        self.assertEqual([], self.requests("deleteall"))

        self.press(self.texts.deleteAll)
        self.confirmsBox(texts.BOX_ALL_DELETED, "Return")
        self.shows(rows=())
        self.assertEqual(1, len(self.requests("deleteall")))
        self.closeProgram()

    def test_formatAndOtherWords(self):
        self.startAll()
        self.linkAndBrowse()
        self.press(self.texts.format)
        self.confirmsBox(texts.BOX_FORMATTED, "space")
        self.shows(rows=())
        self.assertEqual(1, len(self.requests("format")))

        # Any other answer clears the table without a word; none at all leaves it.
        self.switch("reload")
        self.switch("fault error-word")
        for name in (self.texts.format, self.texts.deleteAll):
            self.press(self.texts.browse)
            self.shows(rows=ROWS)
            self.press(name)
            self.shows(rows=())
            self.assertEqual([], self.window.box())
        self.press(self.texts.browse)
        self.shows(rows=ROWS)
        self.switch("fault refuse=camera")
        for name in (self.texts.format, self.texts.deleteAll):
            self.press(name)
            self.shows()
        self.picture("camera-absent")
        self.closeProgram()

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

    def test_keyboardAlone(self):
        self.startAll()
        said = self.texts
        # Where the first look left the keyboard depends on how the language was chosen.
        if said is texts.CHINESE:
            self.focusIsOn("combo box", "Chinese")
            screen.key("shift+Tab")
        self.focusIsOn("push button", said.link)
        screen.key("space")
        self.shows(status=said.linked, versions=VERSIONS)

        screen.key("Tab")
        self.focusIsOn("combo box", said.chosen)
        other, way, back = (texts.ENGLISH, "Up", "Down") if said is texts.CHINESE \
            else (texts.CHINESE, "Down", "Up")
        screen.key(way)
        self.shows(language=other, status=other.linked)
        screen.key(back)
        self.shows(status=said.linked)

        screen.key("Tab")
        self.focusIsOn("push button", said.browse)
        screen.key("space")
        self.shows(rows=ROWS)
        for name in (said.download, said.delete, said.format, said.deleteAll):
            screen.key("Tab")
            self.focusIsOn("push button", name)
        screen.key("Tab")
        self.focusIsOn("check box", said.selectAll)
        screen.key("space")
        self.selects([0, 1, 2, 3, 4])
        screen.key("space")
        self.selects([])

        # Rows 1 and 3 by the keyboard: Ctrl moves without choosing, and the space bar chooses.
        screen.key("Tab")
        screen.key("ctrl+Home", "Down")
        self.selects([1])
        screen.key("ctrl+Down", "ctrl+Down", "ctrl+space")
        self.selects([1, 3])
        screen.key("ctrl+Tab")
        self.focusIsOn("push button", said.link)
        self.selects([1, 3])
        screen.key("Tab", "Tab", "Tab")
        self.focusIsOn("push button", said.download)
        screen.key("space")
        self.waitUntil("both recordings", lambda: self.downloaded() == self.recordings(1, 3))
        self.shows()

        # The button was disabled meanwhile, and the focus went on to the next.
        self.focusIsOn("push button", said.delete)
        screen.key("space")
        self.shows(rows=without(ROWS, 1, 3))
        screen.key("Tab")
        self.focusIsOn("push button", said.format)
        screen.key("Tab")
        self.focusIsOn("push button", said.deleteAll)
        screen.key("space")
        self.confirmsBox(texts.BOX_ALL_DELETED, "Return")
        self.shows(rows=())
        self.focusIsOn("push button", said.deleteAll)
        screen.key("shift+Tab")
        self.focusIsOn("push button", said.format)
        screen.key("space")
        self.confirmsBox(texts.BOX_FORMATTED, "Escape")
        self.shows()
        self.closeProgram()


class English(Tests, ScreenTest):
    texts = texts.ENGLISH


class Chinese(Tests, ScreenTest):
    texts = texts.CHINESE


def main():
    global options
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--program", required=True, help="the built belun-download")
    parser.add_argument("--simulator", required=True, help="the built belun-simulator")
    parser.add_argument("--folder", required=True, help="where the screenshots go")
    parser.add_argument("tests", nargs="*", help="English.test_keyboardAlone, say (default: all)")
    options = parser.parse_args()
    harness.program = options.simulator
    unittest.main(module="__main__", verbosity=2, argv=[sys.argv[0], *options.tests])


if __name__ == "__main__":
    main()
