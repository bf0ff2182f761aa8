"""Visitors that request the test file from the proxy and do not read it. Prints the proxy's memory for each of them."""

import re
import socket
import subprocess
import time
from pathlib import Path

COUNT = 100
REQUEST = b"GET /global/tests/test_2.bin HTTP/1.1\r\nHost: content.keldane.example\r\n\r\n"


def ask():
    client = socket.socket()
    client.setsockopt(socket.SOL_SOCKET, socket.SO_RCVBUF, 4096)
    client.connect(("127.0.0.1", 80))
    client.sendall(REQUEST)
    return client


def memory():
    """The memory of the proxy's only worker, in KB."""
    worker = subprocess.run(["pgrep", "-P", Path("/run/nginx.pid").read_text().strip()], capture_output=True, text=True).stdout
    return int(re.search(r"VmRSS:\s*(\d+)", Path(f"/proc/{worker.strip()}/status").read_text())[1])


before = memory()
clients = [ask() for _ in range(COUNT)]
sizes = [memory()]
while len(sizes) < 20 or max(sizes[-20:]) > min(sizes[-20:]):  # until it takes no more
    time.sleep(0.05)
    sizes.append(memory())
each = (sizes[-1] - before) / COUNT
print("less than 256 KB each" if 16 < each < 256 else f"{each:.0f} KB each")
