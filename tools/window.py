"""Reads the program's window through the accessibility interface: texts, positions and states.

Changes nothing in the window; screen.py sends mouse and keyboard input. Needs a message bus.
"""

import dataclasses
import os
import subprocess
import time

import gi
gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402

Unreadable = GLib.Error  # raised when the box of an item that no longer exists is read

Atspi.set_timeout(2000, 5000)

_STATES = {name: getattr(Atspi.StateType, name)
           for name in ("ENABLED", "SHOWING", "FOCUSED", "CHECKED", "SELECTED")}
# The keys are numbers, because the names of the roles differ between versions of the interface.
_ROLES = {int(number): name for number, name in (
    (Atspi.Role.ALERT, "alert"), (Atspi.Role.CHECK_BOX, "check box"),
    (Atspi.Role.COMBO_BOX, "combo box"), (Atspi.Role.DIALOG, "dialog"),
    (Atspi.Role.FRAME, "frame"), (Atspi.Role.LABEL, "label"), (Atspi.Role.LIST, "list"),
    (Atspi.Role.LIST_ITEM, "list item"), (Atspi.Role.MENU_BAR, "menu bar"),
    (Atspi.Role.NOTIFICATION, "notification"), (Atspi.Role.PANEL, "panel"),
    (Atspi.Role.PROGRESS_BAR, "progress bar"),
    (43, "push button"),  # PUSH_BUTTON, and BUTTON from at-spi 2.56 on
    (Atspi.Role.STATUS_BAR, "status bar"), (Atspi.Role.TABLE_CELL, "table cell"),
    (Atspi.Role.TABLE_COLUMN_HEADER, "table column header"),
    (Atspi.Role.TABLE_ROW_HEADER, "table row header"), (Atspi.Role.TEXT, "text"),
    (Atspi.Role.TOOL_BAR, "tool bar"))}
# _walk() does not descend into these widgets: they draw their contents themselves, or show them
# only while they are open.
_CLOSED = ("combo box", "status bar", "tool bar", "menu bar")
_WITHOUT_PARTS = ("push button", "check box", "label", "text", "progress bar",
                  "table column header", "table row header", "table cell", "list item")
_READ_BY_NAME = ("push button", "check box", "label", "panel", "combo box", "table column header",
                 "table cell")


def start_bus(log):
    """Starts a message bus for this process and its children; writes the bus's error messages to
    the log. The caller must keep the returned process. The bus ends with the private network."""
    with open(log, "wb") as file:
        bus = subprocess.Popen(["dbus-daemon", "--session", "--nofork", "--print-address"],
                               stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=file)
    os.environ["DBUS_SESSION_BUS_ADDRESS"] = bus.stdout.readline().decode().strip()
    return bus


@dataclasses.dataclass(frozen=True)
class Item:
    role: str
    name: str
    text: str  # the visible text
    states: frozenset
    accessible: object

    def has(self, state):
        return state in self.states

    @property
    def box(self):
        """Returns left, top, right and bottom on the display."""
        extents = self.accessible.get_extents(Atspi.CoordType.SCREEN)
        return (extents.x, extents.y, extents.x + extents.width, extents.y + extents.height)


def _role_of(accessible):
    number = int(accessible.get_role())
    return _ROLES.get(number, f"role {number}")


def _text_of(role, name, accessible):
    if role == "text":
        return Atspi.Text.get_text(accessible, 0, -1)
    if role == "progress bar":
        most = Atspi.Value.get_maximum_value(accessible)
        value = Atspi.Value.get_current_value(accessible)
        return f"{int(100 * value / most)}%" if most else "0%"
    return name if role in _READ_BY_NAME else ""


def _walk(accessible, items, closed=_CLOSED):
    states = accessible.get_state_set()
    if not states.contains(Atspi.StateType.SHOWING):
        return
    role, name = _role_of(accessible), accessible.get_name()
    items.append(Item(role, name, _text_of(role, name, accessible), frozenset(
        state for state, number in _STATES.items() if states.contains(number)), accessible))
    if role in closed or role in _WITHOUT_PARTS:
        return
    for index in range(accessible.get_child_count()):
        child = accessible.get_child_at_index(index)
        if child is not None:
            _walk(child, items, closed)


class Program:
    """The windows of the process with a given id."""

    def __init__(self, process):
        self.process = process
        self.application = None

    def _find_application(self):
        desktop = Atspi.get_desktop(0)
        for index in range(desktop.get_child_count()):
            child = desktop.get_child_at_index(index)
            if child is not None and child.get_process_id() == self.process:
                # Without a cache: no event loop runs here that would update the cache.
                child.set_cache_mask(Atspi.Cache.NONE)
                self.application = child
                return
        raise LookupError("the program is not in the accessibility tree")

    def _top_levels(self):
        if self.application is None:
            self._find_application()
        children = (self.application.get_child_at_index(index)
                    for index in range(self.application.get_child_count()))
        return [child for child in children if child is not None]

    def _look(self, wanted, closed=_CLOSED):
        for top in self._top_levels():
            if wanted(top):
                items = []
                _walk(top, items, closed)
                if items:
                    return items
        return []

    def items(self):
        """Returns everything shown in the window, in tree order; empty without a window."""
        return self._patiently(lambda: self._look(lambda top: _role_of(top) == "frame"))

    def find(self, role, name=None, number=0):
        """Returns the item with this number, counted from 0 among the items shown in the window
        that have the role and, if one is given, the name; None if there are fewer such items."""
        found = [item for item in self.items() if item.role == role and name in (None, item.name)]
        return found[number] if number < len(found) else None

    def box(self):
        """Returns everything shown in the message box."""
        return self._patiently(lambda: self._look(
            lambda top: _role_of(top) in ("alert", "dialog", "notification")))

    def languages(self):
        """Returns the entries of the language list, or no entries while the list is closed."""
        items = self._patiently(lambda: self._look(
            lambda top: _role_of(top) == "frame", closed=()))
        opened = [item for item in items if item.role == "list" and item.box[2] > item.box[0]]
        return [item for item in items if item.role == "list item"] if opened else []

    @staticmethod
    def _patiently(look):
        """Returns the result of look(), or no items if the program is not in the accessibility tree
        or changes while it is read."""
        try:
            return look()
        except (GLib.Error, LookupError):
            time.sleep(0.05)
            return []

    def read(self):
        """Returns role and text of everything readable in the window."""
        return readable(self.items())


def wrongly_drawn(items, shot):
    """Returns a description of each button, label, text field and column header that has a text but
    no drawn text, or drawn text but no text."""
    wrong = []
    for item in items:
        if item.role in ("push button", "label", "text", "table column header"):
            left, top, right, bottom = item.box
            dark = shot.count((left + 4, top + 4, right - 4, bottom - 4),
                              lambda pixel: max(pixel) < 100)
            if bool(item.text) != (dark > 10):
                wrong.append(f"{item.role} {item.text}: {dark} dark pixels")
    return wrong


def readable(items):
    kinds = _READ_BY_NAME + ("text", "progress bar")
    return [("disabled button" if item.role == "push button" and not item.has("ENABLED")
             else item.role, item.text) for item in items
            if item.role in kinds and not (item.role in ("panel", "label") and not item.text)]
