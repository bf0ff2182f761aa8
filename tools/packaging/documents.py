"""The documents and examples of the archive. Links to files that the archive does not have become plain text."""

import os
import re

import sources
from registration import ROOT

INCLUDED = ("README.md", "CHANGELOG.md", "SECURITY.md", "docs", "examples")
# For those who change the code; they need a clone.
EXCLUDED = ("docs/architecture.md", "docs/releasing.md")
LINK = re.compile(r"\[([^\]]*)\]\(([^)#\s]*)(#[^)\s]*)?\)")


class BrokenLink(Exception):
    """A page has a link to something that is not in the sources."""


def linked(page, text, names):
    """A page's text with links only to files that are in the archive.

    @param names the paths of all files in the archive
    """
    def link(match):
        target = os.path.normpath(os.path.join(os.path.dirname(page), match[2])) if match[2] else page
        if ":" in match[2] or target in names:
            return match[0]
        if not sources.contain(target):
            raise BrokenLink(f"{page}: {match[0]}")
        return match[1]
    return LINK.sub(link, text)


def documents():
    """Their contents by path."""
    names = set(sources.files(*INCLUDED)).difference(EXCLUDED)
    contents = {name: (ROOT / name).read_bytes() for name in names}
    return {name: linked(name, content.decode(), names).encode() if name.endswith(".md") else content
            for name, content in contents.items()}
