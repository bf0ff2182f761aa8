"""The notices of what is linked into the DLL and the program, and a bill of materials (CycloneDX)."""

import datetime
import json
import re
import subprocess
import uuid
from dataclasses import dataclass
from pathlib import Path

from stamp import EPOCH


@dataclass(frozen=True)
class Linked:
    """A library that is linked in, or compiled into, what we build."""

    name: str
    description: str
    package: str  # the Debian package that contains it
    licence: str
    notice: str = ""  # what has to be said, where a notice of the library itself is not needed
    copyright: str = ""  # otherwise the package with its copyright file,
    files: tuple[str, ...] = ()  # and the beginnings of the paths there which are linked in


LINKED = (
    Linked("libstdc++ and libgcc", "GCC's runtime libraries", "g++-mingw-w64-x86-64-posix",
           "GPL-3.0-or-later WITH GCC-exception-3.1",
           notice="Under the GNU General Public License, version 3 or later, with the GCC Runtime Library Exception 3.1\n"
                  "(https://www.gnu.org/licenses/gcc-exception-3.1.html), which permits to pass on programs that are\n"
                  "compiled with GCC and linked with these libraries under terms of one's own choice."),
    Linked("mingw-w64 runtime and winpthreads", "start-up code, import libraries, threads", "mingw-w64-x86-64-dev",
           "ZPL-2.1 AND MIT", copyright="mingw-w64-common",
           files=("*", "mingw-w64-crt/gdtoa/", "mingw-w64-crt/math/s_erf", "mingw-w64-libraries/winpthreads/*",
                  "mingw-w64-libraries/winpthreads/include/")),
    Linked("Boost headers", "header-only libraries", "libboost1.74-dev", "BSL-1.0",
           notice="Under the Boost Software License 1.0 (https://www.boost.org/LICENSE_1_0.txt), which asks for no notice\n"
                  "where only machine-executable code is passed on."),
    Linked("JSON for Modern C++", "header-only library, of the program", "nlohmann-json3-dev", "MIT",
           copyright="nlohmann-json3-dev", files=("*", "include/")),
    Linked("CLI11", "header-only library, of the program", "libcli11-dev", "BSD-3-Clause", copyright="libcli11-dev",
           files=("*",)),
)


def _version(package):
    return subprocess.run(["dpkg-query", "-W", "-f", "${Version}", package], capture_output=True, check=True, text=True).stdout


def _notice(linked):
    """The copyright lines and the licences of the files that are linked in, from the package's copyright file."""
    if linked.notice:
        return linked.notice
    text = (Path("/usr/share/doc") / linked.copyright / "copyright").read_text("utf-8")
    fields = [dict(re.findall(r"^(\w+): *(.*(?:\n[ \t].*)*)", stanza, re.MULTILINE))
              for stanza in re.split(r"\n\s*\n", text)]
    licences = {}  # by the first line of the field, which names it
    for stanza in fields:
        name, _, body = stanza.get("License", "").partition("\n")
        if body:
            licences.setdefault(name, re.sub(r"^ \.?", "", body, flags=re.MULTILINE))
    holders = {}
    for stanza in fields:
        if any(path.startswith(begin) if begin != "*" else path == "*" for path in stanza.get("Files", "").split()
               for begin in linked.files):
            name = stanza["License"].partition("\n")[0]
            lines = holders.setdefault(name, [])
            lines += [line.strip() for line in stanza["Copyright"].splitlines() if line.strip() not in lines]
    return "\n\n".join("\n".join(f"Copyright {line}" for line in lines) + "\n\n" + licences[name].rstrip()
                       for name, lines in holders.items())


def notices():
    """The text of all notices that have to accompany the binaries."""
    parts = ["Detection.dll, kel.exe and check.exe contain parts of these libraries.\n"]
    for linked in LINKED:
        title = f"{linked.name} {_version(linked.package)} ({linked.licence})"
        parts.append(f"{title}\n{'=' * len(title)}\n\n{_notice(linked)}\n")
    return "\n".join(parts)


def bill(version, digest):
    """A CycloneDX document as text."""
    time = datetime.datetime.fromtimestamp(EPOCH, datetime.timezone.utc).strftime("%Y-%m-%dT%H:%M:%SZ")
    components = []
    for linked in LINKED:
        found = _version(linked.package)
        components.append({
            "type": "library", "name": linked.name, "version": found, "description": linked.description,
            "licenses": [{"expression": linked.licence}],
            "purl": f"pkg:deb/debian/{linked.package.replace('+', '%2B')}@{found.replace('+', '%2B')}"})
    document = {
        "bomFormat": "CycloneDX", "specVersion": "1.4", "version": 1,
        "serialNumber": f"urn:uuid:{uuid.uuid5(uuid.NAMESPACE_OID, digest)}",
        "metadata": {"timestamp": time, "component": {
            "type": "library", "name": "Detection", "version": version,
            "hashes": [{"alg": "SHA-256", "content": digest}]}},
        "components": components,
    }
    return json.dumps(document, indent=2) + "\n"
