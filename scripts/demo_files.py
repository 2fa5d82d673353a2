"""The files of the demonstration: preferences, the agent's configuration, and what the collector
saw, in plain words."""

import datetime
import plistlib
import socket
import sys
import urllib.parse


def free_port():
    with socket.socket() as listener:
        listener.bind(("127.0.0.1", 0))
        print(listener.getsockname()[1])


def configure_analytics(path, host, authority):
    with open(path, "rb") as source:
        settings = plistlib.load(source)
    settings["CollectionHost"] = host
    settings["CertificateAuthorityFile"] = authority
    with open(path, "wb") as target:
        plistlib.dump(settings, target)


def write_preferences(folder):
    """The person chose a reminder every week with a full scan; the last one was ten days ago."""
    last = datetime.datetime.now(datetime.timezone.utc) - datetime.timedelta(days=10)
    domains = {
        "com.orvane.Vornix3": {"SchedulerPeriod": 1, "SchedulerShouldStartFullScan": True},
        "com.orvane.Vornix3.Scheduler": {
            "LastSchedulerNotificationDate": last.replace(tzinfo=None, microsecond=0)
        },
    }
    for domain, values in domains.items():
        with open(f"{folder}/{domain}.plist", "wb") as target:
            plistlib.dump(values, target, fmt=plistlib.FMT_BINARY)


def identifier_names(settings):
    names = {settings["BackupIdentifier"]: "backup", settings["ProductionIdentifier"]: "main"}
    for category, identifier in settings["CategoryIdentifiers"].items():
        names.setdefault(identifier, f"category {category}")
    return names


def report_hits(log, configuration, action, lead):
    with open(configuration, "rb") as source:
        names = identifier_names(plistlib.load(source))
    with open(log, encoding="utf-8") as source:
        hits = [urllib.parse.parse_qs(urllib.parse.urlsplit(line.strip()).query) for line in source]
    matching = [hit for hit in hits if hit.get("ea") == [action]]
    print(f'{lead}The collector received the event "{action}" {len(matching)} times:')
    for hit in matching:
        identifier = hit["tid"][0]
        print(
            f'      - {names.get(identifier, "unknown")} identifier {identifier}: '
            f'category {hit["ec"][0]}, time {hit["el"][0]}, value {hit["ev"][0]}'
        )


if __name__ == "__main__":
    commands = {
        "free-port": free_port,
        "configure-analytics": configure_analytics,
        "write-preferences": write_preferences,
        "report-hits": report_hits,
    }
    commands[sys.argv[1]](*sys.argv[2:])
