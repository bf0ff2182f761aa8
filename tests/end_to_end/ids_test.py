"""docs/value-ids.md against the code: the same ids, each standing once, with the type and the detector that the page says."""

import re
import unittest
from collections import Counter

from harness import ROOT

SOURCES = sorted(path for folder in ("run", "run/store", "probes", "detectors") for path in (ROOT / folder).glob("*.*"))
# Files that are no detector's own.
KEEPERS = {"FixedGroups": "OS", "OSIds": "OS", "OpticalDrives": "CDRom", "GPUFacts": "GPU", "DirectXFacts": "DirectX",
           "BrowserTable": "Browser", "ApplicationTable": "Applications", "RuntimeTable": "Software"}
TYPES = {"std::wstring": "text", "Name": "text", "bool": "Exists", "std::int32_t": "Count"}


def plain(kind):
    """A member's or the page's type: an option is what it holds, and every free text is a text."""
    kind = re.sub(r"^std::optional<(.*)>$", r"\1", kind.strip(" `"))
    return TYPES.get(kind, kind)


def lines(pattern, text):
    return re.findall(pattern, text, re.MULTILINE | re.DOTALL)


class ValueIds(unittest.TestCase):
    def setUp(self):
        self.texts = {path: path.read_text("utf-8") for path in SOURCES}
        self.all = "\n".join(self.texts.values())

    def stored(self):
        """Of each id in the code its keeper, and its type where a table tells it."""
        shared = dict(lines(r"^constexpr unsigned (\w+) = (\d{5});", self.all))
        members = {(record, member): kind for record, body in lines(r"^struct (\w+)(?: : \w+)? \{\n(.*?)^\};", self.all)
                   for kind, member in lines(r"^    ([\w:<>]+) (\w+)(?: = [^;]+)?;", body)}
        for path, text in self.texts.items():
            keeper = KEEPERS.get(path.stem, path.stem)
            aliases = dict(lines(r"^using (\w+) = (\w+);", text))
            facts = [fact for fact in lines(r"Fact\{(\w+),\s*&(\w+)::(\w+)", text) if fact[0] != "NotStored"]
            for number, record, member in facts:
                yield shared.get(number, number), keeper, plain(members[aliases.get(record, record), member])
            for row in lines(r'^    \{(\w+), (\w+), L"[^"\n]+",(?=$| L)', text):
                yield from ((number, keeper, kind) for number, kind in zip(row, ("Exists", "Version")) if number != "NotStored")
            for name, number in lines(r"^constexpr unsigned (\w+(?:Id\d?|Group)) = (\d{5});", text):
                if name not in (fact[0] for fact in facts):
                    yield number, keeper, None

    def test_the_page_lists_what_the_code_stores(self):
        rows = re.findall(r"^\| (\d{5}) \|[^|]*\|([^|]*)\|.*\| `kel::(\w+)` \|$",
                          (ROOT / "docs" / "value-ids.md").read_text("utf-8"), re.MULTILINE)
        page = {number: (detector, plain(kind)) for number, kind, detector in rows}
        stored = list(self.stored())
        self.assertEqual(Counter(number for number, _, _ in stored), Counter(number for number, _, _ in rows))
        for number, keeper, kind in stored:
            self.assertEqual((keeper, kind or page[number][1]), page[number], number)

    def test_stored_means_used(self):
        for name in lines(r"^constexpr unsigned (\w+Id) = \d{5};", self.all):
            self.assertGreater(len(re.findall(rf"\b{name}\b", self.all)), 1, name)
