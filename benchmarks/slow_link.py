# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""Puts a network of a given length between a benchmark and its database server.

    slow_link.py FIGURES.json SERVER_PORT MILLISECONDS COMMAND ARGUMENT...
        runs the command, which prints figures, with a port that leads to that port of this machine in the place of
        each {port} in its arguments; a round trip takes so much longer. Prints the figures of the file and behind
        them those of the command, whose sites tell how far they are
"""

import json
import queue
import socket
import subprocess
import sys
import threading
import time

PIECE = 1 << 18
PIECES_UNDER_WAY = 64


class Slow_Link:
    """Listens on a port of its own, and hands on what it gets, both ways, after half of a round trip."""

    def __init__(self, server_port, round_trip):
        self.server_port = server_port
        self.delay = round_trip / 2
        self.listener = socket.create_server(("127.0.0.1", 0))
        self.port = self.listener.getsockname()[1]
        threading.Thread(target=self.accept, daemon=True).start()

    def accept(self):
        while True:
            try:
                client, _ = self.listener.accept()
            except OSError:
                return
            server = socket.create_connection(("127.0.0.1", self.server_port))
            for end in (client, server):
                end.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
            self.lead(client, server)
            self.lead(server, client)

    def lead(self, source, target):
        """Two threads: what comes while something waits to be handed on is under way at once, as in a network."""
        under_way = queue.Queue(PIECES_UNDER_WAY)
        threading.Thread(target=self.take, args=(source, under_way), daemon=True).start()
        threading.Thread(target=self.hand_on, args=(under_way, target), daemon=True).start()

    def take(self, source, under_way):
        data = True
        while data:
            try:
                data = source.recv(PIECE)
            except OSError:
                data = b""
            under_way.put((time.monotonic() + self.delay, data))

    def hand_on(self, under_way, target):
        while True:
            due, data = under_way.get()
            time.sleep(max(0, due - time.monotonic()))
            try:
                if data:
                    target.sendall(data)
                else:
                    target.shutdown(socket.SHUT_WR)
            except OSError:
                pass  # whoever is gone takes no more: the rest is lost
            if not data:
                return

    def close(self):
        self.listener.close()


def called(site, milliseconds):
    return f"{site}, {milliseconds:g} ms away"


def main(path, server_port, milliseconds, *command):
    with open(path, encoding="utf-8") as file:
        figures = json.load(file) or []
    link = Slow_Link(int(server_port), float(milliseconds) / 1000)
    run = subprocess.run([argument.replace("{port}", str(link.port)) for argument in command], check=True,
                         stdout=subprocess.PIPE, text=True)
    for figure in json.loads(run.stdout) or []:
        figures.append({**figure, "site": called(figure["site"], float(milliseconds))})
    print(json.dumps(figures))


if __name__ == "__main__":
    main(*sys.argv[1:])
