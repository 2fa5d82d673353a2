"""Waiting for something to become true, with a deadline; what arrives on the bus is taken meanwhile."""

import time

from gi.repository import GLib

DEADLINE = 40.0  # seconds; generous, since many tests share few processors
_INTERVAL = 15  # milliseconds between two looks at what cannot announce itself


class TimedOut(AssertionError):
    pass


def turn_once():
    """Dispatches what is ready, or waits a moment for something to become so."""
    context = GLib.MainContext.default()
    source = GLib.timeout_source_new(_INTERVAL)
    source.set_callback(lambda *_: GLib.SOURCE_REMOVE)
    source.attach(context)
    context.iteration(True)
    source.destroy()


def wait_for(condition, what, deadline=DEADLINE):
    """Answers the condition's first true value; past the deadline says what did not happen."""
    end = time.monotonic() + deadline
    while True:
        value = condition()
        if value:
            return value
        if time.monotonic() > end:
            raise TimedOut(f"waited {deadline:g} s in vain for {what}")
        turn_once()


def holds_for(condition, seconds):
    """Whether the condition stays true all the while; for what must not happen."""
    end = time.monotonic() + seconds
    while time.monotonic() < end:
        if not condition():
            return False
        turn_once()
    return bool(condition())
