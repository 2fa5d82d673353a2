"""Tells in plain words and in order what happened in the demonstration.

    demo_report.py STAGE PREFIX
"""

import json
import plistlib
import re
import sys
import textwrap
import urllib.parse
from pathlib import Path

WIDTH = 92


class Story:
    def __init__(self):
        self.length = 0

    def tell(self, label, text, details=()):
        self.length += 1
        lead = f" {self.length}. {label:15}"
        indent = " " * len(lead)
        print(textwrap.fill(text, WIDTH, initial_indent=lead, subsequent_indent=indent))
        for detail in details:
            print(f"{indent}- {detail}")


def read_facts(path):
    return dict(line.split("\t", 1) for line in path.read_text("utf-8").splitlines())


def read_hits(path):
    hits = []
    for line in path.read_text("utf-8").splitlines():
        when, connection, uri = line.split(" ", 2)
        query = urllib.parse.parse_qs(urllib.parse.urlsplit(uri).query)
        hits.append({"when": float(when), "connection": connection}
                    | {key: values[0] for key, values in query.items()})
    return hits


def receivers(prefix):
    with open(prefix / "share/vornix-scheduler/Analytics.plist", "rb") as source:
        settings = plistlib.load(source)
    named = {identifier: f"{category} category"
             for category, identifier in settings["CategoryIdentifiers"].items()}
    return named | {settings["ProductionIdentifier"]: "main",
                    settings["BackupIdentifier"]: "backup"}


def reminder_text(path, key):
    return re.search(rf'string "{key}"\s+variant\s+string "(.*)"', path.read_text("utf-8"))[1]


def tell_event(story, hits, names, label, action, started):
    hits = [hit for hit in hits if hit.get("ea") == action]
    if not hits:
        story.tell(label, f'The collector was not told "{action}": the agent quit too soon.')
        return
    connections = len({hit["connection"] for hit in hits})
    ways = "one connection" if connections == 1 else f"{connections} connections"
    story.tell(label, f'"{action}" at {hits[0]["el"]} reached the collector, over {ways}, for the',
               [f'{names.get(hit["tid"], "unknown")} identifier {hit["tid"]}, '
                f'{hit["when"] - started:.2f} s after the agent\'s start' for hit in hits])


def tell_agent_gone(story, facts, started):
    outlived = "; the reminder stayed on screen" if "outlived" in facts else ""
    lived = float(facts["gone"]) - started
    story.tell("Agent gone", f"{lived:.1f} s after its start, by itself, with status 0{outlived}.")


def tell_answer(story, facts, request):
    if "closed" in facts:
        story.tell("Answer", "The reminder was cancelled or closed, not clicked: nothing is "
                             "started, nothing is reported.")
        return
    if "relaunched" in facts:
        story.tell("Click", f'{float(facts["clicked"]) - float(facts["gone"]):.1f} s after the '
                            "agent had gone.")
        story.tell("Relaunch", "For the click the message bus started the agent again, as process "
                               f'{facts["relaunched"]}.')
    else:
        story.tell("Click", "It came while the agent was still there, which took it by itself.")
    arguments = json.loads(request.read_text("utf-8").splitlines()[0])["arguments"]
    story.tell("Request", f'The main application was started with {" ".join(arguments)}')


def main():
    stage, prefix = Path(sys.argv[1]), Path(sys.argv[2])
    facts = read_facts(stage / "facts")
    started = float(facts["started"])
    hits, names = read_hits(stage / "collector/hits"), receivers(prefix)
    title, *buttons = (reminder_text(stage / "reminder", key) for key in
                       ("title", "action-button-title", "other-button-title"))
    story = Story()
    print("\nWhat happened, in order:\n")
    story.tell("Decision", facts["decision"])
    story.tell("Notification", f'"{title}", with the buttons "{buttons[0]}" and "{buttons[1]}".')
    tell_event(story, hits, names, "First event", "Notification Shown", started)
    tell_agent_gone(story, facts, started)
    tell_answer(story, facts, stage / "request")
    if "closed" not in facts:
        tell_event(story, hits, names, "Second event", "Notification Clicked", started)


if __name__ == "__main__":
    main()
