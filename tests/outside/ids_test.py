"""docs/value-ids.md against the code: the same ids, each standing once under a name in the code."""

import re
import unittest
from collections import Counter

from harness import ROOT


class ValueIds(unittest.TestCase):
    def test_the_page_lists_what_the_code_stores(self):
        sources = [path.read_text() for folder in ("run", "detectors") for path in sorted((ROOT / folder).iterdir())]
        named = Counter(number for text in sources
                        for number in re.findall(r"^constexpr unsigned \w+(?:Id\d?|Group) = (\d{5});", text, re.MULTILINE))
        listed = Counter(re.findall(r"^\| (\d{5}) \|", (ROOT / "docs" / "value-ids.md").read_text(), re.MULTILINE))
        self.assertGreater(len(named), 60)
        self.assertEqual(named, listed)
        self.assertEqual(max(named.values()), 1)

    def test_stored_means_used(self):
        for path in sorted((ROOT / "detectors").glob("*.cpp")):
            text = path.read_text()
            for name in re.findall(r"^constexpr unsigned (\w+) = \d{5};", text, re.MULTILINE):
                self.assertRegex(text, rf"AddValue\({name}\b", path.name)
