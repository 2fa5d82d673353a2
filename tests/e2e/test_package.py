"""What other programs are built with: the installed library, its headers, and both ways to find them."""

import os
import re
import shutil
import subprocess
import tempfile
import unittest
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

from support import tree

ROOT = Path(__file__).resolve().parents[2]
EXAMPLE = ROOT / "examples" / "family-program"
VERSION = re.search(r"project\(Vornix VERSION (\S+)",
                    (ROOT / "CMakeLists.txt").read_text(encoding="utf-8")).group(1)
EXPORTED = ("platform", "logging", "locations", "foundation", "fs", "settings", "analytics")
COMPILER = [*(["ccache"] if shutil.which("ccache") else []), "g++", "-std=c++20"]
STRICT = ["-Wall", "-Wextra", "-Wpedantic", "-Wshadow", "-Wconversion", "-Werror"]


class Package(unittest.TestCase):
    def setUp(self):
        # On the file system of the build, so that the installed files can be linked rather than copied.
        self.folder = Path(tempfile.mkdtemp(prefix="package-", dir=tree.BUILD / "e2e"))
        self.addCleanup(shutil.rmtree, self.folder)
        self.home = self.folder / "home"
        self.home.mkdir()

    def moved(self, name):
        """The installed tree at a place where it was never installed."""
        return Path(shutil.copytree(tree.WHOLE, self.folder / name, copy_function=os.link))

    def environment(self, **more):
        kept = {name: value for name, value in os.environ.items()
                if name in ("PATH", "USER", "LOGNAME") or name.startswith("CCACHE_")}
        return {**kept, "HOME": str(self.home), "LANG": "C.UTF-8", "TMPDIR": str(self.folder),
                "CCACHE_BASEDIR": str(self.folder), **more}

    def call(self, *words, **more):
        run = subprocess.run(words, cwd=self.folder, env=self.environment(**more), text=True,
                             capture_output=True)
        self.assertEqual(run.returncode, 0, f"{words}:\n{run.stdout}{run.stderr}")
        return run.stdout

    def flags(self, prefix, *options):
        """What pkg-config tells without any option for static linking."""
        return self.call("pkg-config", *options, "vornix",
                         PKG_CONFIG_PATH=str(prefix / "lib" / "pkgconfig")).split()

    def check_runs(self, program):
        """The log works at once in a fresh home, and is continued by the next run."""
        log = self.home / "Library" / "Logs" / "com.orvane.Vornix3" / "Vornix.log"
        for lines in (1, 2):
            output = self.call(str(program), LANG="de_DE.UTF-8", LANGUAGE="")
            told = dict(re.split(r"  +", line, maxsplit=1) for line in output.splitlines()[:-1])
            self.assertEqual(told, {
                "Home": str(self.home),
                "Preferences": f"{self.home}/Library/Preferences",
                "Temporary files": str(self.folder),
                "Log folder": str(log.parent),
                "Log": str(log),
                'MD5 of "Vornix"': "16f1de484903c69c13a0f005e61a370f",
                "Without tags": "Time to  clean  up",
                "First language": "de-DE",
            })
            self.assertRegex(output.splitlines()[-1],
                             r"^[-0-9]+ [:.0-9]+ family-program\[\d+/0x[0-9a-f]+\] \[lvl=1\] "
                             r"\(unknown\) family-program has come to its end$")
            logged = log.read_text(encoding="utf-8").splitlines()
            self.assertEqual((len(logged), logged[-1]), (lines, output.splitlines()[-1]))

    def test_a_project_of_cmake_finds_the_library_wherever_the_tree_was_moved(self):
        prefix = self.moved("a moved tree")
        self.call("cmake", "-GNinja", "-S", str(EXAMPLE), "-B", "build",
                  f"-DCMAKE_PREFIX_PATH={prefix}")
        self.call("cmake", "--build", "build")
        self.check_runs(self.folder / "build" / "family-program")

    def test_a_compiler_finds_the_library_through_pkg_config_wherever_the_tree_was_moved(self):
        prefix = self.moved("moved")
        self.call(*COMPILER, str(EXAMPLE / "main.cpp"), "-o", "family-program",
                  *self.flags(prefix, "--cflags", "--libs"))
        self.check_runs(self.folder / "family-program")

    def test_both_tell_the_version_and_refuse_another(self):
        self.assertEqual(self.flags(tree.WHOLE, "--modversion"), [VERSION])
        script = self.folder / "find.cmake"
        script.write_text("find_package(Vornix 99.0 QUIET CONFIG)\n"
                          "message(\"${Vornix_FOUND} ${Vornix_CONSIDERED_VERSIONS}\")\n",
                          encoding="utf-8")
        run = subprocess.run(["cmake", f"-DCMAKE_PREFIX_PATH={tree.WHOLE}", "-P", script],
                             capture_output=True, text=True)
        self.assertEqual(run.stderr, f"0 {VERSION}\n")

    def test_neither_asks_for_more_than_the_language_and_the_include_folder(self):
        self.assertEqual(self.flags(tree.WHOLE, "--cflags-only-other"), ["-pthread"])
        targets = (tree.WHOLE / "lib/cmake/Vornix/VornixTargets.cmake").read_text(encoding="utf-8")
        self.assertIn("cxx_std_20", targets)
        for word in ("-Wall", "-Werror", "COMPILE_OPTIONS", "LINK_OPTIONS", "COMPILE_DEFINITIONS"):
            self.assertNotIn(word, targets)

    def test_no_file_tells_where_it_was_built_or_installed(self):
        files = [path for folder in ("lib/cmake", "lib/pkgconfig")
                 for path in (tree.WHOLE / folder).rglob("*") if path.is_file()]
        self.assertGreaterEqual(len(files), 5)
        for path in files:
            for place in (tree.BUILD, ROOT, tree.WHOLE):
                self.assertNotIn(str(place), path.read_text(encoding="utf-8"), path)

    def test_the_library_needs_nothing_that_it_does_not_ask_for(self):
        (self.folder / "main.cpp").write_text("int main() {}\n", encoding="utf-8")
        libraries = self.flags(tree.WHOLE, "--libs")
        self.assertIn("-lvornix", libraries)
        whole = [word for name in libraries for word in (
            ["-Wl,--whole-archive", name, "-Wl,--no-whole-archive"] if name == "-lvornix" else [name])]
        self.call("g++", "main.cpp", "-o", "whole", *whole)

    def headers(self):
        folder = tree.WHOLE / "include" / "vornix"
        return sorted(str(path.relative_to(folder)) for path in folder.rglob("*") if path.is_file())

    def test_the_headers_of_all_layers_below_the_agent_are_installed_and_no_others(self):
        expected = sorted(str(path.relative_to(ROOT)) for layer in EXPORTED
                          for path in (ROOT / layer).rglob("*.h")
                          if not path.is_relative_to(ROOT / "platform" / "linux"))
        self.assertEqual(self.headers(), expected)

    def check_compiles(self, header):
        # Twice, since a header that is not guarded compiles only once.
        source = self.folder / (header.replace("/", "_") + ".cpp")
        source.write_text(f'#include "{header}"\n#include "{header}"\n', encoding="utf-8")
        self.call(*COMPILER, *STRICT, "-O0", "-c", source.name, "-o", f"{source.name}.o",
                  "-Iprefix/include/vornix")

    def headers_of_sources(self):
        """What some source includes first is compiled by itself wherever headers are not precompiled:
        by the build of what is shipped, and by clang-tidy."""
        for layer in EXPORTED:
            for path in (ROOT / layer).rglob("*.cpp"):
                found = re.search(r'^#include "(.*)"', path.read_text(encoding="utf-8"), re.MULTILINE)
                first = re.search(r"^#include", path.read_text(encoding="utf-8"), re.MULTILINE)
                if found and found.start() == first.start():
                    yield found.group(1)

    def test_every_header_that_no_source_includes_first_compiles_by_itself(self):
        (self.folder / "prefix").symlink_to(tree.WHOLE)
        rest = sorted(set(self.headers()) - set(self.headers_of_sources()))
        self.assertIn("platform/base/Date.h", rest)
        with ThreadPoolExecutor(os.cpu_count()) as workers:
            for header, result in [(header, workers.submit(self.check_compiles, header))
                                   for header in rest]:
                with self.subTest(header):
                    result.result()


if __name__ == "__main__":
    unittest.main()
