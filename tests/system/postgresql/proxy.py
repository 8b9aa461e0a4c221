# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""Stands between a client and PostgreSQL: counts round trips, and cuts the line."""

import os
import socket
import tempfile
import threading


class Proxy:
    """Listens on a socket of its own and hands everything on to the server's.

    A round trip is the client speaking after the server did: what a network would add its delay to. An
    answer is the server speaking after the client did.
    """

    def __init__(self, server_folder, server_port):
        self.target = os.path.join(server_folder, f".s.PGSQL.{server_port}")
        self.folder = tempfile.mkdtemp(prefix="vemora-")
        self.port = 5432
        self.round_trips = 0
        self.answers = 0
        self.withheld = None  # the number of the answer that no client gets
        self.on_withheld = None  # what happens then, before its connection ends
        self.delayed = None  # the number of the answer that waits until something has happened
        self.on_delayed = None
        self.lock = threading.Lock()
        self.lines = []
        self.listener = socket.socket(socket.AF_UNIX)
        self.path = os.path.join(self.folder, f".s.PGSQL.{self.port}")
        self.listener.bind(self.path)
        self.listener.listen(64)
        threading.Thread(target=self.accept, daemon=True).start()

    def accept(self):
        while True:
            try:
                client, _ = self.listener.accept()
            except OSError:
                return
            server = socket.socket(socket.AF_UNIX)
            try:
                server.connect(self.target)
            except OSError:
                client.close()
                continue
            line = Line(self, client, server)
            with self.lock:
                self.lines.append(line)
            line.start()

    def withhold(self, number, action):
        """Instead of handing on this answer, counted from now and from 1, acts and ends the connection."""
        with self.lock:
            self.answers, self.withheld, self.on_withheld = 0, number, action

    def delay(self, number, action):
        """Acts before handing on this answer, counted from now and from 1."""
        with self.lock:
            self.answers, self.delayed, self.on_delayed = 0, number, action

    def wait_for_clients(self):
        """Until all that clients that are gone have said is counted."""
        with self.lock:
            lines, self.lines = self.lines, []
        for line in lines:
            line.wait()

    def cut(self):
        """Ends every connection, as a network that fails does."""
        with self.lock:
            lines, self.lines = self.lines, []
        for line in lines:
            line.hang_up()

    def close(self):
        self.listener.close()
        self.cut()
        os.unlink(self.path)
        os.rmdir(self.folder)


class Line:
    """One connection."""

    def __init__(self, proxy, client, server):
        self.proxy = proxy
        self.client = client
        self.server = server
        self.server_spoke = True
        self.lock = threading.Lock()
        self.pumping = 2

    def start(self):
        self.pumps = [threading.Thread(target=self.pump, args=arguments, daemon=True)
                      for arguments in ((self.client, self.server, self.from_client),
                                        (self.server, self.client, self.from_server))]
        for pump in self.pumps:
            pump.start()

    def wait(self):
        """Until the client has hung up and all that it said is counted."""
        for pump in self.pumps:
            pump.join()

    def pump(self, source, target, note):
        try:
            while data := source.recv(1 << 20):
                if not note():
                    break
                target.sendall(data)
        except OSError:
            pass
        self.hang_up()
        self.close_behind_the_last()

    def from_client(self):
        """Whether to go on."""
        with self.proxy.lock:
            if self.server_spoke:
                self.server_spoke = False
                self.proxy.round_trips += 1
        return True

    def from_server(self):
        with self.proxy.lock:
            if self.server_spoke:
                return True
            self.server_spoke = True
            self.proxy.answers += 1
            withheld = self.proxy.answers == self.proxy.withheld
            delayed = self.proxy.answers == self.proxy.delayed
        if delayed:
            self.proxy.on_delayed()
        if withheld:
            self.proxy.on_withheld()
        return not withheld

    def hang_up(self):
        with self.lock:
            for end in (self.client, self.server):
                try:
                    end.shutdown(socket.SHUT_RDWR)
                except OSError:
                    pass

    def close_behind_the_last(self):
        """Not earlier: a number that is closed is given out again, and the other pump still uses it."""
        with self.lock:
            self.pumping -= 1
            if self.pumping == 0:
                self.client.close()
                self.server.close()
