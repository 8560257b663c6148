"""The card: browsing and selecting, downloads, deletes, formatting."""

import texts
from scene import ROWS, without


class CardCases:
    """Upon a ScreenTest."""

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
