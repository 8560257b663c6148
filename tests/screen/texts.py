"""The window's texts in each language, independent of the program's catalogues."""

import dataclasses


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


ENGLISH = Texts(
    chosen="English",
    language="language:",
    link="Link Device",
    linked="Link Success!",
    unlinked="Link Fail!",
    version_info="Version Information",
    versions=("HardwareType:", "HardwareVersion:", "SoftwareVersion:", "ProtocolVersion:",
              "BootloaderVersion:"),
    file_operate="File Operate",
    browse="Browse Files in Card",
    download="Download File",
    delete="Delete File",
    format="Format Card",
    delete_all="Delete All Files",
    progress="Download Progress:",
    select_all="Select All",
    headers=("Name", "Date", "Size", "Duration"))

# Language names stay English. Colons and exclamation marks are full-width.
CHINESE = Texts(
    chosen="Chinese",
    language="语言\uff1a",
    link="连接设备",
    linked="连接成功\uff01",
    unlinked="连接失败\uff01",
    version_info="版本信息",
    versions=("硬件类型\uff1a", "硬件版本\uff1a", "软件版本\uff1a", "协议版本\uff1a",
              "Bootloader版本\uff1a"),
    file_operate="文件操作",
    browse="浏览相机卡内文件",
    download="下载选中文件",
    delete="删除选中文件",
    format="格式化卡",
    delete_all="删除卡内所有文件",
    progress="下载进度\uff1a",
    select_all="全选",
    headers=("名称", "日期", "大小", "时长"))

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
