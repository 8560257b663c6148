"""The window: languages, link and status, what needs a link, keyboard operation."""

import screen
import texts
from scene import GREEN, RED, ROWS, VERSIONS, without


class WindowCases:
    """Test cases, mixed into the ScreenTest of each language."""

    def test_start_and_both_ways_of_changing_the_language(self):
        self.start_all()
        self.every_text_is_drawn(self.shot("first"))
        other, _, back = texts.neighbour(self.texts)
        self.choose_with_mouse(other.chosen)
        self.shows(language=other)
        self.every_text_is_drawn(self.shot("other-language"))
        screen.key(back)
        self.shows()
        self.shot("back")
        # The fields only display values: a click does not focus them.
        for name in (self.texts.link, *self.texts.versions, self.texts.progress):
            field = self.item("text", name)
            self.assertFalse(field.has("ENABLED"), name)
            screen.click(screen.centre(field.box))
            screen.key("x")
        self.shows()
        self.assertEqual([0, 0], self.link_count())
        self.assertEqual([], self.requests())
        self.close_program()

    def test_link_and_its_loss(self):
        self.start_all("--fault", "refuse=ground")
        self.press(self.texts.link)
        self.shows(status=self.texts.unlinked)
        self.status_is(RED, GREEN)
        self.shot("ground-module-absent")
        self.assertEqual([0, 0], self.link_count())

        self.switch("clear refuse")
        self.link()
        self.status_is(GREEN, RED)
        self.shot("linked")
        self.eventually(lambda: self.link_count() == [2, 2], "probe and link of both modules")
        self.press(self.texts.link)
        self.switch("versions -1,101,1134,0,5")
        self.shows(versions=("v-1", "v1.01", "v11.34", "v0", "v0.05"))
        self.assertEqual([2, 2], self.link_count(), "a second click linked again")

        self.switch("fault refuse=control")
        self.switch("drop control")
        self.shows(status=self.texts.unlinked)
        self.status_is(RED, GREEN)
        self.shot("control-module-lost")
        self.switch("clear refuse")
        self.shows(status=self.texts.linked)
        self.status_is(GREEN, RED)
        self.shot("linked-again")
        self.close_program()

    def test_status_keeps_its_language_until_it_is_set_again(self):
        self.start_all("--fault", "refuse=ground")
        self.press(self.texts.link)
        self.shows(status=self.texts.unlinked)
        other, _, _ = texts.neighbour(self.texts)
        self.choose_with_mouse(other.chosen)
        self.shows(language=other)
        self.press(other.link)
        self.shows(language=other, status=other.unlinked)
        self.switch("clear refuse")
        self.press(other.link)
        self.shows(language=other, status=other.linked, versions=VERSIONS)
        self.choose_with_mouse(self.texts.chosen)
        # The next heartbeat sets the status again.
        self.shows(status=self.texts.linked)
        self.close_program()

    def test_unlinked_buttons_do_nothing(self):
        self.start_all()
        self.press(self.texts.browse)  # needs no link
        self.shows(rows=ROWS)
        self.eventually(lambda: len(self.requests()) == 2 + len(ROWS), "the requests of a browse")
        self.click_row(1)
        self.selects([1])
        for name in self.texts.buttons_that_need_a_link():
            self.press(name)
        self.shows()
        self.selects([1])
        self.assertEqual(2 + len(ROWS), len(self.requests()))
        self.assertEqual({}, self.downloaded())
        self.shot("browsed-without-a-link")
        self.close_program()

    def test_keyboard_alone(self):
        self.start_all()
        said = self.texts
        # The current focus depends on how the language was chosen.
        if said is not texts.ENGLISH:
            self.focus_is_on("combo box", said.chosen)
            screen.key("shift+Tab")
        self.focus_is_on("push button", said.link)
        screen.key("space")
        self.shows(status=said.linked, versions=VERSIONS)

        screen.key("Tab")
        self.focus_is_on("combo box", said.chosen)
        other, way, back = texts.neighbour(said)
        screen.key(way)
        self.shows(language=other, status=other.linked)
        screen.key(back)
        self.shows(status=said.linked)

        screen.key("Tab")
        self.focus_is_on("push button", said.browse)
        screen.key("space")
        self.shows(rows=ROWS)
        for name in said.buttons_that_need_a_link():
            screen.key("Tab")
            self.focus_is_on("push button", name)
        screen.key("Tab")
        self.focus_is_on("check box", said.select_all)
        screen.key("space")
        self.selects([0, 1, 2, 3, 4])
        screen.key("space")
        self.selects([])

        # Rows 1 and 3 from the keyboard: Ctrl moves without selecting, and the space bar selects.
        screen.key("Tab")
        screen.key("ctrl+Home", "Down")
        self.selects([1])
        screen.key("ctrl+Down", "ctrl+Down", "ctrl+space")
        self.selects([1, 3])
        screen.key("ctrl+Tab")
        self.focus_is_on("push button", said.link)
        self.selects([1, 3])
        screen.key(*said.keys(said.link, said.download))
        self.focus_is_on("push button", said.download)
        screen.key("space")
        self.wait_until("both recordings", lambda: self.downloaded() == self.recordings(1, 3))
        self.shows()

        # The download button was disabled during the downloads, so the table took the focus.
        screen.key("ctrl+Tab")
        self.focus_is_on("push button", said.link)
        screen.key(*said.keys(said.link, said.delete))
        self.focus_is_on("push button", said.delete)
        screen.key("space")
        self.shows(rows=without(ROWS, 1, 3))
        screen.key(*said.keys(said.delete, said.delete_all))
        self.focus_is_on("push button", said.delete_all)
        screen.key("space")
        self.confirms_box(texts.BOX_ALL_DELETED, "Return")
        self.shows(rows=())
        self.focus_is_on("push button", said.delete_all)
        screen.key(*said.keys(said.delete_all, said.format))
        self.focus_is_on("push button", said.format)
        screen.key("space")
        self.confirms_box(texts.BOX_FORMATTED, "Escape")
        self.shows()
        self.close_program()
