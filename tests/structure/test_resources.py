"""What is shipped as data says what the programs expect, and nothing that only a build may say."""

import plistlib
import re
import unittest
from pathlib import Path

BUNDLE = Path(__file__).resolve().parents[2] / "resources" / "vornix-scheduler"


class Analytics(unittest.TestCase):
    def setUp(self):
        with open(BUNDLE / "Analytics.plist", "rb") as file:
            self.configuration = plistlib.load(file)

    def test_reaches_nobody(self):
        self.assertEqual(self.configuration["CollectionHost"], "collect.invalid")
        self.assertNotIn("CertificateAuthorityFile", self.configuration)

    def test_holds_nothing_but_placeholders(self):
        names = ("ProductionIdentifier", "DebugIdentifier", "BackupIdentifier")
        identifiers = [self.configuration[name] for name in names]
        identifiers += self.configuration["CategoryIdentifiers"].values()
        for identifier in identifiers:
            self.assertRegex(identifier, r"^UA-00000000-[0-9]+$")
        self.assertEqual(len(set(identifiers)), len(identifiers))

    def test_names_all_thirty_two_categories(self):
        categories = self.configuration["CategoryIdentifiers"]
        self.assertEqual(len(categories), 32)
        self.assertLessEqual({"Scheduler", "Errors", "CD"}, set(categories))


class Information(unittest.TestCase):
    def test_names_the_agent(self):
        with open(BUNDLE / "Info.plist", "rb") as file:
            information = plistlib.load(file)
        self.assertEqual(information["CFBundleIdentifier"], "com.orvane.Vornix3.Scheduler")
        self.assertTrue((BUNDLE / f"{information['CFBundleDevelopmentRegion']}.lproj").is_dir())


class Texts(unittest.TestCase):
    REMINDER_KEYS = {
        "NotificationsTitle_RunSomeCleanup",
        "NotificationDescription_RunScan",
        "NotificationDescription_RunSomeCleanup",
        "Launch",
        "Cancel",
    }
    ERROR_KEYS = {"ErrorDescRemoving_GenericError"}

    def assert_keys_in_every_language(self, table, keys):
        folders = {folder.name: folder for folder in BUNDLE.glob("*.lproj")}
        self.assertLessEqual({"en.lproj", "de.lproj"}, set(folders))
        for name, folder in folders.items():
            with self.subTest(name):
                text = (folder / f"{table}.strings").read_text(encoding="utf-8")
                texts = dict(re.findall(r'^"(\w+)" = "(.+)";$', text, re.MULTILINE))
                self.assertEqual(set(texts), keys)

    def test_has_every_text_of_the_reminder_in_every_language(self):
        self.assert_keys_in_every_language("Localizable", self.REMINDER_KEYS)

    def test_has_every_text_of_an_error_in_every_language(self):
        self.assert_keys_in_every_language("Errors", self.ERROR_KEYS)
