#!/usr/bin/python3
"""Installs into an empty folder, checks the files, and starts the installed programs."""

import argparse
import gzip
import os
import pathlib
import re
import struct
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree

sys.dont_write_bytecode = True
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent))
import desktop_entry  # noqa: E402

SIZES = (16, 22, 24, 32, 48, 64, 128, 256)
ICONS = "share/icons/hicolor"
COMPONENT = "localhost.belun.download"
DOCUMENTS = "share/doc/belun-download"
PAGES = ("architecture", "building", "camera-protocol", "faults", "http-library", "link-protocol",
         "performance", "recordings-safe", "recordings-safe.zh", "replaying", "testing",
         "third-party", "translating")
CHARTS = ("alive", "browse", "download", "exchange", "growth", "idle", "start")
PROGRAM = {
    "bin/belun-download",
    "bin/belun-verify",
    "share/applications/belun-download.desktop",
    "share/bash-completion/completions/belun-verify",
    f"{DOCUMENTS}/CONTRIBUTING.md",
    f"{DOCUMENTS}/LICENSE",
    f"{DOCUMENTS}/README.md",
    f"{DOCUMENTS}/README.zh.md",
    f"{DOCUMENTS}/SECURITY.md",
    f"{DOCUMENTS}/changelog.gz",
    f"{DOCUMENTS}/copyright",
    f"{DOCUMENTS}/docs/images/window-en.png",
    f"{DOCUMENTS}/docs/images/window-zh.png",
    f"{DOCUMENTS}/docs/images/window.gif",
    f"{DOCUMENTS}/simulator/README.md",
    f"{ICONS}/scalable/apps/belun-download.svg",
    "share/lintian/overrides/belun-download",
    "share/man/man1/belun-download.1.gz",
    "share/man/man1/belun-verify.1.gz",
    f"share/metainfo/{COMPONENT}.metainfo.xml",
} | {f"{ICONS}/{size}x{size}/apps/belun-download.png" for size in SIZES} \
  | {f"{DOCUMENTS}/docs/{page}.md" for page in PAGES} \
  | {f"{DOCUMENTS}/docs/images/performance-{chart}.svg" for chart in CHARTS}
SIMULATOR = {
    "bin/belun-private-network",
    "bin/belun-simulator",
    "share/bash-completion/completions/belun-private-network",
    "share/bash-completion/completions/belun-simulator",
    "share/doc/belun-simulator/README.md",
    "share/doc/belun-simulator/bad-day.scenario",
    "share/doc/belun-simulator/changelog.gz",
    "share/doc/belun-simulator/copyright",
    "share/lintian/overrides/belun-simulator",
    "share/man/man1/belun-private-network.1.gz",
    "share/man/man1/belun-simulator.1.gz",
}


def install(prefix, component=None):
    command = [ARGUMENTS.cmake, "--install", ARGUMENTS.build, "--prefix", prefix]
    subprocess.run(command + (["--component", component] if component else []),
                   check=True, stdout=subprocess.DEVNULL, timeout=60)


def files_in(folder):
    return {str(path.relative_to(folder)) for path in folder.rglob("*") if not path.is_dir()}


class InstallTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(cls.folder.cleanup)
        cls.prefix = pathlib.Path(cls.folder.name, "prefix")
        install(cls.prefix)

    def text(self, path):
        return (self.prefix / path).read_text(encoding="utf-8")

    def unpacked(self, path):
        return gzip.decompress((self.prefix / path).read_bytes()).decode("utf-8")

    def test_everything_is_installed_and_nothing_else(self):
        self.assertEqual(PROGRAM | SIMULATOR, files_in(self.prefix))

    def test_each_component_stands_alone(self):
        for component, files in (("program", PROGRAM), ("simulator", SIMULATOR)):
            prefix = pathlib.Path(self.folder.name, component)
            install(prefix, component)
            self.assertEqual(files, files_in(prefix))

    def test_only_programs_are_executable_and_all_files_are_readable(self):
        for path in PROGRAM | SIMULATOR:
            mode = (self.prefix / path).stat().st_mode & 0o777
            self.assertEqual(0o755 if path.startswith("bin/") else 0o644, mode, path)

    def test_no_link_in_a_document_is_dead(self):
        followed = 0
        for page in self.prefix.rglob("*.md"):
            for target in re.findall(r"(?:\]\(|src=\")([^)#\s\"]+)",
                                     page.read_text(encoding="utf-8")):
                self.assertTrue((page.parent / target).is_file(), f"{page}: {target}")
                followed += 1
        self.assertGreater(followed, 20)

    def test_icons_have_the_size_of_their_folder(self):
        for size in SIZES:
            head = (self.prefix / f"{ICONS}/{size}x{size}/apps/belun-download.png").read_bytes()
            self.assertEqual((size, size), struct.unpack(">II", head[16:24]))

    def test_the_desktop_entry_is_in_both_languages(self):
        path = self.prefix / "share/applications/belun-download.desktop"
        entry = desktop_entry.read(path)
        for key in ("Name", "GenericName", "Comment", "Keywords"):
            self.assertTrue(entry[key].isascii())
            self.assertFalse(entry[f"{key}[zh_CN]"].isascii())
        self.assertEqual(("Application", "belun-download", "belun-download"),
                         (entry["Type"], entry["Exec"], entry["Icon"]))
        action = desktop_entry.read(path, f"Desktop Action {entry['Actions'].rstrip(';')}")
        self.assertEqual(("Compare with the card", "与相机卡比对",
                          "x-terminal-emulator -e belun-verify --wait"),
                         (action["Name"], action["Name[zh_CN]"], action["Exec"]))

    def test_the_version_is_the_same_everywhere(self):
        version = ARGUMENTS.version
        printed = subprocess.run([self.prefix / "bin/belun-simulator", "--version"], check=True,
                                 stdout=subprocess.PIPE, timeout=20).stdout
        self.assertEqual(f"belun-simulator {version}\n".encode(), printed)
        for name in ("belun-download", "belun-simulator"):
            self.assertTrue(self.unpacked(f"share/doc/{name}/changelog.gz").startswith(
                f"belun-download ({version}) "))
        metainfo = xml.etree.ElementTree.parse(
            self.prefix / f"share/metainfo/{COMPONENT}.metainfo.xml")
        release = metainfo.find("releases/release")
        self.assertEqual(version, release.get("version"))
        for name in ("belun-download", "belun-private-network", "belun-simulator", "belun-verify"):
            title = self.unpacked(f"share/man/man1/{name}.1.gz").splitlines()[0]
            self.assertTrue(title.endswith(f' "{release.get("date")}" "belun\\-download {version}" '
                                           '"User Commands"'), title)

    def test_no_web_address_appears_without_a_project_url(self):
        text = self.text(f"share/metainfo/{COMPONENT}.metainfo.xml")
        self.assertNotIn("://", text)
        self.assertIn(f"<id>{COMPONENT}</id>", text)

    def test_the_simulator_starts_in_its_private_network(self):
        tools = self.prefix / "bin"
        ready = subprocess.run([tools / "belun-private-network", "--own", tools / "belun-simulator",
                                "--exit-with-stdin"], stdin=subprocess.DEVNULL, check=True,
                               stdout=subprocess.PIPE, timeout=60).stdout
        self.assertEqual(b"belun-simulator ready\n", ready)

    def test_the_program_starts_from_the_desktop_entry(self):
        os.environ["PATH"] = f"{self.prefix}/bin:{os.environ['PATH']}"
        self.assertEqual(0, desktop_entry.start_and_close(
            self.prefix / "share/applications/belun-download.desktop"))


PARSER = argparse.ArgumentParser(description=__doc__)
PARSER.add_argument("--cmake", required=True)
PARSER.add_argument("--build", required=True)
PARSER.add_argument("--version", required=True)
ARGUMENTS, REST = PARSER.parse_known_args()
unittest.main(argv=sys.argv[:1] + REST)
