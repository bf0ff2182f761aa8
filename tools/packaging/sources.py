"""The files of the sources. In a working copy only tracked ones, as others may be private notes."""

import functools
import subprocess

from registration import ROOT


def _listed(*names):
    """What Git lists of files or folders; nothing when one of them is not tracked."""
    return subprocess.run(["git", "--literal-pathspecs", "ls-files", "-z", "--error-unmatch", "--", *names], cwd=ROOT,
                          check=False, capture_output=True, text=True).stdout.split("\0")[:-1]


def files(*names):
    """The paths of the files that the names of files and folders stand for."""
    if (ROOT / ".git").exists():
        found = _listed(*names)
    else:
        paths = (path for name in names for path in ((ROOT / name).rglob("*") if (ROOT / name).is_dir() else [ROOT / name]))
        found = [path.relative_to(ROOT).as_posix() for path in paths if path.is_file()]
    if not found:
        raise FileNotFoundError(f"{', '.join(names)}: not all are in the sources.")
    return found


@functools.cache
def contain(name):
    """Whether a file or folder is in the sources."""
    return bool(_listed(name)) if (ROOT / ".git").exists() else (ROOT / name).exists()
