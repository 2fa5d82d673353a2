"""vornix-open, installed, starts stand-in applications; where a service manager runs, through it."""

import json
import os
import re
import subprocess
import unittest
from pathlib import Path

from gi.repository import Gio, GLib

from support import tree, waiting
from support.case import smoke
from support.processes import is_gone
from support.session import Session

PROGRAM = tree.BUILD / "e2e" / "prefix" / "libexec" / "vornix" / "vornix-open"
IDENTIFIER = "com.orvane.Vornix3"
# Tells in one file a start how it was started; stays as long as a pipe "stay" is held open for it.
STAND_IN = """#!/usr/bin/python3 -S
import json, os, sys, time
report = {
    "arguments": [os.fsencode(word).decode("latin-1") for word in sys.argv[1:]],
    "environment": dict(os.environ), "process": os.getpid(), "parent": os.getppid(),
    "session": os.getsid(0), "folder": os.getcwd(),
    "standard": [os.readlink(f"/proc/self/fd/{number}") for number in (0, 1, 2)],
    "descriptors": len(os.listdir("/proc/self/fd")),
}
path = f"%(reports)s/{time.monotonic_ns()}.{os.getpid()}"
with open(path + ".part", "w") as file:
    json.dump(report, file)
os.rename(path + ".part", path + ".json")
if os.path.exists("%(stay)s"):
    with open("%(stay)s") as held:
        held.read()
"""
MANAGER = "org.freedesktop.systemd1"
MANAGER_INTERFACES = """<node>
<interface name="org.freedesktop.systemd1.Manager">
  <method name="Subscribe"/>
  <method name="StartTransientUnit">
    <arg type="s" direction="in"/><arg type="s" direction="in"/>
    <arg type="a(sv)" direction="in"/><arg type="a(sa(sv))" direction="in"/>
    <arg type="o" direction="out"/>
  </method>
  <method name="GetUnit"><arg type="s" direction="in"/><arg type="o" direction="out"/></method>
  <signal name="JobRemoved">
    <arg type="u"/><arg type="o"/><arg type="s"/><arg type="s"/>
  </signal>
</interface>
</node>"""


class FakeManager:
    """A service manager of the user that starts what it is told to and remembers it."""

    path = "/org/freedesktop/systemd1"

    def __init__(self, bus, refuses=False, result="done"):
        self.refuses, self.result = refuses, result
        self.started, self.processes = [], []
        self._connection = bus.connect()
        interface = Gio.DBusNodeInfo.new_for_xml(MANAGER_INTERFACES).interfaces[0]
        self._connection.register_object(self.path, interface, self._called, None, None)
        self._connection.call_sync("org.freedesktop.DBus", "/org/freedesktop/DBus",
                                   "org.freedesktop.DBus", "RequestName",
                                   GLib.Variant("(su)", (MANAGER, 0)), None, 0, -1, None)

    def _called(self, _connection, _sender, _path, _interface, method, arguments, invocation):
        if method == "Subscribe":
            invocation.return_value(None)
        elif method == "StartTransientUnit" and not self.refuses:
            self._start(arguments.unpack(), invocation)
        else:
            invocation.return_dbus_error("org.freedesktop.systemd1.NoSuchUnit", "not here")

    def _start(self, arguments, invocation):
        unit, mode, properties, extra = arguments
        properties = dict(properties)
        self.started.append((unit, mode, properties, extra))
        if self.result == "done":
            ((program, words, _),) = properties["ExecStart"]
            environment = dict(variable.split("=", 1) for variable in properties["Environment"])
            self.processes.append(subprocess.Popen(
                [word.replace("$$", "$") for word in words], executable=program, env=environment))
        job = "/org/freedesktop/systemd1/job/7"
        invocation.return_value(GLib.Variant("(o)", (job,)))
        self._connection.emit_signal(None, self.path, "org.freedesktop.systemd1.Manager",
                                     "JobRemoved",
                                     GLib.Variant("(uoss)", (7, job, unit, self.result)))

    def end(self):
        for process in self.processes:
            process.wait(20)


