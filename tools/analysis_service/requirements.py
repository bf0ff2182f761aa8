"""Requirements files: one JSON file a referrer."""

import json
import re
from dataclasses import dataclass

from errors import ServiceError
from verdict import COMPARE, why_never_met

# Every report must name its session, referrer and user.
IDENTIFIERS = [71424, 71218, 71206]
LONGEST_FILE, LONGEST_TEXT = 1024 * 1024, 1000  # bytes
MOST_LINES, MOST_ALTERNATIVES = 500, 20
LARGEST_ID = 0x7FFFFFFF
NOT_XML = re.compile("[^\t\n\r\x20-\ud7ff\ue000-\ufffd\U00010000-\U0010ffff]")
CONDITION, LINE = {"id", "comparison", "needed"}, {"label", "advice", "recommended"}


@dataclass
class Condition:
    """What a group's value has to be."""

    group: int
    comparison: str
    needed: str

    def text(self):
        return f"{self.comparison} {self.needed}".strip()


@dataclass
class Requirement:
    label: str
    any_of: list  # of conditions, one of which has to hold
    advice: str  # what a visitor can do about it
    recommended: bool  # told, but without a say in the total


@dataclass
class Requirements:
    title: str
    lines: list

    def groups(self):
        return list(dict.fromkeys(IDENTIFIERS + [part.group for line in self.lines for part in line.any_of]))


def _check_names(entry, names):
    """A misspelt name would change what the line means."""
    if not isinstance(entry, dict):
        raise ValueError("it is no object")
    for name in sorted(entry.keys() - names):
        raise ValueError(f"'{name}' does not belong there")


def _value(entry, name, kind, what):
    if name not in entry:
        raise ValueError(f"it has no '{name}'")
    if not isinstance(entry[name], kind):
        raise ValueError(f"its '{name}' is {what}")
    return entry[name]


def _text(entry, name):
    text = _value(entry, name, str, "no text")
    if len(text.encode()) > LONGEST_TEXT:
        raise ValueError(f"its '{name}' is longer than {LONGEST_TEXT} bytes")
    if NOT_XML.search(text):
        raise ValueError(f"its '{name}' has a character that XML does not allow")
    return text


def _each(entry, name, kind, least, most, read):
    """Reads each entry of a list that has so many."""
    entries, read_ones = _value(entry, name, list, "no list"), []
    if not least <= len(entries) <= most:
        raise ValueError(f"its '{name}' has {len(entries)} entries, not {least} to {most}")
    for number, one in enumerate(entries, 1):
        try:
            read_ones.append(read(one))
        except ValueError as error:
            raise ValueError(f"{kind} {number}: {error}") from error
    return read_ones


def _condition(entry):
    group = _value(entry, "id", object, "")
    if type(group) is not int or not 1 <= group <= LARGEST_ID:
        raise ValueError(f"its 'id' is no whole number from 1 to {LARGEST_ID}")
    comparison = _text(entry, "comparison")
    if comparison not in COMPARE:
        raise ValueError(f"'{comparison}' is no comparison")
    needed = entry.get("needed", "")
    needed = str(needed) if type(needed) in (int, float) else _text({"needed": needed}, "needed")
    if why := why_never_met(comparison, needed):
        raise ValueError(f"'{comparison}' {why}, not '{needed}'")
    return Condition(group, comparison, needed)


def _alternative(entry):
    _check_names(entry, CONDITION)
    return _condition(entry)


def _line(entry):
    either = isinstance(entry, dict) and "any of" in entry
    _check_names(entry, LINE | ({"any of"} if either else CONDITION))
    label = _text(entry, "label")
    conditions = _each(entry, "any of", "alternative", 1, MOST_ALTERNATIVES, _alternative) if either else [_condition(entry)]
    advice = _text(entry, "advice") if "advice" in entry else ""
    return Requirement(label, conditions, advice,
                       _value({"recommended": False} | entry, "recommended", bool, "neither true nor false"))


def parse_requirements(data):
    if len(data) > LONGEST_FILE:
        raise ValueError(f"it is longer than {LONGEST_FILE} bytes")
    content = json.loads(data.decode("utf-8-sig"))
    _check_names(content, {"title", "requirements"})
    return Requirements(_text(content, "title"), _each(content, "requirements", "requirement", 0, MOST_LINES, _line))


def load_requirements(folder, referrer):
    path = folder / f"{referrer}.json"
    if not re.fullmatch(r"[A-Za-z0-9_-]{1,64}", referrer) or not path.is_file():
        raise ServiceError(404, f"Referrer {referrer!r} is not known.")
    try:
        return parse_requirements(path.read_bytes())
    except ValueError as error:
        raise ServiceError(500, f"The requirements of {referrer!r} are malformed: {error}") from error
