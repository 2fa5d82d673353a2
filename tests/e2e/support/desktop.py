"""A screen of its own for each test, real notification servers on it, and a real pointer."""

import glob
import os
import subprocess
import time

from . import waiting

NOTIFICATIONS = "org.freedesktop.Notifications"


class Screen:
    """An X server without a window manager; popups need none."""

    def __init__(self, processes, environment):
        reading, writing = os.pipe()
        self.process = processes.start(
            "xvfb", ["Xvfb", "-displayfd", str(writing), "-screen", "0", "1024x768x24",
                     "-nolisten", "tcp", "-noreset"], environment, pass_fds=(writing,))
        os.close(writing)
        with os.fdopen(reading) as display:
            number = display.readline().strip()
        if not number:
            raise AssertionError("Xvfb gave no display, see xvfb.log")
        self.display = f":{number}"
        self._environment = dict(environment, DISPLAY=self.display)

    def _run(self, *command):
        return subprocess.run(command, env=self._environment, capture_output=True, text=True,
                              timeout=60)

    def _pointer(self, *words):
        run = self._run("xdotool", *words)
        if run.returncode != 0:
            raise AssertionError(f"xdotool {' '.join(words)}: {run.stderr}")
        return run.stdout

    def park_pointer(self):
        """Away from the corners, where popups appear: some keep a popup while it is hovered."""
        self._pointer("mousemove", "500", "600")

    def popup(self, window_class):
        """(window, x, y, width, height) of the one visible popup of that class, or None."""
        found = self._run("xdotool", "search", "--onlyvisible", "--class", window_class).stdout
        for window in found.split():
            geometry = self._run("xdotool", "getwindowgeometry", "--shell", window)
            values = dict(line.split("=", 1) for line in geometry.stdout.split())
            if geometry.returncode == 0 and 20 < int(values["WIDTH"]) < 1000:
                return (window, *(int(values[key]) for key in ("X", "Y", "WIDTH", "HEIGHT")))
        return None

    def wait_for_popup(self, window_class):
        """Waits until it stands: the same place and size twice in a row, a moment apart."""
        def stands():
            first = self.popup(window_class)
            return first if first and self.popup(window_class) == first else None
        return waiting.wait_for(stands, f"a popup of {window_class} on the screen")

    def wait_for_no_popup(self, window_class):
        waiting.wait_for(lambda: self.popup(window_class) is None,
                         f"the popup of {window_class} to leave the screen")

    def click(self, x, y, button=1):
        self._pointer("mousemove", "--sync", str(x), str(y))
        self._pointer("click", str(button))

    def picture(self, popup, path):
        """Writes what the screen shows where the popup is."""
        _, x, y, width, height = popup
        run = self._run("import", "-window", "root", "-crop", f"{width}x{height}+{x}+{y}",
                        "+repage", str(path))
        if run.returncode != 0:
            raise AssertionError(f"no picture of the popup: {run.stderr}")


class Server:
    """A notification server; start() returns when it owns its name."""

    window_class = ""
    places = {}  # what a click there does: pixels from the popup's right and lower edges

    def __init__(self, session):
        self.session = session
        self.process = None

    def command(self):
        raise NotImplementedError

    def start(self):
        environment = self.session.environment
        self.process = self.session.processes.start(type(self).__name__.lower(), self.command(),
                                                    environment)
        self.session.bus.wait_for_owner(NOTIFICATIONS)
        return self

    def kill(self):
        self.process.kill()
        self.process.wait()

    def wait_for_popup(self):
        return self.session.screen.wait_for_popup(self.window_class)

    def _press(self, what, popup):
        _, x, y, width, height = popup
        from_right, from_bottom = self.places[what]
        self.session.screen.click(x + width - from_right, y + height - from_bottom)

    def press(self, what, took_effect):
        """Clicks until the click took effect: a popup that is only just being drawn may miss one."""
        for _ in range(6):
            popup = self.session.screen.popup(self.window_class)
            if popup is None and took_effect():
                return
            if popup is not None:
                self._press(what, popup)
            end = time.monotonic() + 4
            while time.monotonic() < end:
                if took_effect():
                    return
                waiting.turn_once()
        raise waiting.TimedOut(f"{what} on {type(self).__name__}: no effect")

    def _signals(self, member, *wanted):
        return [message for message in self.session.bus.monitor.messages(member)
                if message.interface == NOTIFICATIONS and
                (not wanted or message.arguments[1] in wanted)]

    def press_action(self, key):
        before = len(self._signals("ActionInvoked", key))
        self.press(key, lambda: len(self._signals("ActionInvoked", key)) > before)

    def press_close(self):
        before = len(self._signals("NotificationClosed"))
        self.press("close", lambda: len(self._signals("NotificationClosed")) > before)


class Xfce(Server):
    window_class = "xfce4-notifyd"
    places = {"launch": (149, 31), "cancel": (57, 31), "close": (150, 80)}

    def command(self):
        return [glob.glob("/usr/lib/*/xfce4/notifyd/xfce4-notifyd")[0]]


class Mate(Server):
    window_class = "mate-notification-daemon"
    places = {"launch": (134, 28), "cancel": (69, 28), "close": (32, 108)}

    def command(self):
        return ["/usr/lib/mate-notification-daemon/mate-notification-daemon", "--replace"]


class Dunst(Server):
    """dunst's menu program is replaced by one that chooses by itself what the test wants."""

    window_class = "Dunst"

    def command(self):
        path = self.session.folder / "dunstrc"
        path.write_text("[global]\n  dmenu = /bin/grep -m1 Launch\n"
                        "  mouse_left_click = context, close_current\n"
                        "  mouse_right_click = close_current\n  font = DejaVu Sans 11\n"
                        + "".join(f"[urgency_{level}]\n  timeout = 0\n"
                                  for level in ("low", "normal", "critical")), encoding="utf-8")
        return ["dunst", "-config", str(path)]

    def _press(self, what, popup):
        _, x, y, width, height = popup
        self.session.screen.click(x + width // 2, y + height // 2, 3 if what == "close" else 1)
