"""The administration's pages when its database is some milliseconds away."""

import asyncio
import contextlib
import tempfile
import threading
import unittest

from administration import AdminTest, requirements
from databases import KIND


class Relay:
    """Sits between a service and its PostgreSQL server: data arrive after a delay. Counts the round trips."""

    def __init__(self, test, server, delay):
        self.server, self.delay, self.journeys = f"{server.folder}/.s.PGSQL.5432", delay, 0
        self.folder = test.enterContext(tempfile.TemporaryDirectory(prefix="kel"))
        ready = threading.Event()
        thread = threading.Thread(target=lambda: asyncio.run(self.run(ready)))
        thread.start()
        ready.wait(20)
        test.addCleanup(thread.join)
        test.addCleanup(lambda: self.loop.call_soon_threadsafe(self.end.set))

    async def run(self, ready):
        self.loop, self.end = asyncio.get_running_loop(), asyncio.Event()
        async with await asyncio.start_unix_server(self.accept, f"{self.folder}/.s.PGSQL.5432"):
            ready.set()
            await self.end.wait()

    async def accept(self, reader, writer):
        far_reader, far_writer = await asyncio.open_unix_connection(self.server)
        with contextlib.suppress(asyncio.CancelledError):  # the end
            await asyncio.gather(self.forward(reader, far_writer, 1), self.forward(far_reader, writer, 0))

    async def forward(self, reader, writer, journeys):
        while data := await reader.read(1 << 20):
            self.journeys += journeys
            self.loop.call_later(self.delay, writer.write, data)
        self.loop.call_later(self.delay, writer.close)


@unittest.skipUnless(KIND == "postgresql", "an SQLite file is not far away")
class Distance(AdminTest):
    def test_pages_cover_all_sessions_with_few_statements(self):
        self.upload("s", v71063="8.0 GB", v71254="8")
        self.judged("s")
        for table, columns in (("report", 'session || i, referrer, "user", received, body'),
                               ("verdict", "r.id, requirement_set, verdict.referrer, judged, item, total, lines")):
            rows = "report, generate_series(1, 999) AS i" if table == "report" else "verdict, report AS r WHERE r.id > 1"
            names = columns.replace(" || i", "").replace("r.id", "report").replace("verdict.", "")
            self.database.run(f"INSERT INTO {table} ({names}) SELECT {columns} FROM {rows}")
        self.database.run("INSERT INTO draft SELECT 'product' || i, '{}', 1, 1, '' FROM generate_series(1, 100) AS i")
        cookie = self.log_in()
        form = {"token": self.token(cookie), "revision": 0, "do": "try", "text": requirements((71063, "M", "any"))}
        self.stop()
        relay = Relay(self, self.database.server, 0.002)
        self.database.setting = self.database.setting.replace(str(self.database.server.folder), relay.folder)
        self.start()
        self.page("/", cookie)  # the statements are prepared, each once a connection
        for name, ask, found, journeys in (
                ("figures", ("GET", "/products/demo", "", cookie), ["1,000</a> sessions in the last 30 days pass",
                                                                    "The charts are of these sessions."], 60),
                ("trial", ("POST", "/products/demo/requirements", form, cookie), ["Of the last 1,000 sessions 1,000 would"], 40),
                ("products", ("GET", "/", "", cookie), ["product100"], 30),
                ("reports", ("GET", "/api/v1/reports?count=1000", "", cookie), ['"session":"s999"'], 40)):
            for _ in range(5):  # a page has one second, which may be too short on a busy machine
                before = relay.journeys
                answer, text = self.visit(*ask)
                if all(sentence in text for sentence in found):
                    break
            self.assertEqual((answer.status, [sentence for sentence in found if sentence not in text]), (200, []), name)
            self.assertLess(relay.journeys - before, journeys, name)


if __name__ == "__main__":
    unittest.main()
