"""One person's session: home, screen, bus, installed product, and the agent's runs in it.

Made in the order home, screen, bus, so that what the bus activates finds the other two.
"""

import os
import shutil
import signal
import subprocess
import tempfile
import time
import uuid
from pathlib import Path

from . import tree, waiting
from .bus import Bus
from .desktop import Screen
from .preferences import Preferences
from .processes import MARK, Processes, command_of

AGENT_NAME = "com.orvane.Vornix3.Scheduler"
CENTRE_NAME = "com.orvane.Vornix3.NotificationCenter"
AGENT_PROGRAM = "vornix-scheduler"
CENTRE_PROGRAM = "vornix-notification-center"
XFCONF = """[D-BUS Service]
Name=org.xfce.Xfconf
Exec=/usr/lib/x86_64-linux-gnu/xfce4/xfconf/xfconfd
"""
LONG_UPTIME = 7 * 86400


class Ended:
    """How a run of the agent ended."""

    def __init__(self, status, elapsed, errors):
        self.status, self.elapsed, self.errors = status, elapsed, errors


class AgentRun:
    def __init__(self, session, process, log):
        self._session, self.process, self._log = session, process, log
        self._started = time.monotonic()

    def is_alive(self):
        return self.process.poll() is None

    def pid(self):
        """The agent's own pid, below what moves it into its own time."""
        children = [pid for pid in self._session.processes.marked()
                    if command_of(pid) == AGENT_PROGRAM and _is_below(pid, self.process.pid)]
        return children[0] if children else None

    def terminate(self, how=signal.SIGTERM):
        os.kill(self.pid(), how)
        return self.wait()

    def wait(self, deadline=60):
        waiting.wait_for(lambda: self.process.poll() is not None, "the agent to end", deadline)
        return Ended(self.process.returncode, time.monotonic() - self._started,
                     self._log.read_text(encoding="utf-8", errors="replace"))


def _is_below(pid, ancestor):
    while pid > 1:
        if pid == ancestor:
            return True
        try:
            pid = int(Path("/proc", str(pid), "stat").read_text().rpartition(")")[2].split()[1])
        except OSError:
            return False
    return False


class Session:
    def __init__(self, installed=True):
        self.mark = uuid.uuid4().hex
        self.folder = Path(tempfile.mkdtemp(prefix="vornix-e2e-"))
        self.home = self._folder("home")
        self.processes = Processes(self.mark, self.folder)
        self.tls = tree.TLS
        self.tree = tree.Tree(self.folder / "prefix") if installed else None
        self.environment = self._make_environment()
        self.preferences = Preferences(self.home)
        self.screen = self.bus = None
        self._runs = 0

    def _folder(self, *names):
        path = self.folder.joinpath(*names)
        path.mkdir(parents=True, mode=0o700)
        return path

    def _make_environment(self):
        kept = {name: value for name, value in os.environ.items()
                if name in ("USER", "LOGNAME") or name.endswith("SAN_OPTIONS")}
        data = self._folder("home", ".local", "share")
        folders = [data, *([self.tree.prefix / "share"] if self.tree else []), "/usr/share"]
        # Servers are installed where only root's search path looks.
        search_path = os.environ.get("PATH", os.defpath) + ":/usr/local/sbin:/usr/sbin:/sbin"
        return {
            **kept, "PATH": search_path, MARK: self.mark, "HOME": str(self.home), "LANG": "C.UTF-8",
            "XDG_DATA_HOME": str(data), "XDG_DATA_DIRS": ":".join(map(str, folders[1:])),
            "XDG_CONFIG_HOME": str(self._folder("home", ".config")),
            "XDG_CACHE_HOME": str(self._folder("home", ".cache")),
            "XDG_RUNTIME_DIR": str(self._folder("run")), "TMPDIR": str(self._folder("tmp")),
            "GIO_USE_VFS": "local", "GSETTINGS_BACKEND": "memory", "NO_AT_BRIDGE": "1",
            # Whoever forgets the private bus is told so, rather than reaching the person's own.
            "DBUS_SESSION_BUS_ADDRESS": f"unix:path={self.folder}/no-bus",
        }

    def start_screen(self):
        self.screen = Screen(self.processes, self.environment)
        self.environment["DISPLAY"] = self.screen.display
        self.screen.park_pointer()

    def start_bus(self):
        folders = [self.tree.services] if self.tree else []
        desktop_services = self._folder("services")
        (desktop_services / "org.xfce.Xfconf.service").write_text(XFCONF, encoding="utf-8")
        self.environment.pop("DBUS_SESSION_BUS_ADDRESS")
        self.bus = Bus(self.processes, self.environment, self.folder,
                       [*folders, desktop_services])
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = self.bus.address

    def collect_at(self, host):
        self.tree.configure_analytics(host, self.tls / "ca.pem")

    def start_agent(self, uptime=LONG_UPTIME, **environment):
        """Starts the installed agent on a machine that has been awake so many seconds."""
        self._runs += 1
        log = self.folder / f"agent{self._runs}.log"
        offset = int(uptime - time.clock_gettime(time.CLOCK_MONOTONIC))
        with open(log, "wb") as output:
            process = subprocess.Popen(
                [*_other_time(offset), str(self.tree.agent)], stdin=subprocess.DEVNULL,
                env={**self.environment, **environment}, stdout=output, stderr=output)
        return AgentRun(self, process, log)

    def run_agent(self, **options):
        return self.start_agent(**options).wait()

    def logs(self):
        parts = [f"==> {path.name}\n{path.read_text(encoding='utf-8', errors='replace')}"
                 for path in sorted(self.folder.rglob("*.log"))]
        if self.bus:
            parts.append("==> bus\n" + self.bus.monitor.log())
        return "\n".join(parts)

    def end(self):
        """Ends what the test started and answers what would not go by itself, as {pid: program}."""
        self.processes.end_helpers()
        stubborn = self.processes.end_rest()
        shutil.rmtree(self.folder, ignore_errors=True)
        return stubborn


def _other_time(offset):
    """The start of a command in a time namespace; an ordinary user needs a user namespace for it."""
    own = [] if os.geteuid() == 0 else ["--map-current-user"]
    return ["unshare", *own, "--time", "--fork", f"--monotonic={offset}"]
