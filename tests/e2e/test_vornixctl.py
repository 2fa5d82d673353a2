"""The installed vornixctl, as a person and as a program call it."""

import json
import os
import shutil
import subprocess
import tempfile
import unittest
import urllib.parse
from pathlib import Path

from support import tree
from support.case import smoke

PROGRAM = tree.WHOLE / "bin" / "vornixctl"
# Those with another number of places than one.
SEVERAL = {"libraryPaths": 2, "applicationSupportPaths": 2, "preferences": 2,
           "systemPlugInFolders": 15}


class Vornixctl(unittest.TestCase):
    def setUp(self):
        self.folder = Path(tempfile.mkdtemp(prefix="vornixctl-"))
        self.addCleanup(shutil.rmtree, self.folder)
        self.home = self.folder / "home"
        self.home.mkdir()

    def call(self, *words, output=subprocess.PIPE, **environment):
        kept = {name: value for name, value in os.environ.items() if name.endswith("SAN_OPTIONS")}
        run = subprocess.run([PROGRAM, *words], cwd=self.folder, stdin=subprocess.DEVNULL,
                             stdout=output, stderr=subprocess.PIPE,
                             env={**kept, "HOME": self.home, "TMPDIR": self.folder, **environment})
        return run.returncode, run.stdout, run.stderr.decode(errors="replace")

    def listed(self, **environment):
        status, output, errors = self.call("paths", "--json", **environment)
        self.assertEqual((status, errors), (0, ""))
        return json.loads(output)

    def path_of(self, name, **environment):
        (entry,) = [entry for entry in self.listed(**environment) if entry["name"] == name]
        return entry["path"]

    @smoke
    def test_lists_the_locations_for_machines(self):
        entries = self.listed()
        names = [entry["name"] for entry in entries]
        for name in names:
            self.assertEqual(names.count(name), SEVERAL.get(name, 1), name)
        self.assertEqual(len(set(names)), 37)
        for entry in entries:
            self.assertEqual(list(entry), ["name", "path", "exists"])
            self.assertEqual(entry["exists"],
                             entry["path"] is not None and os.path.exists(entry["path"]), entry)
        places = {entry["name"]: entry["path"] for entry in entries}
        logs = f"{self.home}/Library/Logs"
        for name, path in {
                "userHome": f"{self.home}", "userLibraryURL": f"{self.home}/Library",
                "userLogs": logs, "vnxLogFolderURL": f"{logs}/com.orvane.Vornix3",
                "vnxLogFolderPath": f"{logs}/com.orvane.Vornix3", "aslLogs": "/var/log/asl",
                "userTempPath": f"{self.folder}", "systemTrash": f"{self.home}/.Trash",
                "darwinUserCaches": None, "recentPhotosLibraryPath": None}.items():
            self.assertEqual(places[name], path, name)
        self.assertEqual([entry["path"] for entry in entries if entry["name"] == "preferences"],
                         ["/Library/Preferences", f"{self.home}/Library/Preferences"])

    def test_lists_the_same_as_a_table(self):
        status, output, errors = self.call("paths")
        self.assertEqual((status, errors), (0, ""))
        lines = output.decode().splitlines()
        self.assertEqual(lines[0].split(), ["NAME", "PATH", "EXISTS"])
        rows = [[line.split()[0], " ".join(line.split()[1:-1]), line.split()[-1]]
                for line in lines[1:]]
        self.assertEqual(rows, [[entry["name"], entry["path"] or "-",
                                 "yes" if entry["exists"] else "no"] for entry in self.listed()])

    def test_takes_a_home_of_any_bytes(self):
        for name in (b"a b", b"100%", b"line\nbreak", b"quote\"\\", "é\U0001F600".encode()):
            with self.subTest(name):
                home = os.fsencode(self.folder) + b"/" + name
                os.mkdir(home)
                self.assertEqual(os.fsencode(self.path_of("userHome", HOME=home + b"/")), home)

    def test_tells_a_home_that_is_no_text_as_an_address(self):
        home = os.fsencode(self.folder) + b"/caf\xe9 \xff%"
        os.mkdir(home)
        address = self.path_of("userLogs", HOME=home)
        self.assertTrue(address.startswith("file:///"), address)
        self.assertEqual(urllib.parse.unquote_to_bytes(address.removeprefix("file://")),
                         home + b"/Library/Logs")
        _, table, _ = self.call("paths", HOME=home)
        self.assertIn(rb"/caf\xe9 \xff%/Library/Logs  ", table)

    def test_follows_the_desktops_folders(self):
        places = {entry["name"]: entry["path"] for entry in self.listed(
            XDG_DATA_HOME=f"{self.folder}/data", XDG_CACHE_HOME=f"{self.folder}/cache")}
        self.assertEqual(places["userCaches"], f"{self.folder}/cache")
        self.assertTrue(places["applicationSupport"].startswith(f"{self.folder}/data"))

    def test_prints_help(self):
        for words in (["help"], ["--help"], ["-h"]):
            status, output, errors = self.call(*words)
            self.assertEqual((status, errors), (0, ""))
            self.assertIn(b"paths [--json]", output)

    @smoke
    def test_refuses_what_it_does_not_know(self):
        for words in ([], ["nonsense"], ["paths", "nonsense"], ["paths", "--jso"], ["help", "x"],
                      [b"\xff"]):
            with self.subTest(words):
                status, output, errors = self.call(*words)
                self.assertEqual((status, output), (2, b""))
                self.assertTrue(errors.startswith("vornixctl: "), errors)
        self.assertEqual(list(self.home.iterdir()), [])

    def test_says_that_the_output_cannot_be_written(self):
        with open("/dev/full", "wb") as full:
            status, _, errors = self.call("paths", output=full)
        self.assertEqual(status, 1)
        self.assertIn("vornixctl: cannot write the output: No space left on device", errors)

    def test_has_a_manual(self):
        manual = tree.WHOLE / "share" / "man" / "man1" / "vornixctl.1"
        text = manual.read_text(encoding="utf-8")
        for word in (".TH VORNIXCTL 1", r"\-\-json", ".SH EXIT STATUS"):
            self.assertIn(word, text)


if __name__ == "__main__":
    unittest.main()
