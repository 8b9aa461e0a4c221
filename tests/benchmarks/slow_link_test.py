# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""What the link between a benchmark and its server does to what goes over it."""

import json
import os
import socket
import subprocess
import sys
import tempfile
import threading
import time
import unittest

ROOT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..")
SCRIPT = os.path.join(ROOT, "benchmarks", "slow_link.py")
sys.path.insert(0, os.path.dirname(SCRIPT))

import slow_link  # noqa: E402

ROUND_TRIP = 0.05

# What the command says: what came back over the link.
COMMAND = """
import json, socket, sys
with socket.create_connection(("127.0.0.1", int(sys.argv[1].removeprefix("port=")))) as line:
    line.sendall(b"10 links")
    print(json.dumps([{"site": line.recv(100).decode(), "links": 10}]))
"""


class Slow_Link(unittest.TestCase):

    def setUp(self):
        self.server = socket.create_server(("127.0.0.1", 0))
        self.addCleanup(self.server.close)
        threading.Thread(target=self.echo, daemon=True).start()
        self.port = self.server.getsockname()[1]

    def echo(self):
        """Sends back all that it gets, until the other side says that there is no more."""
        while True:
            try:
                line, _ = self.server.accept()
            except OSError:
                return
            with line:
                while data := line.recv(1 << 16):
                    line.sendall(data)

    def connected(self, round_trip):
        link = slow_link.Slow_Link(self.port, round_trip)
        self.addCleanup(link.close)
        line = socket.create_connection(("127.0.0.1", link.port))
        self.addCleanup(line.close)
        return line

    def test_changes_nothing_of_what_goes_over_it(self):
        line = self.connected(0.001)
        sent = os.urandom(5 << 20)
        threading.Thread(target=lambda: (line.sendall(sent), line.shutdown(socket.SHUT_WR)), daemon=True).start()
        received = bytearray()
        while data := line.recv(1 << 16):
            received += data
        self.assertEqual(bytes(received), sent)

    def test_delays_each_round_trip(self):
        line = self.connected(ROUND_TRIP)
        begun = time.monotonic()
        for _ in range(3):
            line.sendall(b"?")
            self.assertEqual(line.recv(1), b"?")
        self.assertGreaterEqual(time.monotonic() - begun, 3 * ROUND_TRIP)

    def test_figures_of_the_command_follow_those_of_the_file_and_tell_how_far_their_sites_are(self):
        with tempfile.NamedTemporaryFile("w", suffix=".json") as before:
            before.write('[{"site": "10 links", "links": 11}]')
            before.flush()
            printed = subprocess.run(
                [sys.executable, "-B", SCRIPT, before.name, str(self.port), "1", sys.executable, "-c", COMMAND,
                 "port={port}"], check=True, stdout=subprocess.PIPE).stdout
        self.assertEqual(json.loads(printed), [{"site": "10 links", "links": 11},
                                               {"site": "10 links, 1 ms away", "links": 10}])


if __name__ == "__main__":
    unittest.main()
