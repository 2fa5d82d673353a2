"""What the tests of the agent share: a due reminder, what is expected of it, and how a run ends."""

import signal

from . import tree
from .case import Case
from .collector import Collector
from .preferences import AGENT, LAST_DATE, MAIN_APPLICATION, days_ago, seconds_since
from .programs import VERSION, MainApplication
from .session import AGENT_PROGRAM, CENTRE_PROGRAM

TITLE = "Time to clean up"
CLEANUP_WORDS = "It has been a while since the last clean-up. Free some space on your disk."
SCAN_WORDS = "It has been a while since the last scan. See what can be cleaned from your disk."
TARGETS = [tree.MAIN, tree.CATEGORY, tree.BACKUP]
GRACE = 10.0
SLOWNESS = 12.0  # what a run may take on top where many tests share the machine
LONG_AGO = 400  # days; past every period


class AgentCase(Case):
    collector_options = {}

    def setUp(self):
        super().setUp()
        self.preferences = self.session.preferences
        self.collector = None
        if self.collector_options is not None:
            self.collector = Collector(self.session, **self.collector_options)
            self.session.collect_at(f"127.0.0.1:{self.collector.port}")
        self.application = MainApplication(self.session).install()

    # What the person or the main application stored.

    def last_reminder(self, days, domain=AGENT):
        date = days_ago(days)
        self.preferences.change(domain, **{LAST_DATE: date})
        return date

    def settings(self, **values):
        self.preferences.change(MAIN_APPLICATION, **values)

    def stored_date(self, domain=AGENT):
        return self.preferences.read(domain).get(LAST_DATE)

    # How a run ends.

    def run_agent(self, **options):
        return self.session.run_agent(**options)

    def check_graceful_end(self, ended):
        self.assertEqual(ended.status, 0, ended.errors)
        self.assertGreaterEqual(ended.elapsed, GRACE - 0.1)
        self.assertLess(ended.elapsed, GRACE + SLOWNESS)

    def check_end_at_once(self, ended):
        self.assertEqual(ended.status, 0, ended.errors)
        self.assertLess(ended.elapsed, GRACE - 1)

    def run_with_grace(self, **options):
        ended = self.run_agent(**options)
        self.check_graceful_end(ended)
        return ended

    # What is displayed, stored and reported.

    def check_shown(self, times=1, words=CLEANUP_WORDS, title=TITLE):
        posted = self.posted()
        self.assertEqual(len(posted), times, posted)
        if times:
            _, replaces, _, summary, body, actions, hints, timeout = posted[-1].arguments
            self.assertEqual((summary, body), (title, words))
            self.assertEqual((replaces, timeout, hints["urgency"]), (0, 0, 1))
            self.assertEqual(hints["desktop-entry"], AGENT)
            self.assertNotIn("resident", hints)
            self.assertNotIn("transient", hints)
            return dict(zip(actions[::2], actions[1::2]))
        return {}

    def check_shown_now(self, **expectations):
        """Shown once, the date stored, one event of three hits."""
        self.check_shown(**expectations)
        self.assertLess(abs(seconds_since(self.stored_date())), 120)
        self.check_hits("Notification Shown")

    def check_nothing_happened(self):
        """Nothing shown, nothing reported, and the bus not even spoken to."""
        self.check_shown(times=0)
        if self.collector:
            self.assertEqual(self.collector.hits(), [])
        self.check_processes([])

    def check_hits(self, *actions):
        """The events of these actions, each at its three targets, in order; and nothing else."""
        hits = self.collector.wait_for_hits(3 * len(actions))
        told = [(hit["ea"], hit["tid"]) for hit in hits]
        self.assertEqual(told, [(action, target) for action in actions for target in TARGETS])
        for hit in hits:
            self.assertEqual((hit.method, hit.parts.path), ("GET", "/collect"))
            self.assertEqual((hit["v"], hit["t"], hit["an"]), ("1", "event", "Vornix"))
            self.assertEqual((hit["ec"], hit["ev"]), ("Scheduler", "1"))
            self.assertRegex(hit["el"], r"^([01]\d|2[0-3]):[0-5]\d$")
            self.assertRegex(hit["cid"], r"^[0-9a-f]{32}$")
            self.assertEqual(hit["av"].partition("-")[0], VERSION)
            self.assertEqual((hit["sr"], hit["vp"]), ("1024x768", "0x0"))
            self.assertRegex(hit.user_agent, r"^Vornix/3\.4\.1\S* \(Macintosh; Intel Mac OS X "
                                             r"\d+_\d+_\d+\)$")
        self.assertEqual(len({hit["cid"] for hit in hits}), 1)
        return hits

    # What goes on living.

    def check_processes(self, programs):
        """Waits until exactly these programs of the product are left, by design or by error."""
        product = (AGENT_PROGRAM, CENTRE_PROGRAM, "vornix-open", "main-application")

        def left():
            return sorted(name for name in self.session.processes.others().values()
                          if name in product)
        try:
            self.wait_for(lambda: left() == sorted(programs), f"only {programs} to be left")
        except AssertionError as error:
            raise AssertionError(f"{error}; what is left: {left()}") from None

    def check_clicked_agent_ends(self, how=signal.SIGTERM):
        """An agent that a click started stays until it is told to end."""
        self.session.processes.end_by_signal(self.session.processes.named(AGENT_PROGRAM), how)

    def check_launched(self, *arguments, times=1):
        """The main application was started with these arguments and nothing of ours left open."""
        notes = self.application.wait_for_notes("started", times)
        self.assertEqual(len(notes), times)
        self.assertEqual(notes[-1]["arguments"], list(arguments))
        self.assertEqual(notes[-1]["descriptors"], [0, 1, 2])


def show_reminder(case, server, **settings):
    """A due reminder that the server shows, and the agent's run that posted it."""
    if settings:
        case.settings(**settings)
    running = case.start(server)
    case.last_reminder(LONG_AGO)
    run = case.session.start_agent()
    running.wait_for_popup()
    return running, run
