"""The processes of one test: those it starts, and those they start in turn.

Each test marks the environment of what it starts; the mark is inherited by everything below, the bus
and what the bus activates included, so nothing can be left behind unseen.
"""

import os
import signal
import subprocess
from pathlib import Path

from . import waiting

MARK = "VORNIX_TEST_MARK"


def _environment_of(pid):
    try:
        return Path("/proc", pid, "environ").read_bytes().split(b"\0")
    except OSError:
        return []


def _is_zombie(pid):
    try:
        return Path("/proc", str(pid), "stat").read_text().rpartition(")")[2].split()[0] == "Z"
    except OSError:
        return True


def command_of(pid):
    """The program's file name; of a script its own, not its interpreter's."""
    try:
        program = os.path.basename(os.readlink(f"/proc/{pid}/exe")).removesuffix(" (deleted)")
        words = Path("/proc", str(pid), "cmdline").read_bytes().decode(errors="replace").split("\0")
    except OSError:
        return ""
    if program.startswith(("python3", "sh", "bash", "dash")) and len(words) > 1:
        return os.path.basename(next((word for word in words[1:] if not word.startswith("-")), ""))
    return program


class Processes:
    def __init__(self, mark, log_folder):
        self._mark = f"{MARK}={mark}".encode()
        self._log_folder = log_folder
        self._own = []

    def start(self, name, command, environment, **options):
        """Starts a helper of the test; its output goes to NAME.log and it ends with the test."""
        with open(self._log_folder / f"{name}.log", "ab") as log:
            process = subprocess.Popen(
                command, env=environment, stdin=subprocess.DEVNULL,
                stdout=options.pop("stdout", log), stderr=log, **options)
        self._own.append(process)
        return process

    def end(self, process, how=signal.SIGTERM):
        """Ends a helper and waits for it; harmless when it has ended already."""
        if process.poll() is None:
            process.send_signal(how)
        try:
            process.wait(15)
        except subprocess.TimeoutExpired:
            process.kill()
            process.wait()
            raise

    def marked(self):
        """The pids of all living processes that carry this test's mark."""
        return [int(pid) for pid in os.listdir("/proc") if pid.isdigit()
                and self._mark in _environment_of(pid) and not _is_zombie(pid)]

    def others(self):
        """Living marked processes that the test did not start as helpers, as {pid: program}."""
        own = {process.pid for process in self._own}
        return {pid: command_of(pid) for pid in self.marked() if pid not in own}

    def named(self, program):
        return [pid for pid, command in self.others().items() if command == program]

    def end_by_signal(self, pids, how=signal.SIGTERM):
        for pid in pids:
            os.kill(pid, how)
        waiting.wait_for(lambda: all(map(is_gone, pids)), f"{pids} to end on signal {how}")

    def end_helpers(self):
        for process in reversed(self._own):
            self.end(process)

    def end_rest(self):
        """Waits for what is left to go by itself, now that nothing serves it any more; answers what
        had to be killed."""
        try:
            waiting.wait_for(lambda: not self.marked(), "every process to end", 15)
        except waiting.TimedOut:
            stubborn = {pid: command_of(pid) for pid in self.marked()}
            for pid in stubborn:
                os.kill(pid, signal.SIGKILL)
            return stubborn
        return {}


def is_gone(pid):
    return not os.path.exists(f"/proc/{pid}") or _is_zombie(pid)
