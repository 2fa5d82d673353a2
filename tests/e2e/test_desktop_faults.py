"""No server, no bus, or a server that dies: nothing is lost that could be kept, and nobody hangs."""

import signal

from support.agent import LONG_AGO, AgentCase, show_reminder
from support.desktop import Dunst, Xfce
from support.preferences import seconds_since
from support.session import CENTRE_PROGRAM

SHOWN, CLICKED = "Notification Shown", "Notification Clicked"


class Servers(AgentCase):
    def test_without_a_server_the_reminder_waits_and_a_later_server_shows_it(self):
        self.last_reminder(LONG_AGO)
        self.run_with_grace()
        self.check_hits(SHOWN)
        self.check_shown(times=0)
        self.check_processes([CENTRE_PROGRAM])
        server = self.start(Xfce)
        server.wait_for_popup()
        self.check_shown_now()
        server.press_action("launch")
        self.check_launched("-scheduled")
        self.check_hits(SHOWN, CLICKED)
        self.check_clicked_agent_ends()

    def test_a_reminder_that_waits_for_a_server_counts_as_displayed(self):
        self.last_reminder(LONG_AGO)
        self.run_with_grace()
        date = self.last_reminder(LONG_AGO)
        self.run_with_grace()
        self.assertEqual(self.stored_date(), date)
        self.check_hits(SHOWN)
        self.start(Dunst)
        self.wait_for(self.posted, "the reminder to be shown")
        self.check_shown(times=1)

    def test_a_server_killed_while_displaying_takes_its_reminder_along(self):
        server, run = show_reminder(self, Dunst)
        self.check_graceful_end(run.wait())
        server.kill()
        self.check_processes([])
        self.start(Xfce)
        self.check_shown(times=1)
        self.last_reminder(LONG_AGO)
        self.run_with_grace()
        self.check_shown(times=2)
        self.check_hits(SHOWN, SHOWN)
        self.assertEqual(self.application.notes(), [])


class NoBus(AgentCase):
    def check_without_a_bus(self, **environment):
        self.last_reminder(LONG_AGO)
        ended = self.run_with_grace(**environment)
        self.assertIn("notification", ended.errors.lower())
        self.check_shown_nowhere_but_dated()

    def check_shown_nowhere_but_dated(self):
        self.check_shown(times=0)
        self.assertLess(abs(seconds_since(self.stored_date())), 120)
        self.check_hits(SHOWN)
        self.check_processes([])

    def test_a_bus_that_does_not_answer_is_one_error_line(self):
        self.check_without_a_bus(
            DBUS_SESSION_BUS_ADDRESS=f"unix:path={self.session.folder}/no-such-bus")

    def test_no_bus_at_all_is_one_error_line(self):
        self.session.environment.pop("DBUS_SESSION_BUS_ADDRESS")
        self.check_without_a_bus()

    def test_a_bus_that_goes_away_ends_the_clicked_agent_and_the_centre(self):
        server, run = show_reminder(self, Dunst)
        self.check_graceful_end(run.wait())
        server.press_action("launch")
        self.check_launched("-scheduled")
        self.session.processes.end(self.session.bus.daemon, signal.SIGKILL)
        self.check_processes([])
