"""The files of the demonstration: preferences, the agent's configuration, the request."""

import datetime
import json
import plistlib
import socket
import sys


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


def request_words(record):
    with open(record, encoding="utf-8") as source:
        print(*json.loads(source.readline())["arguments"])


if __name__ == "__main__":
    commands = {
        "free-port": free_port,
        "configure-analytics": configure_analytics,
        "write-preferences": write_preferences,
        "request-words": request_words,
    }
    commands[sys.argv[1]](*sys.argv[2:])
