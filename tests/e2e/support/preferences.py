"""Preference files as they lie on the disk, written and read without the product."""

import datetime
import plistlib
from pathlib import Path

AGENT = "com.orvane.Vornix3.Scheduler"
MAIN_APPLICATION = "com.orvane.Vornix3"
FORMER_AGENT = "com.orvane.Vornix-3-Scheduler"
LAST_DATE = "LastSchedulerNotificationDate"
PERIOD = "SchedulerPeriod"
FULL_SCAN = "SchedulerShouldStartFullScan"
SEND_PROFILE = "SUSendProfileInfo"
DAY = 86400


class Preferences:
    def __init__(self, home):
        self.folder = Path(home, "Library", "Preferences")

    def path(self, domain):
        return self.folder / f"{domain}.plist"

    def write(self, domain, values, xml=False):
        self.folder.mkdir(parents=True, exist_ok=True)
        kind = plistlib.FMT_XML if xml else plistlib.FMT_BINARY
        self.path(domain).write_bytes(plistlib.dumps(values, fmt=kind))

    def change(self, domain, **values):
        self.write(domain, {**self.read(domain), **values})

    def read(self, domain):
        path = self.path(domain)
        return plistlib.loads(path.read_bytes()) if path.exists() else {}

    def files(self):
        """Every file of the folder and its bytes, to see that nothing was touched."""
        if not self.folder.exists():
            return {}
        return {path.name: path.read_bytes() for path in sorted(self.folder.iterdir())}


def ago(seconds):
    """The date so many seconds before now, as property lists hold dates: in UTC, without a zone."""
    now = datetime.datetime.now(datetime.timezone.utc).replace(tzinfo=None)
    return (now - datetime.timedelta(seconds=seconds)).replace(microsecond=0)


def days_ago(days):
    return ago(days * DAY)


def seconds_since(date):
    now = datetime.datetime.now(datetime.timezone.utc).replace(tzinfo=None)
    return (now - date).total_seconds()