class Base(unittest.TestCase):
    def setUp(self):
        self.session = Session(installed=False)
        self.reports = self.session.folder / "reports"
        self.reports.mkdir()
        self.stay = self.session.folder / "stay"
        self.program = self.session.folder / "bin" / "stand-in"
        self.write_program(self.program)
        self.addCleanup(self._end)

    def _end(self):
        self.assertEqual(self.session.end(), {}, "processes were left behind")

    def hold_starts(self):
        """Lets what is started stay until the test is over."""
        os.mkfifo(self.stay)
        self.addCleanup(os.close, os.open(self.stay, os.O_RDWR))

    def write_program(self, path):
        path.parent.mkdir(exist_ok=True)
        path.write_text(STAND_IN % {"reports": self.reports, "stay": self.stay}, encoding="utf-8")
        path.chmod(0o755)

    def install(self, command="%F", more="", identifier=IDENTIFIER):
        """An entry that runs the stand-in with what follows on its command line."""
        return self.install_entry(f"Type=Application\nName=Stand-in\nExec=\"{self.program}\" "
                                  f"{command}\n{more}\n", identifier)

    def install_entry(self, contents, identifier=IDENTIFIER):
        folder = self.session.home / ".local" / "share" / "applications"
        folder.mkdir(parents=True, exist_ok=True)
        path = folder / f"{identifier}.desktop"
        path.write_text(f"[Desktop Entry]\n{contents}", encoding="utf-8")
        return path

    def open(self, *words, **environment):
        run = subprocess.Popen([PROGRAM, *words], env={**self.session.environment, **environment},
                               cwd=self.session.home, stdin=subprocess.DEVNULL,
                               stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        # Not communicate(): what plays the service manager has to be served meanwhile.
        waiting.wait_for(lambda: run.poll() is not None, "vornix-open to end")
        output, errors = run.communicate()
        self.assertEqual(output, b"")
        return run.returncode, errors.decode()

    def open_well(self, *words, **environment):
        self.assertEqual(self.open(*words, **environment), (0, ""))

    def starts(self, count=1):
        """What so many started stand-ins told, in the order in which they told it."""
        paths = waiting.wait_for(
            lambda: (lambda found: found if len(found) >= count else None)(
                sorted(self.reports.glob("*.json"))), f"{count} starts")
        self.assertEqual(len(paths), count)
        return [json.loads(path.read_text(encoding="utf-8")) for path in paths]

    def arguments(self):
        return self.starts()[0]["arguments"]

    def check_fails(self, words, status, *sentences):
        got, errors = self.open(*words)
        self.assertEqual(got, status)
        for sentence in sentences:
            self.assertIn(sentence, errors)
        self.assertEqual(list(self.reports.iterdir()), [])


class VornixOpen(Base):
    @smoke
    def test_runs_the_entry_with_files_in_their_place_and_arguments_behind(self):
        entry = self.install("--documents %F --end", "Icon=x")
        self.open_well("-b", IDENTIFIER, "-F", "/a", "/b c", "--args", "-scheduledScan",
                       XDG_ACTIVATION_TOKEN="token-1", DESKTOP_STARTUP_ID="token-1")
        (start,) = self.starts()
        self.assertEqual(start["arguments"],
                         ["--documents", "/a", "/b c", "--end", "-scheduledScan"])
        environment = start["environment"]
        self.assertEqual(environment["GIO_LAUNCHED_DESKTOP_FILE"], str(entry))
        self.assertEqual(environment["GIO_LAUNCHED_DESKTOP_FILE_PID"], str(start["process"]))
        self.assertEqual(environment["XDG_ACTIVATION_TOKEN"], "token-1")
        self.assertEqual(environment["DESKTOP_STARTUP_ID"], "token-1")

    def test_runs_without_files(self):
        self.install("%F")
        self.open_well("-b", IDENTIFIER, "-F", "--args", "-scheduled")
        self.assertEqual(self.arguments(), ["-scheduled"])

    def test_appends_files_where_the_entry_has_no_place_for_them(self):
        self.install("-x")
        self.open_well("-b", IDENTIFIER, "-F", "/a", "/b", "--args", "-s")
        self.assertEqual(self.arguments(), ["-x", "/a", "/b", "-s"])

    def check_one_start_a_file(self, code):
        self.install(code)
        self.open_well("-b", IDENTIFIER, "-F", "/a", "/b", "--args", "-s")
        self.assertEqual(sorted(start["arguments"] for start in self.starts(2)),
                         [["/a", "-s"], ["/b", "-s"]])

    def test_starts_once_a_file_where_the_entry_takes_one_file(self):
        self.check_one_start_a_file("%f")

    def test_starts_once_a_file_where_the_entry_takes_one_address(self):
        self.check_one_start_a_file("%u")

    def test_hands_arguments_on_as_they_are(self):
        self.install("%F")
        words = ["", "a b", "$HOME", "%F", "\"q'", "--args", "-b", "*"]
        self.open_well("-b", IDENTIFIER, "-F", "--args", *words)
        self.assertEqual(self.arguments(), words)

    def test_a_file_name_that_is_no_text_arrives_unharmed(self):
        self.install("%F")
        self.open_well("-b", IDENTIFIER, "-F", b"/caf\xe9\xff")
        self.assertEqual(self.arguments(), ["/caf\xe9\xff"])

    def test_a_file_name_may_start_with_a_hyphen_and_gets_its_folder(self):
        self.install("%F")
        self.open_well("-b", IDENTIFIER, "-F", "-x", "sub/y")
        self.assertEqual(self.arguments(),
                         [f"{self.session.home}/-x", f"{self.session.home}/sub/y"])

    def test_finds_the_identifier_ignoring_case(self):
        self.install("%F")
        self.open_well("-b", IDENTIFIER.upper(), "-F")
        self.assertEqual(self.arguments(), [])

    def test_fills_in_name_icon_and_path(self):
        entry = self.install("%i %c %k 100%%", "Icon=face\nName[de]=Stellvertreter")
        self.open_well("-b", IDENTIFIER, LANG="de_DE.UTF-8")
        self.assertEqual(self.arguments(),
                         ["--icon", "face", "Stellvertreter", str(entry), "100%"])

    @smoke
    def test_says_that_there_is_no_such_application(self):
        self.check_fails(["-b", IDENTIFIER, "-F"], 1, f'there is no application "{IDENTIFIER}"')

    def test_says_why_an_application_cannot_be_started(self):
        for contents, sentence in [
                ("Type=Application\nExec=/nowhere/at-all\n", '"/nowhere/at-all" is missing'),
                ("Type=Application\nExec=\"open quote\n", "cannot be run"),
                ("Type=Application\nName=x\n", "cannot be run"),
                ("Type=Application\nExec=true %x\n", "cannot be run"),
                ("Type=Application\nExec=/etc/passwd\n", "is missing"),
                ("Type=Link\nURL=x\n", "not the desktop entry of an application"),
                ("Hidden=true\n", "there is no application"),
                ("", "not the desktop entry of an application")]:
            with self.subTest(contents):
                self.install_entry(contents)
                self.check_fails(["-b", IDENTIFIER], 1, sentence)

    def test_says_that_the_working_folder_is_missing(self):
        self.install("%F", "Path=/nowhere")
        self.check_fails(["-b", IDENTIFIER], 1, "cannot be started")

    def test_says_what_is_wrong_with_its_own_command_line(self):
        for words in ([], ["-b"], ["-F", "/a"], ["-x", "-b", IDENTIFIER], ["-b", "a", "-b", "b"]):
            with self.subTest(words):
                self.check_fails(words, 2, "usage: vornix-open -b IDENTIFIER")

    def test_starts_in_the_entrys_folder(self):
        self.install("%F", f"Path={self.reports}")
        self.open_well("-b", IDENTIFIER, "-F", "a")
        (start,) = self.starts()
        self.assertEqual(start["folder"], str(self.reports))
        self.assertEqual(start["arguments"], [f"{self.session.home}/a"])

    def test_does_not_wait_for_the_application_which_stands_on_its_own(self):
        self.install("%F")
        self.hold_starts()
        self.open_well("-b", IDENTIFIER)
        (start,) = self.starts()
        self.assertFalse(is_gone(start["process"]))
        self.assertNotEqual(start["parent"], os.getpid())
        self.assertNotEqual(start["session"], os.getsid(0))
        self.assertEqual(start["standard"], ["/dev/null"] * 3)
        # The three, and the one that lists them.
        self.assertEqual(start["descriptors"], 4)

    def test_starts_a_second_one_of_a_running_application(self):
        self.install("%F")
        self.hold_starts()
        self.open_well("-b", IDENTIFIER)
        self.open_well("-b", IDENTIFIER)
        first, second = self.starts(2)
        self.assertNotEqual(first["process"], second["process"])

    def test_keeps_what_concerns_the_starter_alone_to_itself(self):
        self.install("%F")
        self.open_well("-b", IDENTIFIER, DBUS_STARTER_ADDRESS="x", INVOCATION_ID="x",
                       NOTIFY_SOCKET="x", GIO_LAUNCHED_DESKTOP_FILE="/other.desktop", KEPT="x")
        (start,) = self.starts()
        self.assertEqual(start["environment"]["KEPT"], "x")
        for name in ("DBUS_STARTER_ADDRESS", "INVOCATION_ID", "NOTIFY_SOCKET",
                     "XDG_ACTIVATION_TOKEN", "DESKTOP_STARTUP_ID"):
            self.assertNotIn(name, start["environment"])

    def test_runs_an_application_for_the_terminal_in_a_terminal(self):
        terminal = self.program.parent / "x-terminal-emulator"
        self.write_program(terminal)
        self.install("%F", "Terminal=true")
        self.open_well("-b", IDENTIFIER, "-F", "/a", PATH=f"{terminal.parent}:/usr/bin:/bin")
        self.assertEqual(self.arguments(), ["-e", str(self.program), "/a"])

    def test_says_that_there_is_no_terminal(self):
        self.install("%F", "Terminal=true")
        status, errors = self.open("-b", IDENTIFIER, PATH=str(self.program.parent))
        self.assertEqual(status, 1)
        self.assertIn('"x-terminal-emulator" is missing', errors)


class VornixOpenWithServiceManager(Base):
    def setUp(self):
        super().setUp()
        self.session.start_bus()

    def start_manager(self, **options):
        manager = FakeManager(self.session.bus, **options)
        self.addCleanup(manager.end)
        return manager

    @smoke
    def test_starts_the_application_as_a_service(self):
        entry = self.install("%F", f"Path={self.reports}")
        manager = self.start_manager()
        self.open_well("-b", IDENTIFIER, "-F", "/a", "--args", "-scheduledScan", "$HOME",
                       XDG_ACTIVATION_TOKEN="token-1", INVOCATION_ID="x")
        self.assertEqual(self.arguments(), ["/a", "-scheduledScan", "$HOME"])
        ((unit, mode, properties, extra),) = manager.started
        self.assertRegex(unit, rf"^app-{re.escape(IDENTIFIER)}-[0-9a-f]+\.service$")
        self.assertEqual((mode, extra), ("fail", []))
        self.assertEqual(properties["ExecStart"], [
            (str(self.program), [str(self.program), "/a", "-scheduledScan", "$$HOME"], False)])
        self.assertEqual(properties["WorkingDirectory"], str(self.reports))
        self.assertEqual(properties["Description"], "Stand-in")
        self.assertEqual(properties["Type"], "exec")
        environment = properties["Environment"]
        for variable in ("XDG_ACTIVATION_TOKEN=token-1", "DESKTOP_STARTUP_ID=token-1",
                         f"GIO_LAUNCHED_DESKTOP_FILE={entry}", f"HOME={self.session.home}"):
            self.assertIn(variable, environment)
        self.assertNotIn("INVOCATION_ID=x", environment)

    def test_escapes_the_identifier_in_the_services_name(self):
        self.install("%F", identifier="my-app")
        manager = self.start_manager()
        self.open_well("-b", "my-app")
        self.starts()
        self.assertRegex(manager.started[0][0], r"^app-my\\x2dapp-[0-9a-f]+\.service$")

    def test_starts_the_application_itself_where_no_service_manager_runs(self):
        self.install("%F")
        self.open_well("-b", IDENTIFIER, "-F", "/a")
        (start,) = self.starts()
        self.assertEqual(start["environment"]["GIO_LAUNCHED_DESKTOP_FILE_PID"],
                         str(start["process"]))

    def check_starts_itself(self, manager, words=("/a",)):
        self.install("%F")
        status, errors = self.open("-b", IDENTIFIER, "-F", *words)
        self.assertEqual(status, 0)
        self.assertEqual(manager.processes, [])
        self.assertEqual(len(self.arguments()), 1)
        return errors

    def test_starts_the_application_itself_when_the_manager_refuses(self):
        errors = self.check_starts_itself(self.start_manager(refuses=True))
        self.assertIn("without the service manager", errors)

    def test_starts_the_application_itself_when_the_service_fails(self):
        errors = self.check_starts_itself(self.start_manager(result="failed"))
        self.assertIn("without the service manager", errors)

    def test_starts_the_application_itself_when_a_file_name_is_no_text(self):
        manager = self.start_manager()
        self.assertEqual(self.check_starts_itself(manager, [b"/caf\xe9"]), "")
        self.assertEqual(manager.started, [])

    def test_does_not_start_a_service_manager(self):
        self.install("%F")
        self.open_well("-b", IDENTIFIER)
        self.starts()
        self.assertEqual(self.session.bus.monitor.messages("StartServiceByName"), [])
        self.assertEqual(self.session.bus.monitor.messages("StartTransientUnit"), [])
