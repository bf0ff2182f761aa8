"""docs/value-ids.md against the code: the same ids, each standing once, with the type and the detector that the page says."""

import re
import unittest
from collections import Counter

from harness import ROOT

FOLDERS = ("run", "run/store", "probes", "detectors")
# Files that are no detector's own.
KEEPERS = {"System": "System", "FixedGroups": "OS", "OSIds": "OS", "OpticalDrives": "CDRom", "GPUFacts": "GPU",
           "DirectXFacts": "DirectX", "BrowserTable": "Browser", "ApplicationTable": "Applications",
           "RuntimeTable": "Software"}
TYPES = {"std::wstring": "text", "Name": "text", "bool": "Exists", "std::int32_t": "Count"}


def plain(kind):
    """A member's or the page's type: an option is what it holds, and every free text is a text."""
    kind = re.sub(r"^std::optional<(.*)>$", r"\1", kind.strip(" `"))
    return TYPES.get(kind, kind)


class ValueIds(unittest.TestCase):
    def setUp(self):
        self.texts = {path: path.read_text("utf-8") for folder in FOLDERS for path in sorted((ROOT / folder).glob("*.*"))}
        self.members = {(record, member): kind for text in self.texts.values()
                        for record, body in re.findall(r"^struct (\w+)(?: : \w+)? \{\n(.*?)^\};", text, re.MULTILINE | re.DOTALL)
                        for kind, member in re.findall(r"^    ([\w:<>]+) (\w+)(?: = [^;]+)?;", body, re.MULTILINE)}

    def stored(self):
        """Of each id in the code its keeper, and its type where a table tells it."""
        shared = dict(re.findall(r"^constexpr unsigned (\w+) = (\d{5});", "\n".join(self.texts.values()), re.MULTILINE))
        for path, text in self.texts.items():
            keeper = KEEPERS.get(path.stem, path.stem)
            named = dict(re.findall(r"^constexpr unsigned (\w+(?:Id\d?|Group)) = (\d{5});", text, re.MULTILINE))
            aliases = dict(re.findall(r"^using (\w+) = (\w+);", text, re.MULTILINE))
            in_tables = set()
            for number, record, member in re.findall(r"Fact\{(\w+),\s*&(\w+)::(\w+)", text):
                if number != "NotStored":
                    in_tables.add(number)
                    yield shared.get(number, number), keeper, plain(self.members[aliases.get(record, record), member])
            for row in re.findall(r"^    \{(\w+), (\w+), L\"[^\"]+\",$|^    \{(\w+), (\w+), L\"[^\"]+\", L", text, re.MULTILINE):
                for number, kind in zip(filter(None, row), ("Exists", "Version")):
                    if number != "NotStored":
                        yield number, keeper, kind
            for name, number in named.items():
                if name not in in_tables:
                    yield number, keeper, None

    def test_the_page_lists_what_the_code_stores(self):
        rows = re.findall(r"^\| (\d{5}) \|[^|]*\|([^|]*)\|.*\| `kel::(\w+)` \|$",
                          (ROOT / "docs" / "value-ids.md").read_text("utf-8"), re.MULTILINE)
        page = {number: (detector, plain(kind)) for number, kind, detector in rows}
        stored = list(self.stored())
        self.assertEqual(Counter(number for number, _, _ in stored), Counter(number for number, _, _ in rows))
        for number, keeper, kind in stored:
            with self.subTest(number):
                self.assertEqual((keeper, kind or page[number][1]), page[number])

    def test_stored_means_used(self):
        everything = "\n".join(self.texts.values())
        for path, text in self.texts.items():
            for name in re.findall(r"^constexpr unsigned (\w+Id) = \d{5};", text, re.MULTILINE):
                self.assertGreater(len(re.findall(rf"\b{name}\b", everything)), 1, f"{path.name} {name}")


if __name__ == "__main__":
    unittest.main()
