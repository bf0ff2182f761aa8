"""Requirements files: one JSON file a referrer."""

import json
import re
from dataclasses import dataclass

from errors import ServiceError

# Every report must name its session, referrer and user.
IDENTIFIERS = [71424, 71218, 71206]
COMPARISONS = ("at least version", "at least", "at most", "equals", "one of", "contains", "any", "yes", "no")


@dataclass
class Requirement:
    group: int
    label: str
    comparison: str
    needed: str
    advice: str = ""  # what a visitor can do about it


@dataclass
class Requirements:
    title: str
    lines: list

    def groups(self):
        return list(dict.fromkeys(IDENTIFIERS + [line.group for line in self.lines]))


def _requirement(entry):
    line = Requirement(int(entry["id"]), str(entry["label"]), entry["comparison"], str(entry.get("needed", "")),
                       str(entry.get("advice", "")))
    if line.comparison not in COMPARISONS:
        raise ValueError(f"{line.comparison!r} is no comparison")
    return line


def load_requirements(folder, referrer):
    path = folder / f"{referrer}.json"
    if not re.fullmatch(r"[A-Za-z0-9_-]{1,64}", referrer) or not path.is_file():
        raise ServiceError(404, f"Referrer {referrer!r} is not known.")
    try:
        content = json.loads(path.read_text(encoding="utf-8"))
        return Requirements(str(content["title"]), [_requirement(entry) for entry in content["requirements"]])
    except (ValueError, KeyError, TypeError) as error:
        raise ServiceError(500, f"The requirements of {referrer!r} are malformed: {error}") from error
