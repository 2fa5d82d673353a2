"""The project's own tree keeps its layers, and the check that says so sees what breaks them."""

import tempfile
import unittest
from pathlib import Path

import layers

ROOT = Path(__file__).resolve().parents[2]


class Structure(unittest.TestCase):
    def test_every_include_follows_the_layers(self):
        self.assertEqual(layers.check(ROOT), [])

    def test_the_tree_that_is_checked_holds_the_layers(self):
        present = {layers.layer_of(path) for path, _ in layers.files_of(ROOT, "*.h", "*.cpp")}
        self.assertLessEqual({"platform", "platform/linux", "logging", "foundation", "analytics",
                              "agent"}, present)


class Check(unittest.TestCase):
    def complaints_of(self, files):
        with tempfile.TemporaryDirectory() as folder:
            for name, text in files.items():
                path = Path(folder, name)
                path.parent.mkdir(parents=True, exist_ok=True)
                path.write_text(text)
            return layers.check(folder)

    def assert_caught(self, files, words):
        found = self.complaints_of(files)
        self.assertEqual(len(found), 1, found)
        self.assertIn(words, found[0])

    def test_accepts_what_the_layers_allow(self):
        self.assertEqual(self.complaints_of({
            "agent/A.cpp": '#include <cstdio>\n#include <vector>\n#include "agent/A.h"\n'
                           '#include "platform/base/Value.h"\n',
            "platform/linux/L.cpp": '#include <sys/stat.h>\n#ifdef __linux__\n#endif\n'
                                    '#include "platform/linux/L.h"\n',
            "logging/family/F.cpp": '#include "locations/VXPaths.h"\n',
            "tools/ctl/T.cpp": '#include "agent/A.h"\n#include "fs/F.h"\n',
            "tests/contract/T.cpp": '#include <unistd.h>\n#include "platform/linux/L.h"\n',
            "agent/CMakeLists.txt": "vornix_library(vornix_agent DEPENDS vornix_analytics)\n"
                                    "add_executable(agent main.cpp)\n"
                                    "target_link_libraries(agent PRIVATE vornix_platform_linux)\n",
        }), [])

    def test_catches_every_arrow_against_the_layers(self):
        order = ("platform", "logging", "foundation", "settings", "analytics", "agent", "tools")
        wrong = [(low, high) for at, low in enumerate(order) for high in order[at + 1:]]
        wrong += [("fs", "settings"), ("settings", "fs"), ("locations", "foundation"),
                  ("logging", "locations"), ("logging", "logging/family"),
                  ("foundation", "logging/family"), ("agent", "fs")]
        for user, used in wrong:
            with self.subTest(user=user, used=used):
                self.assert_caught({f"{user}/A.h": f'#pragma once\n#include "{used}/B.h"\n'},
                                   f"{user}/A.h:2: {user} may not use {used}")

    def test_catches_the_real_platform_in_a_layer(self):
        for user in ("platform", "logging", "agent", "tools"):
            with self.subTest(user=user):
                self.assert_caught({f"{user}/A.cpp": '  #  include "platform/linux/L.h"\n'},
                                   "may not use platform/linux")

    def test_catches_headers_of_the_system_and_of_third_parties(self):
        for header in ("unistd.h", "sys/stat.h", "linux/fs.h", "curl/curl.h", "plist/plist.h",
                       "systemd/sd-bus.h", "pthread.h"):
            with self.subTest(header=header):
                self.assert_caught({"foundation/A.cpp": f"#include <{header}>\n"},
                                   f"<{header}> is no header of the C or C++ standard library")

    def test_catches_an_include_that_hides_its_layer(self):
        self.assert_caught({"agent/A.cpp": '#include "B.h"\n'}, "not named from the root")
        self.assert_caught({"agent/A.cpp": '#include "../tools/B.h"\n'}, "not named from the root")

    def test_catches_conditions_on_the_operating_system(self):
        for line in ("#if defined(__linux__)", "#ifdef __APPLE__", "# ifndef _WIN32",
                     "#elif __FreeBSD__", "#if __has_include(<unistd.h>)"):
            with self.subTest(line=line):
                self.assert_caught({"settings/A.cpp": line + "\n"}, "operating system")

    def test_catches_locks_that_no_compiler_checks(self):
        for lock in ("std::mutex mutex_;", "std::recursive_mutex m;", "const std::lock_guard l(m);",
                     "std::unique_lock<std::mutex> l(m);", "std::condition_variable_any changed;"):
            with self.subTest(lock=lock):
                self.assert_caught({"agent/A.cpp": lock + "\n"}, "agent/A.cpp:1: a lock that no")
                self.assertEqual(self.complaints_of({"platform/base/Mutex.h": lock + "\n",
                                                     "tests/unit/T.cpp": lock + "\n"}), [])

    def test_catches_wrong_arrows_between_libraries(self):
        self.assert_caught(
            {"logging/CMakeLists.txt": "vornix_library(vornix_logging DEPENDS vornix_settings)\n"},
            "vornix_logging may not link vornix_settings")
        self.assert_caught(
            {"agent/CMakeLists.txt": "target_link_libraries(vornix_agent PUBLIC vornix_platform_linux)"},
            "vornix_agent may not link vornix_platform_linux")

    def test_catches_the_real_platform_under_tests_on_fakes(self):
        self.assert_caught({"tests/unit/a/ATest.cpp": '#include "platform/linux/L.h"\n'},
                           "a test on the fakes")
        self.assert_caught(
            {"tests/unit/CMakeLists.txt": "target_link_libraries(t PRIVATE vornix_platform_linux)"},
            "a test on the fakes")

    def test_catches_a_file_that_is_too_long(self):
        self.assertEqual(self.complaints_of({"agent/A.cpp": "\n" * 400}), [])
        self.assert_caught({"agent/A.cpp": "\n" * 401}, "401 lines")
        self.assert_caught({"tests/e2e/a.py": "\n" * 401}, "401 lines")
