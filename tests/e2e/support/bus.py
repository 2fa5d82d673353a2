"""A private message bus, what a test says on it and what it overhears."""

import threading
from pathlib import Path

from gi.repository import Gio, GLib

from . import waiting

_CONFIGURATION = """<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <keep_umask/>
  <listen>unix:dir={folder}</listen>
  <auth>EXTERNAL</auth>
  {service_folders}
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
"""
DAEMON = ("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus")
_FLAGS = (Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT
          | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION)


class Message:
    """One message as it passed over the bus."""

    def __init__(self, message):
        self.sender = message.get_sender()
        self.interface = message.get_interface()
        self.member = message.get_member()
        self.path = message.get_path()
        body = message.get_body()
        self.arguments = body.unpack() if body else ()

    def __repr__(self):
        return f"{self.interface}.{self.member}{self.arguments!r} from {self.sender}"


class Monitor:
    """Everything that passes over the bus, in order."""

    def __init__(self, connection):
        self._lock = threading.Lock()
        self._messages = []
        self._connection = connection
        connection.add_filter(self._take)
        connection.call_sync(*DAEMON[:2], "org.freedesktop.DBus.Monitoring", "BecomeMonitor",
                             GLib.Variant("(asu)", ([], 0)), None, 0, -1, None)

    def _take(self, _connection, message, incoming):
        replies = (Gio.DBusMessageType.METHOD_RETURN, Gio.DBusMessageType.ERROR)
        if not incoming or message.get_message_type() in replies:
            return message
        with self._lock:
            self._messages.append(Message(message))
        return None

    def messages(self, member):
        with self._lock:
            return [message for message in self._messages if message.member == member]

    def log(self):
        with self._lock:
            return "\n".join(map(repr, self._messages))


class Bus:
    def __init__(self, processes, environment, folder, service_folders):
        configuration = Path(folder, "bus.conf")
        lines = "\n  ".join(f"<servicedir>{path}</servicedir>" for path in service_folders)
        configuration.write_text(
            _CONFIGURATION.format(folder=folder, service_folders=lines), encoding="utf-8")
        address_file = Path(folder, "bus.address")
        with open(address_file, "wb") as output:
            self.daemon = processes.start(
                "bus", ["dbus-daemon", f"--config-file={configuration}", "--nofork",
                        "--print-address"], environment, stdout=output)
        waiting.wait_for(lambda: address_file.read_bytes().endswith(b"\n"), "the bus's address")
        self.address = address_file.read_text().strip()
        self.connection = self.connect()
        self.monitor = Monitor(self.connect())

    def connect(self):
        connection = Gio.DBusConnection.new_for_address_sync(self.address, _FLAGS, None, None)
        connection.set_exit_on_close(False)
        return connection

    def call(self, name, path, interface, member, arguments=None, timeout=20000):
        """Calls and answers the unpacked result; other sources of the test stand still meanwhile."""
        reply = self.connection.call_sync(name, path, interface, member, arguments, None,
                                          Gio.DBusCallFlags.NONE, timeout, None)
        return reply.unpack()

    def has_owner(self, name):
        return self.call(*DAEMON, "NameHasOwner", GLib.Variant("(s)", (name,)))[0]

    def pid_of(self, name):
        return self.call(*DAEMON, "GetConnectionUnixProcessID", GLib.Variant("(s)", (name,)))[0]

    def wait_for_owner(self, name):
        waiting.wait_for(lambda: self.has_owner(name), f"{name} to appear on the bus")
