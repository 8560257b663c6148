"""The window's widgets and texts in each language, as tests/data/form.txt and texts.tsv list them.

Both files are written by hand: nothing comes from the program or its catalogues.
"""

import csv
import dataclasses
import pathlib
import re

DATA = pathlib.Path(__file__).resolve().parents[1] / "data"
TABLE = DATA / "texts.tsv"
# Name and class of each object of the form, from top to bottom, up to the signals and slots.
FORM = re.findall(r"(?m)^ +(\w+): (\w+)",
                  (DATA / "form.txt").read_text(encoding="utf-8").partition("\n\n")[0])
BUTTONS = [name for name, kind in FORM if kind == "QPushButton"]
ROLES = {"QPushButton": "push button", "QLineEdit": "text", "QLabel": "label",
         "QComboBox": "combo box", "QGroupBox": "panel", "QProgressBar": "progress bar",
         "QCheckBox": "check box"}
TAB_ORDER = [name for name, kind in FORM
             if kind in ("QPushButton", "QComboBox", "QCheckBox", "QTableWidget")]
VERSIONS = ("hardware_type", "hardware_version", "software_version", "protocol_version",
            "bootloader_version")
HEADERS = ("file_name", "file_date", "file_size", "file_duration")


@dataclasses.dataclass(frozen=True)
class Texts:
    chosen: str
    language: str
    link: str
    linked: str
    unlinked: str
    version_info: str
    versions: tuple
    file_operate: str
    browse: str
    download: str
    delete: str
    format: str
    delete_all: str
    progress: str
    select_all: str
    headers: tuple
    shown_by: dict  # the texts by the names of the widgets that show them

    def buttons_that_need_a_link(self):
        """Returns the texts of the buttons that need a link, from left to right."""
        texts = [self.shown_by[button] for button in BUTTONS]
        return [text for text in texts if text not in (self.link, self.browse)]

    def keys(self, start, end):
        """Returns the keys that move the focus from the button with the text `start` to `end`."""
        order = [self.shown_by.get(widget) for widget in TAB_ORDER]
        steps = order.index(end) - order.index(start)
        return ("Tab" if steps > 0 else "shift+Tab",) * abs(steps)


def read(column, chosen):
    """Returns the texts in one column of the table. `chosen` is the entry of the combo box."""
    with open(TABLE, encoding="utf-8", newline="") as file:
        rows = list(csv.DictReader(file, delimiter="\t"))
    shown = {row["name"]: row[column] for row in rows}
    names = [field.name for field in dataclasses.fields(Texts)]
    return Texts(
        chosen=chosen,
        versions=tuple(shown[name] for name in VERSIONS),
        headers=tuple(shown[name] for name in HEADERS),
        shown_by={widget: row[column] for row in rows for widget in row["shown by"].split()},
        **{name: shown[name] for name in names if name in shown})


ENGLISH = read("English", "English")
CHINESE = read("Chinese", "Chinese")
LANGUAGES = (ENGLISH, CHINESE)  # as the combo box lists them

# The message boxes are Chinese in both languages.
BOX_TITLE = "单击消息"
BOX_ALL_DELETED = "已删除卡内所有文件"
BOX_FORMATTED = "格式化卡成功"


def neighbour(language):
    """Returns an adjacent language, the key that selects it and the key that returns."""
    number = LANGUAGES.index(language)
    return (LANGUAGES[number - 1], "Up", "Down") if number else (LANGUAGES[1], "Down", "Up")


def window(texts, status="", versions=("",) * 5, download=("", None, ""), rows=(), disabled=()):
    """Returns everything readable in the window, from top to bottom, as pairs of role and text.

    `download` is label, percentage (None: no bar) and count; `disabled` names texts of buttons.
    """
    label, percentage, count = download
    contents = dict(zip(("lineEditHardType", "lineEditHardVer", "lineEditSoftVer",
                         "lineEditProtocolVer", "lineEditBootVer"), versions),
                    lineEditLinkBELUN=status, comboBox=texts.chosen, lineEditDownloadLabel=label,
                    progressBarDownLoad=percentage, lineEditDownloadProgress=count)
    read = []
    for name, kind in FORM:
        text = texts.shown_by.get(name, contents.get(name))
        if kind in ROLES and text is not None:
            read.append(("disabled button" if text in disabled else ROLES[kind], text))
    read += [("table column header", header) for header in texts.headers]
    read += [("table cell", cell) for row in rows for cell in row]
    return read
