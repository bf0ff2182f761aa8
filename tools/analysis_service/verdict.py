"""Compares a report with requirements and renders the verdict."""

import json
import re
from dataclasses import dataclass
from html import escape
from pathlib import Path

KINDS = (("B", 2**10, "KMGT"), ("HZ", 10**3, "KMG"), ("BPS", 2**10, "KMG"))
UNITS = {"": (1, "")} | {prefix + kind: (base ** power, kind) for kind, base, prefixes in KINDS
                         for power, prefix in enumerate(["", *prefixes])}  # a unit's factor, and what it counts
PASS, FAIL, UNKNOWN = "pass", "fail", "unknown"
MARKS = {PASS: "✓ Meets", FAIL: "✗ Does not meet", UNKNOWN: "? Not known"}
LONGEST_VALUE, LONGEST_FOUND = 4096, 1000  # bytes: of a value that is compared, and of what is told of one
STYLE = Path(__file__).resolve().parents[2] / "examples" / "check.css"


def measure(text):
    """The amount in base units and what it counts ("" for a number without a unit); None when the text is none."""
    match = re.fullmatch(r"\s*(\d+(?:\.\d+)?)\s*([A-Za-z]*)\s*", text)
    if not match or match[2].upper() not in UNITS:
        return None
    factor, kind = UNITS[match[2].upper()]
    return float(match[1]) * factor, kind


def quantity(text):
    """The amount in base units; None when the text is none."""
    measured = measure(text)
    return measured and measured[0]


def version(text):
    """The numbers of a dotted version, without trailing zeros; None when the text is none."""
    if not re.fullmatch(r"\s*\d{1,18}(\.\d{1,18})*\s*", text):
        return None
    numbers = [int(number) for number in text.strip().split(".")]
    while numbers and numbers[-1] == 0:
        numbers.pop()
    return numbers


def resolution(text):
    """The longer and the shorter edge of a resolution such as 1280x720; None when the text is none."""
    match = re.match(r"\s*(\d{1,5})\s*[xX*]\s*(\d{1,5})(?!\d)", text)
    edges = sorted(map(int, match.groups()), reverse=True) if match else [0]
    return edges if edges[-1] else None


def _ordered(read, holds):
    def compare(found, needed):
        left, right = read(found), read(needed)
        return UNKNOWN if left is None or right is None else (PASS if holds(left, right) else FAIL)
    return compare


def _amounts(holds):
    """An amount is comparable with one of its own kind, and with a needed number that has no unit."""
    def compare(found, needed):
        left, right = measure(found), measure(needed)
        if left is None or right is None or right[1] not in ("", left[1]):
            return UNKNOWN
        return PASS if holds(left[0], right[0]) else FAIL
    return compare


def _answer(**results):
    return lambda found, _: results.get(found.strip().lower(), UNKNOWN)


def _at_least(found, needed):
    """By amount, or, where a resolution is needed, by whether the one covers the other, upright or lying."""
    if resolution(needed) is None:
        return _amounts(lambda left, right: left >= right)(found, needed)
    return _ordered(resolution, lambda left, right: left[0] >= right[0] and left[1] >= right[1])(found, needed)


def _plain(holds):
    return lambda found, needed: PASS if holds(found.strip().lower(), needed.strip().lower()) else FAIL


COMPARE = {
    "at least version": _ordered(version, lambda found, needed: found >= needed),
    "at least": _at_least,
    "at most": _amounts(lambda found, needed: found <= needed),
    "equals": _plain(lambda found, needed: found == needed),
    "one of": _plain(lambda found, needed: found in [choice.strip() for choice in needed.split(",")]),
    "contains": _plain(lambda found, needed: needed in found),
    "any": _plain(lambda found, _: True),  # a value without a text is unknown before it comes here
    "yes": _answer(yes=PASS, no=FAIL),
    "no": _answer(yes=FAIL, no=PASS),
}


def why_never_met(comparison, needed):
    """Why the comparison could never hold with this needed text; empty when it could."""
    amount = "needs a number, with or without a unit"
    why, could = {
        "at least version": ("needs a version", version(needed) is not None),
        "at least": (f"{amount}, or a resolution", measure(needed) or resolution(needed)),
        "at most": (amount, measure(needed)),
    }.get(comparison, ("needs a text", comparison in ("any", "yes", "no") or needed.strip()))
    return "" if could else why


@dataclass
class Part:
    """One condition, and whether the machine meets it."""

    group: int
    needed: str
    found: str
    result: str


@dataclass
class Line:
    label: str
    needed: str
    found: str
    result: str
    advice: str
    recommended: bool
    parts: list  # the alternatives; a plain line has one


