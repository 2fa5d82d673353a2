"""What is shipped as data says what the programs expect, and nothing that only a build may say."""

import plistlib
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
