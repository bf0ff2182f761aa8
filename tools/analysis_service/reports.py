"""Reports as the control uploads them, kept on disk by session."""

import hashlib
from dataclasses import dataclass, field
from xml.etree import ElementTree

from errors import ServiceError

SESSION_GROUP = "71424"
LONGEST_TEXT = 1024  # bytes, of each that an analysis request has


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


def _parse_xml(body):
    text = body.decode("utf-8", "strict") if isinstance(body, bytes) else body
    if "<!" in text:
        raise ServiceError(400, "Declarations are not accepted.")
    return ElementTree.fromstring(text)


def _checked_xml(body):
    try:
        return _parse_xml(body)
    except (ElementTree.ParseError, UnicodeDecodeError) as error:
        raise ServiceError(400, f"The body is no XML: {error}") from error


def parse_report(body):
    root = _checked_xml(body)
    if root.tag != "groups":
        raise ServiceError(400, "The body is no report.")
    report = Report(body)
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
    root = _checked_xml(body)
    data = root.findtext("Data") if root.tag == "SystemInformation" else None
    if data is None:
        raise ServiceError(400, "The body is no system information.")
    return parse_report(data.encode("utf-8"))


def parse_analysis(body):
    root = _checked_xml(body)
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
