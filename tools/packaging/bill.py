"""The licence texts of what is linked into the DLL and the program, and a bill of materials (CycloneDX)."""

import datetime
import json
import subprocess
import uuid
from pathlib import Path

from stamp import EPOCH

# component, description, the Debian package that contains it, and the one that contains its copyright file
LINKED = [
    ("libstdc++ and libgcc", "GCC's runtime libraries", "g++-mingw-w64-x86-64-posix", "gcc-mingw-w64-base",
     "GPL-3.0-or-later WITH GCC-exception-3.1"),
    ("mingw-w64 runtime and winpthreads", "start-up code, import libraries, threads", "mingw-w64-x86-64-dev",
     "mingw-w64-common", "ZPL-2.1 AND MIT"),
    ("Boost headers", "header-only libraries", "libboost1.74-dev", "libboost1.74-dev", "BSL-1.0"),
    ("JSON for Modern C++", "header-only library, of the program", "nlohmann-json3-dev", "nlohmann-json3-dev", "MIT"),
    ("CLI11", "header-only library, of the program", "libcli11-dev", "libcli11-dev", "BSD-3-Clause"),
]


def _version(package):
    return subprocess.run(["dpkg-query", "-W", "-f", "${Version}", package], capture_output=True, check=True, text=True).stdout


def licences():
    """File names and texts."""
    texts = {}
    for name, _, _, carrier, _ in LINKED:
        path = Path("/usr/share/doc") / carrier / "copyright"
        texts["licences/" + name.replace(" ", "-").replace("+", "p") + ".txt"] = path.read_bytes()
    return texts


def bill(version, digest):
    """A CycloneDX document as text."""
    time = datetime.datetime.fromtimestamp(EPOCH, datetime.timezone.utc).strftime("%Y-%m-%dT%H:%M:%SZ")
    components = [{"type": "library", "name": name, "version": _version(package), "description": description,
                   "licenses": [{"expression": licence}],
                   "purl": f"pkg:deb/debian/{package.replace('+', '%2B')}@{_version(package).replace('+', '%2B')}"}
                  for name, description, package, _, licence in LINKED]
    document = {
        "bomFormat": "CycloneDX", "specVersion": "1.4", "version": 1,
        "serialNumber": f"urn:uuid:{uuid.uuid5(uuid.NAMESPACE_OID, digest)}",
        "metadata": {"timestamp": time, "component": {
            "type": "library", "name": "Detection", "version": version,
            "hashes": [{"alg": "SHA-256", "content": digest}]}},
        "components": components,
    }
    return json.dumps(document, indent=2) + "\n"
