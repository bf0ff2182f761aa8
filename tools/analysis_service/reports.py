"""Reports as the control uploads them, kept on disk by session."""

import hashlib
import re
import sys
from dataclasses import dataclass, field
from xml.etree import ElementTree

from errors import ServiceError

SESSION_GROUP = "71424"
LONGEST_TEXT = 1024  # bytes, of each that an analysis request has
FORBIDDEN = re.compile("[\0-\x08\x0b\x0c\x0e-\x1f\ud800-\udfff\ufffe\uffff]")  # characters, by XML 1.0
REFERENCE = re.compile("&#(?:x([0-9A-Fa-f]{1,28})|([0-9]{1,29}));")


@dataclass
class Report:
    source: bytes
    values: dict = field(default_factory=dict)  # (group id, index) -> text

    def value(self, group):
        return self.values.get((str(group), 0))


@dataclass
class AnalysisRequest:
    session: str
    item: str
    user: str
    format: str
    schema: str


def _character(match):
    number = int(match[1], 16) if match[1] else int(match[2])
    return chr(number) if number <= sys.maxunicode else ""


def _clean(body):
    """The text, with U+FFFD for what XML does not allow: texts of firmware have control characters in them."""
    text = FORBIDDEN.sub("\ufffd", body if isinstance(body, str) else body.decode("utf-8", "surrogatepass"))
    return REFERENCE.sub(lambda match: "\ufffd" if FORBIDDEN.match(_character(match)) else match[0], text)


def _read_xml(body):
    """The text and its root element."""
    try:
        text = _clean(body)
        if "<!" in text:
            raise ServiceError(400, "Declarations are not accepted.")
        return text, ElementTree.fromstring(text)
    except (ElementTree.ParseError, UnicodeDecodeError) as error:
        raise ServiceError(400, f"The body is not well-formed XML: {error}") from error


def parse_report(body):
    text, root = _read_xml(body)
    if root.tag != "groups":
        raise ServiceError(400, "The body is no report.")
    report = Report(text.encode())
    for group in root.iter("group"):
        index = group.get("index", "0")
        try:
            key = (group.get("id", ""), int(index))
        except ValueError as error:
            raise ServiceError(400, f"An index is no number: {index!r}") from error
        report.values[key] = group.findtext("value") or ""
    if not report.value(SESSION_GROUP):
        raise ServiceError(400, "The report names no session.")
    return report


def parse_system_information(body):
    _, root = _read_xml(body)
    data = root.findtext("Data") if root.tag == "SystemInformation" else None
    if data is None:
        raise ServiceError(400, "The body is no system information.")
    return parse_report(data)


def parse_analysis(body):
    _, root = _read_xml(body)
    if root.tag != "System":
        raise ServiceError(400, "The body is no analysis request.")
    texts = [root.findtext(name) or "" for name in ("SessionID", "ItemID", "UserID", "Format", "Schema")]
    if any(len(text.encode()) > LONGEST_TEXT for text in texts):
        raise ServiceError(400, "A text of the request is too long.")
    return AnalysisRequest(*texts)


class ReportStore:
    """One file a session; the name is a digest, so that no session id can name a path."""

    def __init__(self, folder):
        self.folder = folder
        folder.mkdir(parents=True, exist_ok=True)

    def path(self, session):
        return self.folder / (hashlib.sha256(session.encode("utf-8", "surrogatepass")).hexdigest() + ".xml")

    def keep(self, report):
        session = report.value(SESSION_GROUP)
        self.path(session).write_bytes(report.source)
        return session

    def find(self, session):
        path = self.path(session)
        if not path.exists():
            raise ServiceError(404, f"No report of session {session!r} was uploaded.")
        return parse_report(path.read_bytes())
