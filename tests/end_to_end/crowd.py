"""Concurrent requests through the proxy, and a service behind it that answers only once it has them all.
Prints whether all were answered. They are as many as the proxy's example is for, or as this machine's limit of
descriptors allows, since the proxy needs two for each."""

import collections
import os
import resource
import signal
import socket

MAX_SECONDS = 100
LIMIT = resource.getrlimit(resource.RLIMIT_NOFILE)[1]
COUNT = min(10_000, (LIMIT - 200) // 2)
FROM_EACH_ADDRESS = 200  # what the example allows
REQUEST = b"GET / HTTP/1.1\r\nHost: analysis.keldane.example\r\n\r\n"
ANSWER = b"HTTP/1.1 200 OK\r\nContent-Length: 0\r\nConnection: close\r\n\r\n"


def serve(listener):
    held = [listener.accept()[0] for _ in range(COUNT)]
    for connection in held:
        connection.recv(65536)
        connection.sendall(ANSWER)


def connect(number):
    source = f"127.0.1.{1 + number // FROM_EACH_ADDRESS}"
    connection = socket.create_connection(("127.0.0.1", 80), source_address=(source, 0))
    connection.sendall(REQUEST)
    return connection


def status(connection):
    try:
        return connection.recv(65536).decode("ascii").partition("\r\n")[0] or "closed"
    except OSError as error:
        return str(error)


signal.alarm(MAX_SECONDS)
resource.setrlimit(resource.RLIMIT_NOFILE, (LIMIT, LIMIT))
listener = socket.create_server(("127.0.0.1", 8080), backlog=4096)
if (service := os.fork()) == 0:
    signal.alarm(MAX_SECONDS)  # a child has none
    serve(listener)
    os._exit(0)
answers = collections.Counter(map(status, [connect(number) for number in range(COUNT)]))
os.kill(service, signal.SIGKILL)
print("all answered" if answers == {"HTTP/1.1 200 OK": COUNT} else dict(answers))
