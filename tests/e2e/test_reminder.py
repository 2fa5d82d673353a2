"""The reminder on the screen, and what becomes of a click on it."""

from support import tree
from support.agent import CLEANUP_WORDS, LONG_AGO, SCAN_WORDS, AgentCase, show_reminder
from support.case import smoke
from support.desktop import Dunst, Mate, Xfce
from support.preferences import FULL_SCAN
from support.session import AGENT_NAME, AGENT_PROGRAM, CENTRE_NAME, CENTRE_PROGRAM

SHOWN, CLICKED = "Notification Shown", "Notification Clicked"


class Reminder(AgentCase):
    def test_only_the_notification_centre_speaks_to_the_server(self):
        _, run = show_reminder(self, Xfce)
        posted = self.posted()[0]
        self.assertEqual(self.session.bus.pid_of(posted.sender),
                         self.session.bus.pid_of(CENTRE_NAME))
        self.check_graceful_end(run.wait())
        self.check_processes([CENTRE_PROGRAM])
        self.check_shown_now()

    def test_the_popup_stays_when_the_agent_has_quit(self):
        server, run = show_reminder(self, Xfce)
        self.check_graceful_end(run.wait())
        # The page of welcome shows a copy of it.
        self.session.screen.picture(server.wait_for_popup(), tree.BUILD.parent / "reminder.png")

    def test_buttons_are_launch_and_cancel_and_a_default_where_it_draws_no_button(self):
        for server, keys in ((Xfce, ["launch", "cancel"]), (Dunst, ["default", "launch", "cancel"])):
            with self.subTest(server=server.__name__):
                running, run = show_reminder(self, server)
                titles = self.check_shown(times=len(self.posted()))
                self.assertEqual(list(titles), keys)
                self.assertEqual((titles["launch"], titles["cancel"]), ("Launch", "Cancel"))
                self.check_graceful_end(run.wait())
                running.press_close()
                self.check_processes([])
                self.session.processes.end(running.process)

    def test_texts_speak_the_persons_language(self):
        self.start(Dunst)
        self.last_reminder(LONG_AGO)
        self.run_with_grace(LANGUAGE="de", LANG="de_DE.UTF-8")
        titles = self.check_shown(title="Zeit zum Aufräumen", words="Das letzte Aufräumen ist eine "
                                  "Weile her. Schaffen Sie Platz auf Ihrer Festplatte.")
        self.assertEqual((titles["launch"], titles["cancel"]), ("Starten", "Abbrechen"))

    def test_a_reminder_still_displayed_keeps_the_next_one_away(self):
        server, run = show_reminder(self, Xfce)
        self.check_graceful_end(run.wait())
        date = self.last_reminder(LONG_AGO)
        self.run_with_grace()
        self.check_shown(times=1)
        self.check_hits(SHOWN)
        self.assertEqual(self.stored_date(), date)
        self.assertIsNotNone(self.session.screen.popup(server.window_class))

    def test_a_running_main_application_needs_no_reminder(self):
        self.start(Dunst)
        self.application.start()
        date = self.last_reminder(LONG_AGO)
        self.check_end_at_once(self.run_agent())
        self.assertEqual(self.stored_date(), date)
        self.assertEqual([note["event"] for note in self.application.notes()], ["ready"])
        self.check_nothing_happened()

    def test_cancel_only_takes_the_reminder_away(self):
        server, run = show_reminder(self, Xfce)
        server.press_action("cancel")
        self.check_graceful_end(run.wait())
        self.check_dismissed(server)

    def test_closing_only_takes_the_reminder_away(self):
        server, run = show_reminder(self, Xfce)
        self.check_graceful_end(run.wait())
        server.press_close()
        self.check_dismissed(server)

    def test_closing_in_another_server_only_takes_the_reminder_away(self):
        server, run = show_reminder(self, Mate)
        self.check_graceful_end(run.wait())
        server.press_close()
        self.check_dismissed(server)

    def check_dismissed(self, server):
        """Nothing comes of it, everybody goes, and the next due reminder is shown."""
        self.session.screen.wait_for_no_popup(server.window_class)
        self.check_processes([])
        self.check_hits(SHOWN)
        self.assertEqual(self.application.notes(), [])
        self.last_reminder(LONG_AGO)
        self.run_with_grace()
        server.wait_for_popup()
        self.check_shown(times=2)
        self.check_hits(SHOWN, SHOWN)