@dataclass
class Verdict:
    title: str
    item: str
    schema: str
    lines: list
    total: str


def compare(comparison, found, needed):
    """One line's result; a value that the report lacks, or has no text for, is unknown."""
    if found is None or len(found.encode()) > LONGEST_VALUE or not found.strip():
        return UNKNOWN
    return COMPARE[comparison](found, needed)


def _shown(text):
    """Of a long text the beginning."""
    data = text.encode()
    return text if len(data) <= LONGEST_FOUND else data[:LONGEST_FOUND].decode(errors="ignore") + "…"


def _judge_line(line, report):
    parts = []
    for condition in line.any_of:
        found = report.value(condition.group)
        parts.append(Part(condition.group, condition.text(), _shown(found or ""),
                          compare(condition.comparison, found, condition.needed)))
    results = [part.result for part in parts]
    result = PASS if PASS in results else UNKNOWN if UNKNOWN in results else FAIL
    found = {part.group: part.found for part in parts}.values()  # each group's once
    told = "; ".join(text or ("–" if len(parts) > 1 else "") for text in found) if any(found) else ""
    return Line(line.label, ", or ".join(part.needed for part in parts), told, result, line.advice, line.recommended, parts)


def judge(requirements, report, request):
    lines = [_judge_line(line, report) for line in requirements.lines]
    results = {line.result for line in lines if not line.recommended}
    total = FAIL if FAIL in results else PASS if results == {PASS} else UNKNOWN
    return Verdict(requirements.title, request.item, request.schema, lines, total)


def _page(verdict):
    """The verdict as a page, in the style of the check's own page."""
    rows = "".join(
        f"<tr class=\"{line.result}\"><th scope=\"row\">{escape(line.label)}"
        + (" <span class=\"kind\">Recommended</span>" if line.recommended else "")
        + f"</th><td data-label=\"Needed\">{escape(line.needed)}</td><td data-label=\"Found\">{escape(line.found) or '–'}</td>"
        f"<td><span class=\"mark\">{MARKS[line.result]}</span>"
        + (f"<span class=\"advice\">{escape(line.advice)}</span>" if line.advice and line.result != PASS else "")
        + "</td></tr>\n" for line in verdict.lines)
    return (
        "<!DOCTYPE html>\n<html lang=\"en\"><head><meta charset=\"utf-8\">"
        "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">"
        f"<title>{escape(verdict.title)}</title>\n<style>{STYLE.read_text('utf-8')}</style></head>\n"
        f"<body><main><h1>{escape(verdict.title)}</h1>\n<p class=\"total {verdict.total}\">Result: {verdict.total}</p>\n"
        "<table><caption>What is needed, and what this machine has</caption>\n<thead><tr><th scope=\"col\">Requirement</th>"
        "<th scope=\"col\">Needed</th><th scope=\"col\">Found</th><th scope=\"col\">Result</th></tr></thead>\n"
        f"<tbody>\n{rows}</tbody></table></main></body></html>\n")


def _json(verdict):
    lines = [{"result": line.result, "label": line.label, "needed": line.needed, "found": line.found}
             | ({"advice": line.advice} if line.advice else {}) | ({"recommended": True} if line.recommended else {})
             | ({"any of": [{"result": part.result, "needed": part.needed, "found": part.found} for part in line.parts]}
                if len(line.parts) > 1 else {}) for line in verdict.lines]
    return json.dumps({"result": verdict.total, "item": verdict.item, "schema": verdict.schema, "title": verdict.title,
                       "requirements": lines}, ensure_ascii=False, separators=(",", ":"))


def render(verdict, message_format):
    """The content type and the text, in the format asked for: html, json, or xml for anything else."""
    if message_format.lower() == "html":
        return "text/html; charset=utf-8", _page(verdict)
    if message_format.lower() == "json":
        return "application/json", _json(verdict)
    lines = "".join(f"<requirement result=\"{line.result}\"><label>{escape(line.label)}</label>"
                    f"<needed>{escape(line.needed)}</needed><found>{escape(line.found)}</found>"
                    + (f"<advice>{escape(line.advice)}</advice>" if line.advice else "")
                    + ("<recommended/>" if line.recommended else "") + "</requirement>"
                    for line in verdict.lines)
    return "text/xml; charset=utf-8", (
        f"<analysis result=\"{verdict.total}\" item=\"{escape(verdict.item)}\" schema=\"{escape(verdict.schema)}\">"
        f"<title>{escape(verdict.title)}</title>{lines}</analysis>")
