"""When the agent reminds, and what it leaves untouched when it does not."""

import signal

from support import waiting
from support.agent import LONG_AGO, AgentCase
from support.case import smoke
from support.desktop import Dunst
from support.preferences import (AGENT, FORMER_AGENT, LAST_DATE, MAIN_APPLICATION, PERIOD,
                                 days_ago, seconds_since)

FIRST_MINUTES = 60  # seconds of uptime, well before a reminder may be shown


class Schedule(AgentCase):
    @smoke
    def test_a_first_start_only_starts_the_clock(self):
        self.start(Dunst)
        self.check_end_at_once(self.run_agent())
        self.assertLess(abs(seconds_since(self.stored_date())), 60)
        self.assertEqual(list(self.preferences.read(AGENT)), [LAST_DATE])
        self.check_nothing_happened()

    @smoke
    def test_a_reminder_not_due_touches_nothing_and_ends_after_the_grace(self):
        self.start(Dunst)
        self.last_reminder(days=1)
        self.settings(**{PERIOD: 1})
        files = self.preferences.files()
        connections = len(self.session.bus.monitor.messages("Hello"))
        self.run_with_grace()
        self.assertEqual(self.preferences.files(), files)
        self.assertEqual(len(self.session.bus.monitor.messages("Hello")), connections)
        self.check_nothing_happened()

    @smoke
    def test_a_due_reminder_is_shown_reported_and_dated(self):
        self.start(Dunst)
        self.last_reminder(LONG_AGO)
        self.run_with_grace()
        self.check_shown_now()
        self.assertIsNotNone(self.session.screen.popup(Dunst.window_class))

    def test_a_due_reminder_waits_when_the_machine_has_only_just_started(self):
        self.start(Dunst)
        date = self.last_reminder(LONG_AGO)
        run = self.session.start_agent(uptime=FIRST_MINUTES)
        self.assertTrue(waiting.holds_for(run.is_alive, 20), "the agent did not wait")
        self.check_shown(times=0)
        ended = run.terminate()
        self.assertEqual(ended.status, 0, ended.errors)
        self.assertEqual(self.stored_date(), date)
        self.check_nothing_happened()

    def test_a_date_in_the_future_is_not_due(self):
        self.start(Dunst)
        self.last_reminder(days=-30)
        files = self.preferences.files()
        self.run_with_grace()
        self.assertEqual(self.preferences.files(), files)
        self.check_nothing_happened()

    def test_signals_end_a_waiting_agent_cleanly(self):
        self.last_reminder(days=1)
        for how in (signal.SIGTERM, signal.SIGINT, signal.SIGHUP):
            with self.subTest(how=how.name):
                run = self.session.start_agent()
                pid = waiting.wait_for(run.pid, "the agent to start")
                waiting.wait_for(lambda pid=pid: _catches(pid, how), f"{how.name} to be handled")
                self.check_end_at_once(run.terminate(how))
        self.check_nothing_happened()


def _catches(pid, how):
    """Whether the process has made arrangements for the signal: it catches, blocks or ignores it."""
    with open(f"/proc/{pid}/status", encoding="ascii") as status:
        masks = dict(line.rstrip("\n").split(":\t", 1) for line in status if line.startswith("Sig"))
    return any(int(masks[name], 16) >> (how - 1) & 1 for name in ("SigCgt", "SigBlk", "SigIgn"))


class Periods(AgentCase):
    """The stored period decides: a day before it has passed nothing is shown, a day after it is."""

    def check_period(self, days, **stored):
        self.settings(**stored)
        self.start(Dunst)
        self.last_reminder(days - 1)
        self.run_with_grace()
        self.check_nothing_happened()
        self.last_reminder(days + 1)
        self.run_with_grace()
        self.check_shown_now()
        self.assertEqual(self.preferences.read(MAIN_APPLICATION).get(PERIOD), stored.get(PERIOD))

    def test_a_whole_number_is_taken_as_it_stands(self):
        self.check_period(7, **{PERIOD: 1})

    def test_a_string_counts_by_its_digits(self):
        self.check_period(30, **{PERIOD: "3"})

    def test_a_missing_period_is_two_weeks(self):
        self.check_period(14)

    def test_zero_is_two_weeks(self):
        self.check_period(14, **{PERIOD: 0})

    def test_minus_one_is_two_weeks(self):
        self.check_period(14, **{PERIOD: -1})

    def test_seven_is_two_weeks(self):
        self.check_period(14, **{PERIOD: 7})


class Takeover(AgentCase):
    """The date of the last reminder is found where other programs and former versions left it."""

    def test_the_former_domains_date_is_migrated_when_not_due(self):
        date = self.last_reminder(1, FORMER_AGENT)
        former = self.preferences.path(FORMER_AGENT).read_bytes()
        self.start(Dunst)
        self.run_with_grace()
        self.assertEqual(self.stored_date(), date)
        self.assertEqual(self.preferences.path(FORMER_AGENT).read_bytes(), former)
        self.check_nothing_happened()

    def test_the_former_domains_date_can_make_a_reminder_due(self):
        date = self.last_reminder(LONG_AGO, FORMER_AGENT)
        self.start(Dunst)
        self.run_with_grace()
        self.check_shown_now()
        self.assertEqual(self.stored_date(FORMER_AGENT), date)

    def test_the_main_applications_date_prevents_the_migration(self):
        date = self.last_reminder(1, MAIN_APPLICATION)
        self.last_reminder(LONG_AGO, FORMER_AGENT)
        self.start(Dunst)
        self.run_with_grace()
        self.assertIsNone(self.stored_date())
        self.assertEqual(self.stored_date(MAIN_APPLICATION), date)
        self.check_nothing_happened()

    def test_the_main_applications_date_counts_and_the_new_one_is_the_agents_own(self):
        date = self.last_reminder(LONG_AGO, MAIN_APPLICATION)
        self.start(Dunst)
        self.run_with_grace()
        self.check_shown_now()
        self.assertEqual(self.stored_date(MAIN_APPLICATION), date)

    def test_preferences_in_xml_are_read_and_their_other_keys_survive(self):
        others = {"Some": {"nested": [1, 2.5, b"bytes", "text"]}, "Flag": True}
        self.preferences.write(AGENT, {LAST_DATE: days_ago(LONG_AGO), **others}, xml=True)
        self.start(Dunst)
        self.run_with_grace()
        self.check_shown_now()
        stored = self.preferences.read(AGENT)
        del stored[LAST_DATE]
        self.assertEqual(stored, others)

    def test_a_file_that_cannot_be_parsed_is_set_aside_and_said_so(self):
        path = self.preferences.path(AGENT)
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(b"bplist00 torn")
        ended = self.run_agent()
        self.check_end_at_once(ended)
        self.assertLess(abs(seconds_since(self.stored_date())), 60)
        kept = [name for name, data in self.preferences.files().items() if data == b"bplist00 torn"]
        self.assertEqual(len(kept), 1, self.preferences.files())
        self.assertIn(AGENT, ended.errors)
