"""The scene of the screen tests: one vehicle, one program, and steps that operate and check both.

The tests of a language combine the cases with this scene; see screen_test.py.
"""

import os
import pathlib
import subprocess

import harness
import screen
import texts
from window import Program, readable, wrongly_drawn

LIMIT = 20  # seconds; long enough for a busy machine

# The card: name and size of each recording, and its table row, which is the same in both languages.
# Sizes are truncated to whole units; a size below one unit shows only the unit.
CARD = (("VID_0001", 500), ("VID_0002", 2048), ("VID_0003", 1572864), ("VID_0004", 4000000),
        ("VID_0005", 1000000))
DATE = "2020-01-31  12:45:02"
ROWS = (("VID_0001.MP4", DATE, "KB", "1s"), ("VID_0002.MP4", DATE, "2KB", "1s"),
        ("VID_0003.MP4", DATE, "1MB", "2s"), ("VID_0004.MP4", DATE, "3MB", "4s"),
        ("VID_0005.MP4", DATE, "976KB", "1s"))
VERSIONS = ("v7", "v3", "v6", "v1", "v0.1")

GREEN, RED, BLUE = (0, 128, 0), (255, 0, 0), (89, 153, 247)

# The parsed command line, set by screen_test.py.
options = None


def without(rows, *numbers):
    return tuple(row for number, row in enumerate(rows) if number not in numbers)


class ScreenTest(harness.SimulatorTest):
    """Each test starts its own vehicle and program. Each subclass sets the language."""

    texts = None  # set by the class of each language
    maxDiff = None

    def setUp(self):
        super().setUp()
        name = self.id().rpartition(".")[2]
        self.shots = pathlib.Path(options.folder) / self.texts.chosen.lower() / name
        self.shots.mkdir(parents=True, exist_ok=True)
        for old in self.shots.glob("*.png"):
            old.unlink()
        self.image_count = 0
        self.card = self.make_card(**{name: bytes([65 + number]) * size
                                      for number, (name, size) in enumerate(CARD)})
        # The expected state of the whole window; the tests change it step by step.
        self.expected = {}

    def start_all(self, *arguments):
        self.start("--card", self.card, *arguments)
        self.start_program()
        self.window = Program(self.program.pid)
        screen.find_window("BELUN-DownLoad", LIMIT)
        self.shows(language=texts.ENGLISH)
        if self.texts is not texts.ENGLISH:
            self.choose_with_mouse(self.texts.chosen)
            self.shows()

    def start_program(self):
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
        self.addCleanup(self.stop_program)

    def stop_program(self):
        if self.program.poll() is None:
            self.program.kill()
            self.program.wait()

    def close_program(self):
        """Closes the program as a user does; it must exit cleanly and without warnings."""
        screen.key("alt+F4")
        self.assertEqual(0, self.program.wait(LIMIT), "exit status of the program")
        warnings = [line for line in self.log.read_text(errors="replace").splitlines()
                    if line.startswith(("warning:", "critical:", "fatal:"))]
        self.assertEqual([], warnings)

    # What the user sees.

    def wait_until(self, what, condition):
        try:
            return screen.wait_for(what, condition, LIMIT)
        except screen.NotSeen as complaint:
            self.shot("not-seen")
            self.fail(str(complaint))

    def shows(self, language=None, **changes):
        """Waits until everything in the window is exactly as expected."""
        self.expected.update(changes)
        expected = texts.window(language or self.texts, **self.expected)
        try:
            screen.wait_for("the expected texts", lambda: self.window.read() == expected, LIMIT)
        except screen.NotSeen:
            self.shot("not-seen")
            self.assertEqual(expected, self.window.read())

    def shot(self, name):
        self.image_count += 1
        shot = screen.look()
        shot.save(self.shots / f"{self.image_count}-{name}.png")
        return shot

    def item(self, role, name=None, number=0):
        return self.wait_until(f"{role} {name}", lambda: self.window.find(role, name, number))

    def status_is(self, colour, other_colour):
        def pixels():
            box = self.item("text", self.texts.link).box
            shot = screen.look()
            return (shot.count(box, lambda pixel: pixel == colour),
                    shot.count(box, lambda pixel: pixel == other_colour))
        self.wait_until(f"a status in {colour}", lambda: pixels()[0] > 50 and pixels()[1] == 0)

    def selected_rows(self):
        cells = [item for item in self.window.items() if item.role == "table cell"]
        return sorted({number // 4 for number, cell in enumerate(cells) if cell.has("SELECTED")})

    def selects(self, rows):
        self.wait_until(f"selected rows {rows}", lambda: self.selected_rows() == rows)
        cells = [item for item in self.window.items() if item.role == "table cell"]
        points = [(cells[row + 3].box[2] - 3, cells[row].box[1] + 3)
                  for row in range(0, len(cells), 4)]

        def blue_rows():
            shot = screen.look()
            return [row for row, point in enumerate(points) if shot.pixel(*point) == BLUE]
        self.wait_until(f"the colour of selected rows {rows}", lambda: blue_rows() == rows)

    def focus_is_on(self, role, name):
        self.wait_until(f"the keyboard focus on {role} {name}", lambda: [
            item for item in self.window.items()
            if item.role == role and item.name == name and item.has("FOCUSED")])

    def every_text_is_drawn(self, shot):
        """Checks that each button, label, text field and column header with an accessible text is
        drawn with text in the screenshot, and each one without it is blank."""
        self.assertEqual([], wrongly_drawn(self.window.items(), shot))

    # What the user does.

    def press(self, name, role="push button"):
        screen.click(screen.centre(self.item(role, name).box))

    def click_row(self, row, holding=None):
        screen.click(screen.centre(self.item("table cell", number=4 * row).box), holding)

    def choose_with_mouse(self, language):
        def click_entry():
            entries = self.window.languages()
            for item in entries:
                if item.name == language:
                    left, top, _, bottom = item.box
                    screen.click((left + 10, (top + bottom) // 2))
            return not entries
        screen.click(screen.centre(self.item("combo box").box))
        self.wait_until("the list of languages", self.window.languages)
        # A list that has just been opened ignores clicks, so the click is repeated until the list
        # closes.
        self.wait_until(f"the choice of {language}", click_entry)

    def link(self):
        self.press(self.texts.link)
        self.shows(status=self.texts.linked, versions=VERSIONS)

    def link_and_browse(self):
        self.link()
        self.press(self.texts.browse)
        self.shows(rows=ROWS)

    def confirms_box(self, text, key):
        """Checks a message box and confirms it; the window must be unchanged until then."""
        self.wait_until("a message box", lambda: [
            item for item in self.window.box() if item.role == "push button"])
        screen.find_window(texts.BOX_TITLE, LIMIT)
        self.assertEqual([("label", text), ("push button", "OK")], readable(self.window.box()))
        self.shot("box")
        self.shows()
        screen.key(key)
        self.wait_until("the box to close", lambda: not self.window.box())
        screen.find_window("BELUN-DownLoad", LIMIT)

    # What the vehicle received, and what the program saved.

    def requests(self, kind=None):
        wanted = {"kind": kind} if kind else {}
        return [line["target"].rpartition("/")[2] for line in self.journal(
            device="camera", event="request", **wanted)]

    def link_count(self):
        return [len(self.journal(device=device, event="open"))
                for device in ("control", "ground")]

    def downloaded(self):
        folder = self.desktop / "DCIM"
        return {path.name: path.read_bytes() for path in folder.iterdir()} \
            if folder.exists() else {}

    def recordings(self, *rows):
        return {CARD[row][0] + ".MP4": bytes([65 + row]) * CARD[row][1] for row in rows}
