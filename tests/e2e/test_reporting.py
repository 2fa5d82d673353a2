"""What reaches the collector, and that nothing else depends on it."""

from support.agent import LONG_AGO, AgentCase, show_reminder
from support.collector import free_port_held
from support.desktop import Dunst
from support.preferences import SEND_PROFILE, seconds_since


class Reporting(AgentCase):
    def test_hits_come_one_at_a_time_in_order_over_one_connection(self):
        self.start(Dunst)
        self.last_reminder(LONG_AGO)
        self.run_with_grace()
        hits = self.check_hits("Notification Shown")
        self.assertEqual([hit.request for hit in hits], [1, 2, 3])
        self.assertEqual(len({hit.connection for hit in hits}), 1)
        for earlier, later in zip(hits, hits[1:]):
            self.assertGreaterEqual(later.began, earlier.ended - 0.002)  # nginx tells milliseconds

    def test_nothing_is_reported_when_the_main_application_switched_it_off(self):
        self.settings(**{SEND_PROFILE: False})
        server, run = show_reminder(self, Dunst)
        self.check_graceful_end(run.wait())
        server.press_action("launch")
        self.check_launched("-scheduled")
        self.check_clicked_agent_ends()
        self.check_shown()
        self.assertEqual(self.collector.hits(), [])

    def test_a_collectors_own_identifier_replaces_the_main_one(self):
        self.settings(AnalyticsCustomGAID="UA-CUSTOM-1")
        self.start(Dunst)
        self.last_reminder(LONG_AGO)
        self.run_with_grace()
        self.assertEqual(self.collector.wait_for_hits(3)[0]["tid"], "UA-CUSTOM-1")


class UnfitCollector(AgentCase):
    """Whatever the collector does, the reminder is shown, dated and clickable, and nobody hangs."""

    collector_options = None

    def check_reminder_all_the_same(self):
        server, run = show_reminder(self, Dunst)
        self.check_graceful_end(run.wait())
        self.check_shown()
        self.check_date_is_new()
        server.press_action("launch")
        self.check_launched("-scheduled")
        self.check_clicked_agent_ends()
        self.check_processes([])

    def check_date_is_new(self):
        self.assertLess(abs(seconds_since(self.stored_date())), 120)


class CollectorDown(UnfitCollector):
    def test_a_refused_connection_changes_nothing_for_the_person(self):
        holder, port = free_port_held()
        self.addCleanup(holder.close)
        self.session.collect_at(f"127.0.0.1:{port}")
        self.check_reminder_all_the_same()


class CollectorSlow(UnfitCollector):
    collector_options = {"answer": "stall"}

    def test_an_answer_that_never_comes_changes_nothing_for_the_person(self):
        self.check_reminder_all_the_same()
        self.collector.wait_for_hits(2)
        # What was given up is logged as the client's own hanging up, and no second one had begun.
        self.assertEqual([hit.status for hit in self.collector.hits()], [499, 499])


class CollectorRefusesTls(UnfitCollector):
    collector_options = {"server": "ssl_reject_handshake on;"}

    def test_a_refused_handshake_changes_nothing_for_the_person(self):
        self.check_reminder_all_the_same()
        self.assertEqual(self.collector.hits(), [])


class CollectorUntrusted(UnfitCollector):
    collector_options = {"certificate": "stranger"}

    def test_a_certificate_of_an_unknown_authority_gets_no_hit(self):
        self.check_reminder_all_the_same()
        self.assertEqual(self.collector.hits(), [])
        self.assertIn("SSL_do_handshake() failed", self.collector.complaints())


class CollectorFailing(UnfitCollector):
    collector_options = {"answer": "return 500;"}

    def test_every_hit_is_sent_once_though_the_collector_answers_500(self):
        self.check_reminder_all_the_same()
        hits = self.check_hits("Notification Shown", "Notification Clicked")
        self.assertEqual({hit.status for hit in hits}, {500})
