"""The time stamp of everything in a package. It is fixed, so that two builds of the same source give the same bytes."""

import datetime

EPOCH = 1767225600  # 2026-01-01 00:00:00 UTC


def faked():
    """Runs a tool that writes the present time into its output, with the clock at the fixed time."""
    time = datetime.datetime.fromtimestamp(EPOCH, datetime.timezone.utc).strftime("%Y-%m-%d %H:%M:%S")
    return ["env", "TZ=UTC", "faketime", "-f", time]
