"""What the window says in each language, written out: the program's catalogues are not asked."""

import dataclasses


@dataclasses.dataclass(frozen=True)
class Texts:
    chosen: str
    language: str
    link: str
    linked: str
    unlinked: str
    versionInfo: str
    versions: tuple
    fileOperate: str
    browse: str
    download: str
    delete: str
    format: str
    deleteAll: str
    progress: str
    selectAll: str
    headers: tuple


ENGLISH = Texts(
    chosen="English",
    language="language:",
    link="Link Device",
    linked="Link Success!",
    unlinked="Link Fail!",
    versionInfo="Version Information",
    versions=("HardwareType:", "HardwareVersion:", "SoftwareVersion:", "ProtocolVersion:",
              "BootloaderVersion:"),
    fileOperate="File Operate",
    browse="Browse Files in Card",
    download="Download File",
    delete="Delete File",
    format="Format Card",
    deleteAll="Delete All Files",
    progress="Download Progress:",
    selectAll="Select All",
    headers=("Name", "Date", "Size", "Duration"))

# The languages' own names stay English. Colons and exclamation marks are full-width ones.
CHINESE = Texts(
    chosen="Chinese",
    language="语言\uff1a",
    link="连接设备",
    linked="连接成功\uff01",
    unlinked="连接失败\uff01",
    versionInfo="版本信息",
    versions=("硬件类型\uff1a", "硬件版本\uff1a", "软件版本\uff1a", "协议版本\uff1a",
              "Bootloader版本\uff1a"),
    fileOperate="文件操作",
    browse="浏览相机卡内文件",
    download="下载选中文件",
    delete="删除选中文件",
    format="格式化卡",
    deleteAll="删除卡内所有文件",
    progress="下载进度\uff1a",
    selectAll="全选",
    headers=("名称", "日期", "大小", "时长"))

LANGUAGES = (ENGLISH, CHINESE)  # as the combo box lists them

# The message boxes speak Chinese in both languages.
BOX_TITLE = "单击消息"
BOX_ALL_DELETED = "已删除卡内所有文件"
BOX_FORMATTED = "格式化卡成功"


def neighbour(language):
    """One beside it in the list, the key that leads there and the one that leads back."""
    number = LANGUAGES.index(language)
    return (LANGUAGES[number - 1], "Up", "Down") if number else (LANGUAGES[1], "Down", "Up")


def window(texts, status="", versions=("",) * 5, download=("", None, ""), rows=(), disabled=()):
    """All that is to be read in the window, from top to bottom, as pairs of kind and text.

    `download` is label, percentage (None: no bar) and count; `disabled` names texts of buttons.
    """
    def button(text):
        return ("disabled button" if text in disabled else "push button"), text

    label, percentage, count = download
    read = [button(texts.link), ("text", status), ("label", texts.language),
            ("combo box", texts.chosen), ("panel", texts.versionInfo)]
    for name, version in zip(texts.versions, versions):
        read += [("label", name), ("text", version)]
    read += [("panel", texts.fileOperate), button(texts.browse), button(texts.download),
             button(texts.delete), button(texts.format), button(texts.deleteAll),
             ("text", label)]
    read += [] if percentage is None else [("progress bar", percentage)]
    read += [("text", count), ("check box", texts.selectAll)]
    read += [("table column header", header) for header in texts.headers]
    read += [("table cell", cell) for row in rows for cell in row]
    return read
