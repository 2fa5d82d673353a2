"""The main application, as far as the agent can tell: a desktop entry and a stand-in that takes notes."""

import json
from pathlib import Path

from . import waiting

IDENTIFIER = "com.orvane.Vornix3"
VERSION = "3.4.1"
STAND_IN = Path(__file__).resolve().parents[3] / "examples" / "main-application" / "main-application"
_ENTRY = """[Desktop Entry]
Type=Application
Name=Vornix 3
Exec={program} --record {record} %F
X-CFBundleVersion={version}
"""


class MainApplication:
    def __init__(self, session):
        self._session = session
        self._record = session.folder / "main-application.jsonl"
        self._entry = Path(session.environment["XDG_DATA_HOME"], "applications",
                           f"{IDENTIFIER}.desktop")
        self.process = None

    def install(self):
        self._entry.parent.mkdir(exist_ok=True)
        self._entry.write_text(
            _ENTRY.format(program=STAND_IN, record=self._record, version=VERSION),
            encoding="utf-8")
        return self

    def uninstall(self):
        self._entry.unlink()

    def start(self):
        """Runs it as a person would have: it owns its name and can be asked things."""
        self.process = self._session.processes.start(
            "main-application", [str(STAND_IN), "--record", str(self._record), "--stay"],
            self._session.environment)
        self.wait_for_notes("ready")
        return self

    def notes(self, event=None):
        if not self._record.exists():
            return []
        lines = self._record.read_text(encoding="utf-8").split("\n")[:-1]
        return [note for note in map(json.loads, lines) if event in (None, note["event"])]

    def wait_for_notes(self, event, count=1):
        waiting.wait_for(lambda: len(self.notes(event)) >= count,
                         f"{count} times '{event}' at the main application")
        return self.notes(event)
