# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""The power goes off during an apply: at every call that writes, cuts or syncs a file of the database, with what was
not synced by then there, gone, or there in part and in whatever order. The site is as before the pass or as
committed, as committed and stored where the tool had said that it is done, and the same apply, repeated, ends where
an undisturbed one ends.

What is synced stays, and a write changes no bytes but its own: on these SQLite relies. A sector of 512 bytes is
written whole or not at all.

    POWER_CUTS=100   how many draws of what is left a call (default 6)
    POWER_SEED=7     another draw of them
"""

import collections
import os
import random
import shutil
import struct
import tempfile
import unittest

from campaign import LIBRARY, TOOL, Campaign
from fault_server import Fault_Server
from remains import read_files

DRAWS = int(os.environ.get("POWER_CUTS", "6"))
SEED = int(os.environ.get("POWER_SEED", "1"))
SECTOR = 512

Event = collections.namedtuple("Event", "kind name offset size data")


def read_events(path):
    """The record, as far as it is about the database; its shared memory is gone with the power."""
    with open(path, "rb") as file:
        text = file.read()
    place, events = 0, []
    while place < len(text):
        kind, length = chr(text[place]), struct.unpack_from("=Q", text, place + 1)[0]
        place += 9
        name = text[place:place + length].decode("utf-8")
        offset, size = struct.unpack_from("=QQ", text, place + length)
        place += length + 16
        data = b""
        if kind == "W":
            data = text[place:place + size]
            place += size
        if kind == "O" or name.startswith("vemora.db") and not name.endswith(("-shm", ".lock")):
            events.append(Event(kind, name, offset, size, data))
    return events


def sectors_of(event):
    """The parts of a write that the disk does one by one."""
    end = event.offset + len(event.data)
    begin = event.offset
    while begin < end:
        stop = min(end, (begin // SECTOR + 1) * SECTOR)
        yield begin, event.data[begin - event.offset:stop - event.offset]
        begin = stop


class Disk:
    """Files as they are synced, and what was done to them since."""

    def __init__(self, files):
        self.synced = {name: bytearray(data) for name, data in files}
        self.since = collections.defaultdict(list)

    def do(self, event):
        if event.kind == "S":
            for done in self.since.pop(event.name, []):
                self.apply(self.synced, done, lambda: True)
        elif event.kind != "O":
            self.since[event.name].append(event)

    @staticmethod
    def apply(files, event, is_done):
        if event.kind == "U":
            if is_done():
                files.pop(event.name, None)
        elif event.kind == "T":
            if is_done():
                data = files.setdefault(event.name, bytearray())
                del data[event.size:]
                data.extend(bytes(event.size - len(data)))
        else:
            for offset, part in sectors_of(event):
                if is_done():
                    data = files.setdefault(event.name, bytearray())
                    data.extend(bytes(max(0, offset + len(part) - len(data))))
                    data[offset:offset + len(part)] = part

    def after_cut(self, is_done):
        files = {name: bytearray(data) for name, data in self.synced.items()}
        for events in self.since.values():
            for event in events:
                self.apply(files, event, is_done)
        return files

    def is_settled(self):
        return not any(self.since.values())


class Power_Cut_Test(unittest.TestCase):
    def setUp(self):
        self.campaign = Campaign()
        self.addCleanup(self.campaign.close)
        self.case = next(case for case in self.campaign.cases() if case.name == "apply, JSON")
        self.campaign.prepare(self.case)

    def record_of_an_apply(self):
        folder = tempfile.mkdtemp(dir=self.campaign.top)
        record = os.path.join(folder, "record")
        server = Fault_Server(TOOL, LIBRARY, record=record)
        self.addCleanup(server.close)
        self.campaign.refill(self.case.template)
        disk = Disk(read_files(self.campaign.work))
        self.assertEqual(server.run(self.case.arguments, self.campaign.work).status, 0)
        return read_events(record), disk

    def test_the_power_goes_off_at_every_call(self):
        events, disk = self.record_of_an_apply()
        kinds = collections.Counter(event.kind for event in events)
        self.assertGreater(kinds["W"], 10)
        self.assertGreater(kinds["S"], 2)
        self.assertGreater(kinds["O"], 0)
        draw = random.Random(SEED)
        phases = collections.Counter()
        said = False
        for number in range(len(events) + 1):
            wholes = [lambda: True, lambda: False]
            likely = [draw.random() for _ in range(0 if disk.is_settled() else DRAWS)]
            for is_done in wholes + [lambda p=p: draw.random() < p for p in likely]:
                with self.subTest(call=number, of=len(events)):
                    phases[self.check_what_is_left(disk.after_cut(is_done), said)] += 1
            if number < len(events):
                disk.do(events[number])
                said = said or events[number].kind == "O"
        print(f"{len(events)} calls {dict(kinds)}: {dict(phases)}")
        for phase in ("before", "committed", "stored"):
            self.assertGreater(phases[phase], 0)

    def test_it_would_be_noticed_if_nothing_were_synced(self):
        events, disk = self.record_of_an_apply()
        for event in events:
            if event.kind != "S":
                disk.do(event)
        with self.assertRaisesRegex(AssertionError, "it was said that it is done"):
            self.check_what_is_left(disk.after_cut(lambda: False), said=True)

    def check_what_is_left(self, files, said):
        self.campaign.refill(self.case.template)
        for name in os.listdir(self.campaign.work):
            if name.startswith("vemora.db"):
                os.remove(os.path.join(self.campaign.work, name))
        for name, data in files.items():
            with open(os.path.join(self.campaign.work, name), "wb") as file:
                file.write(data)
        left = self.campaign.onlooker.look(self.campaign.work)
        phase = self.phase_of(left)
        if said:
            self.assertEqual(phase, "stored", "it was said that it is done")
        self.assertEqual(self.campaign.repeat(self.case), [])
        return phase

    def phase_of(self, left):
        self.assertEqual(left.faults, ())
        before, after = self.case.before, self.case.after
        if left.records == before.records:
            self.assertEqual((left.documents, left.pending), (before.documents, frozenset()))
            return "before"
        self.assertEqual(left.records, after.records)
        if left.documents == before.documents:
            self.assertEqual(left.pending, frozenset(self.case.reconciled))
            return "committed"
        self.assertEqual((left.documents, left.pending), (after.documents, frozenset()))
        return "stored"


if __name__ == "__main__":
    unittest.main()
