"""The window itself: languages, link and status, what needs a link, the keyboard alone."""

import screen
import texts
from scene import GREEN, RED, ROWS, VERSIONS, without


class WindowCases:
    """Upon a ScreenTest."""

    def test_startAndBothWaysOfChangingTheLanguage(self):
        self.startAll()
        self.everyTextIsDrawn(self.picture("first"))
        other, _, back = texts.neighbour(self.texts)
        self.chooseWithMouse(other.chosen)
        self.shows(language=other)
        self.everyTextIsDrawn(self.picture("other-language"))
        screen.key(back)
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
        other, _, _ = texts.neighbour(self.texts)
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

    def test_keyboardAlone(self):
        self.startAll()
        said = self.texts
        # Where the first look left the keyboard depends on how the language was chosen.
        if said is not texts.ENGLISH:
            self.focusIsOn("combo box", said.chosen)
            screen.key("shift+Tab")
        self.focusIsOn("push button", said.link)
        screen.key("space")
        self.shows(status=said.linked, versions=VERSIONS)

        screen.key("Tab")
        self.focusIsOn("combo box", said.chosen)
        other, way, back = texts.neighbour(said)
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

        # The button was disabled meanwhile, and the table took the focus.
        screen.key("ctrl+Tab")
        self.focusIsOn("push button", said.link)
        screen.key("Tab", "Tab", "Tab", "Tab")
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
