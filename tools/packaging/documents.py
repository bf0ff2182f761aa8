"""The documents and examples of the archive. Links to files that the archive does not have become plain text."""

import os
import re
import subprocess

from registration import ROOT

INCLUDED = ("README.md", "CHANGELOG.md", "SECURITY.md", "docs", "examples")
# For those who change the code; they need a clone.
EXCLUDED = ("docs/architecture.md", "docs/releasing.md")
LINK = re.compile(r"\[([^\]]*)\]\(([^)#\s]*)(#[^)\s]*)?\)")


def _names():
    """The files' paths. From a working copy only tracked files, as others may be private notes."""
    if (ROOT / ".git").exists():
        listed = subprocess.run(["git", "ls-files", "-z", "--error-unmatch", *INCLUDED], cwd=ROOT, check=True,
                                stdout=subprocess.PIPE, text=True).stdout.rstrip("\0").split("\0")
    else:
        found = (path for name in INCLUDED for path in ((ROOT / name).rglob("*") if (ROOT / name).is_dir() else [ROOT / name]))
        listed = [str(path.relative_to(ROOT)) for path in found if path.is_file()]
    return {name for name in listed if name not in EXCLUDED}


def documents():
    """Their contents by path."""
    names = _names()

    def resolve(page):
        def link(match):
            target = os.path.normpath(os.path.join(os.path.dirname(page), match[2])) if match[2] else page
            return match[0] if ":" in match[2] or target in names else match[1]
        return link

    files = {}
    for name in names:
        content = (ROOT / name).read_bytes()
        files[name] = LINK.sub(resolve(name), content.decode()).encode() if name.endswith(".md") else content
    return files
