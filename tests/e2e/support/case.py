"""What every end-to-end test class derives from."""

import sys
import unittest

from . import desktop, waiting
from .bus import Message  # noqa: F401  (named in the tests' annotations)
from .session import Session


def smoke(test):
    """Marks one of the few tests that the sanitizer builds run too; read when ctest's list is made."""
    return test


def _bad(result):
    return len(result.failures) + len(result.errors)


class Case(unittest.TestCase):
    installed = True
    longMessage = True

    def run(self, result=None):
        """Tells what the session's programs had to say, where the test failed."""
        before = _bad(result)
        super().run(result)
        if _bad(result) > before:
            print(self._logs, file=sys.stderr)

    def setUp(self):
        self._logs = ""
        self.session = Session(self.installed)
        self.addCleanup(self._end_session)
        self.session.start_screen()
        self.session.start_bus()

    def _end_session(self):
        self._logs = self.session.logs()
        self.assertEqual(self.session.end(), {}, "processes were left behind")

    def wait_for(self, condition, what, deadline=waiting.DEADLINE):
        return waiting.wait_for(condition, what, deadline)

    def start(self, server):
        return server(self.session).start()

    def posted(self):
        """The Notify calls that reached the notification server."""
        return [message for message in self.session.bus.monitor.messages("Notify")
                if message.interface == desktop.NOTIFICATIONS]
