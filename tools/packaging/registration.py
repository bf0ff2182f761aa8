"""The keys that registering the DLL writes, as rows for an installer: made from the registration script and the type
library's source, so that the installer and the registration cannot differ."""

import re
from dataclasses import dataclass
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
SCRIPT = ROOT / "control" / "dll" / "Detection.rgs"
SERVER_SCRIPT = ROOT / "program" / "embedding" / "LocalServer.rgs"
NARROW = "Wow6432Node\\"  # where the classes of 32-bit programs are
MISC_STATUS = "1024"  # invisible at run time
AUTOMATION_MARSHALLER = "{00020424-0000-0000-C000-000000000046}"


@dataclass(frozen=True)
class Row:
    """A value below the classes root; without a name the default value, without a text an empty key."""

    key: str
    name: str | None
    text: str | None


class ScriptError(Exception):
    """The registration script has a form that this module does not know."""


def _tokens(script):
    for match in re.finditer(r"'((?:[^']|'')*)'|(\S+)", script):
        yield (match[1].replace("''", "'"), True) if match[1] is not None else (match[2], False)


def script_rows(script, parameters):
    """The rows of a registration script, its %NAME% parameters replaced."""
    tokens = list(_tokens(script))
    position = 0
    rows = []

    def accept(word):
        nonlocal position
        if position < len(tokens) and tokens[position] == (word, False):
            position += 1
            return True
        return False

    def take():
        nonlocal position
        if position >= len(tokens):
            raise ScriptError("The script ends too early.")
        position += 1
        return tokens[position - 1][0]

    def data():
        if not accept("s"):
            raise ScriptError(f"A text is expected before {take()!r}.")
        return re.sub(r"%(\w+)%", lambda match: parameters[match[1]], take())

    def body(parent):
        while not accept("}"):
            if accept("val"):
                name = take()
                if not accept("="):
                    raise ScriptError(f"The value {name!r} has no text.")
                rows.append(Row(parent, name, data()))
                continue
            isKept = accept("NoRemove")
            accept("ForceRemove")
            key = "\\".join(filter(None, (parent, take())))
            place = len(rows)
            if accept("="):
                rows.append(Row(key, None, data()))
            if accept("{"):
                body(key)
            if len(rows) == place and not isKept:
                rows.append(Row(key, None, None))

    if not accept("HKCR") or not accept("{"):
        raise ScriptError("The script does not begin with HKCR.")
    body("")
    return rows


def type_library_rows(source, module, folder):
    """The keys that the system writes for the type library that an IDL source describes, and for its dual interface."""
    def find(pattern):
        return re.search(pattern, source, re.DOTALL)[1]

    interface = find(r"uuid\(([-0-9A-F]+)\)[^\]]*\]\s*interface")
    name = find(r"interface (\w+) :")
    attributes = find(r"\[([^\[\]]*)\]\s*library")
    library = re.search(r"uuid\(([-0-9A-F]+)\)", attributes)[1]
    version = re.search(r"version\(([\d.]+)\)", attributes)[1]
    locale = re.search(r"lcid\(0x(\w+)\)", attributes)[1]
    title = re.search(r'helpstring\("([^"]*)"\)', attributes)[1]
    key = f"TypeLib\\{{{library}}}\\{version}"
    rows = [Row(key, None, title), Row(f"{key}\\{locale}\\win64", None, module), Row(f"{key}\\FLAGS", None, "8"),
            Row(f"{key}\\HELPDIR", None, folder)]
    return rows, [Row(f"Interface\\{{{interface}}}", None, name),
                  Row(f"Interface\\{{{interface}}}\\ProxyStubClsid", None, AUTOMATION_MARSHALLER),
                  Row(f"Interface\\{{{interface}}}\\ProxyStubClsid32", None, AUTOMATION_MARSHALLER),
                  Row(f"Interface\\{{{interface}}}\\TypeLib", None, f"{{{library}}}"),
                  Row(f"Interface\\{{{interface}}}\\TypeLib", "Version", version)]


def class_id():
    script = SCRIPT.read_text("ascii")
    return re.search(r"CLSID = s '(\{[-0-9A-F]+\})'", script)[1]


def rows(module, folder):
    """All rows for a DLL at a path: those for 64-bit programs, and the interface's, which 32-bit programs need as well."""
    script = SCRIPT.read_text("ascii")
    source = (ROOT / "control" / "Detection.idl").read_text("ascii")
    library, interface = type_library_rows(source, module, folder)
    parameters = {"MODULE": module, "APPID": class_id(), "OLEMISC": MISC_STATUS}
    return script_rows(script, parameters) + library + interface, interface


def server_rows(module):
    """The rows of the local server in a program at a path, besides those above: for 64-bit and for 32-bit programs."""
    found = script_rows(SERVER_SCRIPT.read_text("ascii"), {"MODULE": module, "APPID": class_id()})
    control, _ = rows("", "")
    wide = [row for row in found if not row.key.startswith(NARROW) and row not in control]
    return wide, [Row(row.key.removeprefix(NARROW), row.name, row.text) for row in found if row.key.startswith(NARROW)]
