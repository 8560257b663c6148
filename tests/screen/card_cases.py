"""The card: browsing, selecting, downloading, deleting, formatting."""

import texts
from scene import ROWS, without


class CardCases:
    """Test cases, mixed into the ScreenTest of each language."""

    def test_browse_and_select(self):
        self.start_all()
        self.link_and_browse()
        self.selects([])
        self.shot("browsed")
        self.press(self.texts.select_all, "check box")
        self.selects([0, 1, 2, 3, 4])
        self.assertTrue(self.item("check box").has("CHECKED"))
        self.shot("all-selected")
        self.press(self.texts.select_all, "check box")
        self.selects([])
        self.assertFalse(self.item("check box").has("CHECKED"))
        self.click_row(1)
        self.selects([1])
        self.click_row(3, holding="ctrl")
        self.selects([1, 3])
        self.click_row(4, holding="shift")
        self.selects([1, 3, 4])
        self.shot("some-selected")
        self.choose_with_mouse(self.texts.chosen)
        self.shows()

        # Without the camera the table is unchanged; an empty card clears it.
        self.switch("fault refuse=camera")
        self.press(self.texts.browse)
        self.shows()
        self.switch("clear refuse")
        self.switch("fault entries=0")
        self.press(self.texts.browse)
        self.shows(rows=())
        self.shot("empty-card")
        self.press(self.texts.select_all, "check box")
        self.press(self.texts.download)
        self.press(self.texts.delete)
        self.shows()
        self.assertEqual([], self.requests("delete") + self.requests("recording"))
        self.close_program()

    def test_consecutive_downloads(self):
        self.start_all("--rate", "250000")  # slow enough to be seen on a busy machine
        self.link_and_browse()
        self.press(self.texts.download)  # with nothing selected
        self.shows()
        self.click_row(3)
        self.click_row(4, holding="ctrl")
        self.selects([3, 4])
        self.switch("fault only=recording")
        self.switch("fault stall=50")
        self.press(self.texts.download)
        self.shows(download=(self.texts.progress, "50%", "1/2"), disabled=(self.texts.download,))
        self.shot("half-of-the-first")
        self.press(self.texts.download)  # disabled
        self.switch("clear all")
        self.sees_progress("2/2")
        self.shows(download=("", None, ""), disabled=())
        self.shot("downloaded")
        self.assertEqual(["VID_0005.MP4", "VID_0004.MP4"], self.requests("recording"))
        self.assertEqual(self.recordings(3, 4), self.downloaded())
        self.close_program()

    def sees_progress(self, count):
        """Waits for three increasing percentages of this file and no other change."""
        seen = []
        # Reading the window takes time: the first result may still belong to the previous file.
        self.wait_until(f"file {count}", lambda: ("text", count) in self.window.read())

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
                    self.shot("second-on-its-way")
            return len(seen) == 3
        self.wait_until(f"progress of {count}", look)
        self.assertEqual(sorted(seen), seen)

    def test_delete_chosen_and_all(self):
        self.start_all()
        self.link_and_browse()
        self.click_row(1)
        self.click_row(3, holding="ctrl")
        self.selects([1, 3])
        self.press(self.texts.delete)
        self.shows(rows=without(ROWS, 1, 3))
        self.shot("two-deleted")
        self.assertEqual(2, len(self.requests("delete")))

        # A failed delete keeps its row and disables deleting all.
        self.switch("fault only=delete")
        self.switch("fault close-before-head")
        self.click_row(0)
        self.selects([0])
        self.press(self.texts.delete)
        self.shows(disabled=(self.texts.delete_all,))
        self.shot("delete-failed")
        self.press(self.texts.delete_all)
        self.switch("clear all")
        self.press(self.texts.delete)
        self.shows(rows=without(ROWS, 0, 1, 3), disabled=())
        self.assertEqual([], self.requests("deleteall"))

        self.press(self.texts.delete_all)
        self.confirms_box(texts.BOX_ALL_DELETED, "Return")
        self.shows(rows=())
        self.assertEqual(1, len(self.requests("deleteall")))
        self.close_program()

    def test_format_and_other_answers(self):
        self.start_all()
        self.link_and_browse()
        self.press(self.texts.format)
        self.confirms_box(texts.BOX_FORMATTED, "space")
        self.shows(rows=())
        self.assertEqual(1, len(self.requests("format")))

        # Any other answer clears the table without a message; no answer leaves it unchanged.
        self.switch("reload")
        self.switch("fault error-word")
        for name in (self.texts.format, self.texts.delete_all):
            self.press(self.texts.browse)
            self.shows(rows=ROWS)
            self.press(name)
            self.shows(rows=())
            self.assertEqual([], self.window.box())
        self.press(self.texts.browse)
        self.shows(rows=ROWS)
        self.switch("fault refuse=camera")
        for name in (self.texts.format, self.texts.delete_all):
            self.press(name)
            self.shows()
        self.shot("camera-absent")
        self.close_program()