class Click(AgentCase):
    @smoke
    def test_a_click_after_the_agent_has_quit_starts_it_again(self):
        server, run = show_reminder(self, Dunst)
        self.check_graceful_end(run.wait())
        server.press_action("launch")
        self.check_answered_by_a_new_agent(server)

    def test_a_click_in_xfce_after_the_agent_has_quit(self):
        server, run = show_reminder(self, Xfce)
        self.check_graceful_end(run.wait())
        server.press_action("launch")
        self.check_answered_by_a_new_agent(server)

    def test_a_click_in_mate_after_the_agent_has_quit(self):
        server, run = show_reminder(self, Mate)
        self.check_graceful_end(run.wait())
        server.press_action("launch")
        self.check_answered_by_a_new_agent(server)

    def check_answered_by_a_new_agent(self, server):
        self.check_launched("-scheduled")
        self.check_hits(SHOWN, CLICKED)
        self.session.screen.wait_for_no_popup(server.window_class)
        self.check_processes([AGENT_PROGRAM])  # it stays, and the centre has gone
        self.wait_for(lambda: not self.session.bus.has_owner(AGENT_NAME),
                      "the clicked agent to let its name go")
        self.check_clicked_agent_ends()
        self.check_processes([])

    def test_a_click_while_the_agent_lives_is_answered_by_it(self):
        server, run = show_reminder(self, Xfce)
        server.press_action("launch")
        self.check_launched("-scheduled")
        self.assertTrue(run.is_alive())
        self.check_graceful_end(run.wait())
        self.check_hits(SHOWN, CLICKED)
        self.check_processes([])

    def test_a_click_asks_for_a_scan_when_the_person_wants_scans(self):
        server, run = show_reminder(self, Xfce, **{FULL_SCAN: True})
        self.check_graceful_end(run.wait())
        self.check_shown(words=SCAN_WORDS)
        server.press_action("launch")
        self.check_launched("-scheduledScan")
        self.check_hits(SHOWN, CLICKED)
        self.check_clicked_agent_ends()

    def test_a_changed_setting_counts_at_the_click_and_not_in_the_text_shown(self):
        server, run = show_reminder(self, Xfce, **{FULL_SCAN: False})
        self.check_graceful_end(run.wait())
        self.settings(**{FULL_SCAN: True})
        server.press_action("launch")
        self.check_launched("-scheduledScan")
        self.check_shown(words=CLEANUP_WORDS)
        self.check_hits(SHOWN, CLICKED)
        self.check_clicked_agent_ends()

    def test_a_running_main_application_is_activated_and_asked(self):
        server, run = show_reminder(self, Xfce, **{FULL_SCAN: True})
        self.check_graceful_end(run.wait())
        self.application.start()
        server.press_action("launch")
        posted = self.application.wait_for_notes("Posted")
        self.assertEqual(posted, [{"event": "Posted", "name": "com.orvane.vornix3.scheduledScan",
                                   "object": "VNXHelper", "info": {"Files": []}}])
        self.assertEqual(len(self.application.wait_for_notes("Activate")), 1)
        self.check_hits(SHOWN, CLICKED)
        self.assertEqual(self.application.notes("started"), [])
        self.check_clicked_agent_ends()

    def test_at_most_one_clicked_agent_is_left(self):
        server, run = show_reminder(self, Xfce)
        self.check_graceful_end(run.wait())
        server.press_action("launch")
        self.check_launched("-scheduled")
        self.check_processes([AGENT_PROGRAM])
        first = self.session.processes.named(AGENT_PROGRAM)
        self.last_reminder(LONG_AGO)
        self.run_with_grace()
        server.wait_for_popup()
        server.press_action("launch")
        self.check_launched("-scheduled", times=2)
        self.check_processes([AGENT_PROGRAM])
        self.assertNotEqual(self.session.processes.named(AGENT_PROGRAM), first)
        self.check_hits(SHOWN, CLICKED, SHOWN, CLICKED)
        self.check_clicked_agent_ends()

    def test_a_main_application_that_is_not_installed_is_a_message_and_nothing_more(self):
        server, run = show_reminder(self, Xfce)
        self.check_graceful_end(run.wait())
        self.application.uninstall()
        server.press_action("launch")
        hits = self.collector.wait_for_hits(6)
        self.assertEqual([hit["ea"] for hit in hits[3:]], [CLICKED] * 3)
        self.check_processes([AGENT_PROGRAM])
        self.check_clicked_agent_ends()
