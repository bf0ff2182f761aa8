"""The time stamp of everything in a package. It is fixed, so that two builds of the same source give the same bytes."""

import datetime
from zipfile import ZIP_DEFLATED, ZipFile, ZipInfo

EPOCH = 1767225600  # 2026-01-01 00:00:00 UTC


def faked():
    """Runs a tool that writes the present time into its output, with the clock at the fixed time."""
    time = datetime.datetime.fromtimestamp(EPOCH, datetime.timezone.utc).strftime("%Y-%m-%d %H:%M:%S")
    return ["env", "TZ=UTC", "faketime", "-f", time]


def write_zip(target, files):
    """Writes an archive of files, given as their contents by path."""
    date = datetime.datetime.fromtimestamp(EPOCH, datetime.timezone.utc).timetuple()[:6]
    with ZipFile(target, "w", ZIP_DEFLATED) as zipped:
        for name in sorted(files):
            entry = ZipInfo(name, date)
            entry.compress_type = ZIP_DEFLATED
            entry.external_attr = 0o644 << 16
            zipped.writestr(entry, files[name])
