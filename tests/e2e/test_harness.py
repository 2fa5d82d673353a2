"""The harness itself: real servers, a real pointer and a real collector do what the tests rely on."""

import subprocess

from gi.repository import GLib

from support import desktop
from support.case import Case
from support.collector import Collector
from support.desktop import Dunst, Mate, Xfce

WORDS = "It has been a while since the last clean-up. Free some space on your disk."
ACTIONS = ["launch", "Launch", "cancel", "Cancel"]


class Harness(Case):
    installed = False

    def notify(self):
        arguments = GLib.Variant("(susssasa{sv}i)", (
            "test", 0, "dialog-information", "Time to clean up", WORDS, ACTIONS,
            {"urgency": GLib.Variant("y", 1)}, 0))
        return self.session.bus.call(desktop.NOTIFICATIONS, "/org/freedesktop/Notifications",
                                     desktop.NOTIFICATIONS, "Notify", arguments)[0]

    def check_action(self, server, key):
        identifier = self.notify()
        server.wait_for_popup()
        server.press_action(key)
        signals = self.session.bus.monitor.messages("ActionInvoked")
        self.assertEqual([signal.arguments for signal in signals][:1], [(identifier, key)])
        self.session.screen.wait_for_no_popup(server.window_class)

    def check_close(self, server):
        identifier = self.notify()
        server.wait_for_popup()
        server.press_close()
        signals = self.session.bus.monitor.messages("NotificationClosed")
        self.assertEqual(signals[0].arguments[0], identifier)
        self.assertEqual(self.session.bus.monitor.messages("ActionInvoked"), [])

    def test_xfce_takes_a_click_on_launch(self):
        self.check_action(self.start(Xfce), "launch")

    def test_xfce_takes_a_click_on_cancel(self):
        self.check_action(self.start(Xfce), "cancel")

    def test_xfce_takes_a_click_that_closes(self):
        self.check_close(self.start(Xfce))

    def test_mate_takes_a_click_on_launch(self):
        self.check_action(self.start(Mate), "launch")

    def test_dunst_takes_a_click_on_launch(self):
        self.check_action(self.start(Dunst), "launch")

    def test_dunst_takes_a_click_that_closes(self):
        self.check_close(self.start(Dunst))

    def test_the_collector_tells_hits_in_order_over_one_connection(self):
        collector = Collector(self.session)
        subprocess.run(
            ["curl", "--silent", "--show-error", "--cacert", self.session.tls / "ca.pem",
             "-A", "Vornix/1", f"https://127.0.0.1:{collector.port}/collect?v=1&ea=A%20b+c",
             f"https://127.0.0.1:{collector.port}/collect?v=2"], check=True)
        first, second = collector.wait_for_hits(2)
        self.assertEqual((first["v"], first["ea"], second["v"]), ("1", "A b+c", "2"))
        self.assertEqual((first.user_agent, first.status), ("Vornix/1", 200))
        self.assertEqual((first.connection, first.request, second.request),
                         (second.connection, 1, 2))

    def test_a_process_left_behind_is_seen(self):
        process = subprocess.Popen(["sleep", "600"], env=self.session.environment)
        self.assertEqual(self.session.processes.named("sleep"), [process.pid])
        process.kill()
        process.wait()
        self.assertEqual(self.session.processes.named("sleep"), [])
