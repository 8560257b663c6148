"""The window's texts in each language, from tests/data/texts.tsv, not the program's catalogues."""

import csv
import dataclasses
import pathlib

TABLE = pathlib.Path(__file__).resolve().parents[1] / "data/texts.tsv"
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


def read(column, chosen):
    """Returns the texts of one column of the table. Language names stay English."""
    with open(TABLE, encoding="utf-8", newline="") as file:
        shown = {row["name"]: row[column] for row in csv.DictReader(file, delimiter="\t")}
    names = [field.name for field in dataclasses.fields(Texts)]
    return Texts(
        chosen=chosen,
        versions=tuple(shown[name] for name in VERSIONS),
        headers=tuple(shown[name] for name in HEADERS),
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
    def button(text):
        return ("disabled button" if text in disabled else "push button"), text

    label, percentage, count = download
    read = [button(texts.link), ("text", status), ("label", texts.language),
            ("combo box", texts.chosen), ("panel", texts.version_info)]
    for name, version in zip(texts.versions, versions):
        read += [("label", name), ("text", version)]
    read += [("panel", texts.file_operate), button(texts.browse), button(texts.download),
             button(texts.delete), button(texts.format), button(texts.delete_all),
             ("text", label)]
    read += [] if percentage is None else [("progress bar", percentage)]
    read += [("text", count), ("check box", texts.select_all)]
    read += [("table column header", header) for header in texts.headers]
    read += [("table cell", cell) for row in rows for cell in row]
    return read
