#!/usr/bin/env python3
"""Tests several applications that read the lists of one service at the same time: with locks, and what goes wrong
without them. IPODKIT_LISTINGS is the number of listings that eight processes make together, IPODKIT_KILLS the number of
holders to kill.
"""
import argparse
import fcntl
import os
import re
import shutil
import signal
import struct
import subprocess
import sys
import tempfile
import time
import unittest

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path[:0] = [os.path.join(HERE, "..", "support"), os.path.join(HERE, "..", "ipodctl")]

from music_folder import write_track  # noqa: E402
from private_session import LIMIT, Bus, clear_shared_memory, enter_private_namespace, line_within, within  # noqa: E402

PROCESSES = 8
LISTINGS = int(os.environ.get("IPODKIT_LISTINGS", 160))
KILLS = int(os.environ.get("IPODKIT_KILLS", 5))
LONGEST = 2000  # milliseconds
# Seconds. While other tests run, a process may have to wait for a processor.
SOON = 0.05 if "IPODKIT_KILLS" in os.environ else 1
SEGMENT = "/dev/shm/ListVectorSharedMemory"
DATABASE_LIST = 0x40000000 + 1  # as documented in docs/sharing.md
BROWSE = 0x40000000 + 7
ALBUMS, SONGS = 8, 40


def write_music(folder):
    for number in range(ALBUMS * SONGS):
        write_track(os.path.join(folder, f"{number:03}.mp3"), f"song {number:03}", "artist",
                    f"album {number // SONGS}", "genre", number % SONGS + 1, 200)


def can_lock(byte):
    """Returns whether nobody holds a lock on that byte of the segment."""
    with open(SEGMENT, "r+b") as file:
        try:
            fcntl.fcntl(file, fcntl.F_OFD_SETLK, struct.pack("hhqqi4x", fcntl.F_WRLCK, os.SEEK_SET, byte, 1, 0))
        except BlockingIOError:
            return False
    return True


class Sharing(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.music = tempfile.TemporaryDirectory()
        cls.addClassCleanup(cls.music.cleanup)
        write_music(cls.music.name)

    def setUp(self):
        self.addCleanup(clear_shared_memory)
        self.bus = Bus()
        self.addCleanup(self.bus.stop)

    def serve(self, *faults):
        options = [word for fault in faults for word in ("--fault", fault)]
        service = subprocess.Popen([OPTIONS.simulator, "--no-cache", *options, self.music.name],
                                   stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, env=self.bus.environment)
        self.addCleanup(self.end, service)
        line_within(service.stdout, LIMIT)
        self.ctl("cd", "/Songs")
        return service

    @staticmethod
    def end(process):
        process.kill()
        process.wait()
        for stream in (process.stdin, process.stdout):
            if stream is not None:
                stream.close()

    def ctl(self, *words):
        return subprocess.run([OPTIONS.ipodctl, *words], check=True, capture_output=True, text=True,
                              timeout=LIMIT, env=self.bus.environment).stdout

    def lister(self, *words):
        process = subprocess.Popen([OPTIONS.lister, *map(str, words)], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                   text=True, env=self.bus.environment)
        self.addCleanup(self.end, process)
        return process

    def holder(self, what="hold"):
        process = self.lister(what)
        self.assertEqual(line_within(process.stdout, LIMIT).strip(), "held")
        return process

    def listed(self, what, listings):
        """Returns the sums of the figures that eight processes report."""
        processes = [self.lister(what, listings // PROCESSES, number) for number in range(PROCESSES)]
        sums = dict.fromkeys(("listings", "wrong", "busy", "failed", "longest"), 0)
        for process in processes:
            output, _ = process.communicate()
            for key, value in re.findall(r"(\w+) (\d+)", output):
                sums[key] = max(sums[key], int(value)) if key == "longest" else sums[key] + int(value)
        print(f"{what}: {sums}", flush=True)
        self.assertEqual(sums["listings"], listings // PROCESSES * PROCESSES)
        return sums

    def assert_right(self, sums):
        self.assertEqual((sums["wrong"], sums["busy"], sums["failed"]), (0, 0, 0))
        self.assertLess(sums["longest"], LONGEST)

    def test_applications_that_use_the_core_alone_read_wrong_names(self):
        self.serve("delay=5@GetCurDbListItems")
        self.assertGreater(self.listed("core", 160)["wrong"], 0)

    def test_pages_of_one_list_are_never_wrong(self):
        self.serve("delay=5@GetCurDbListItems")
        self.assert_right(self.listed("pages", LISTINGS // 2))

    def test_levels_are_never_wrong(self):
        self.serve("delay=2@GetCurDbListItems", "delay=2@EnterDbChildList", "delay=2@GetCurDbListItemsAmount")
        self.assert_right(self.listed("levels", LISTINGS - LISTINGS // 2))

    def assert_busy(self, process, holder, use):
        begin = time.monotonic()
        reported = line_within(process.stdout, LIMIT).strip()
        self.assertEqual(reported, f"Busy: process {holder.pid} (lister) {use}")
        self.assertLess(time.monotonic() - begin, LONGEST / 1000 + 1)

    @staticmethod
    def stop(process):
        process.send_signal(signal.SIGSTOP)
        os.waitid(os.P_PID, process.pid, os.WSTOPPED)

    def test_a_stopped_holder_makes_others_busy(self):
        self.serve()
        holder = self.holder()
        self.stop(holder)
        self.assert_busy(self.lister("hold"), holder, "browses the database")
        doctor = subprocess.run([OPTIONS.ipodctl, "doctor"], capture_output=True, text=True, timeout=LIMIT, check=False,
                                env=self.bus.environment).stdout
        self.assertIn(f"browse is held by process {holder.pid} (lister), which is stopped", doctor)
        holder.kill()
        self.holder()

    def test_a_stopped_reader_of_a_page_makes_others_busy(self):
        self.serve()
        self.ctl("sim", "fault", "delay=600000@GetCurDbListItems/1")
        reader = self.lister("page")
        self.assertTrue(within(LIMIT, lambda: not can_lock(DATABASE_LIST)))
        self.stop(reader)
        self.assert_busy(self.lister("page"), reader, "reads the list")
        reader.kill()
        # The reader may have been stopped before it sent its request.
        self.ctl("sim", "clear-faults")
        self.holder("page")

    def assert_change_waits_for(self, reader):
        self.assertTrue(within(LIMIT, lambda: not can_lock(DATABASE_LIST)))
        self.ctl("cd", "/Songs")
        output, _ = reader.communicate(timeout=LIMIT)
        self.assertEqual(reader.returncode, 0, output)
        return output

    def test_a_change_waits_for_reads_that_belong_together(self):
        self.serve()
        self.ctl("sim", "fault", "delay=300@GetCurDbListItems")
        self.assertRegex(self.assert_change_waits_for(self.lister("pages", 1, 0)), "wrong 0 busy 0 failed 0")
        process = subprocess.Popen([OPTIONS.ipodctl, "ls", "--names", "--count", "150"], stdin=subprocess.PIPE,
                                   stdout=subprocess.PIPE, text=True, env=self.bus.environment)
        self.addCleanup(self.end, process)
        self.assertEqual(len(self.assert_change_waits_for(process).splitlines()), 150)

    def test_a_lock_is_free_soon_after_its_holder_was_killed(self):
        self.serve()
        slowest = 0
        holder = self.holder()
        for _ in range(KILLS):
            waiting = self.lister("hold")
            self.assertFalse(line_within(waiting.stdout, 0.15))
            holder.kill()
            killed = time.monotonic()
            self.assertEqual(line_within(waiting.stdout, LIMIT).strip(), "held")
            slowest = max(slowest, time.monotonic() - killed)
            self.end(holder)
            holder = waiting
        print(f"killed {KILLS} holders, the next one waited at most {slowest * 1000:.1f} ms", flush=True)
        self.assertLess(slowest, SOON)

    def test_a_lock_on_a_replaced_segment_does_not_count(self):
        self.serve()
        first = self.holder()
        self.assertFalse(can_lock(BROWSE))
        shutil.copy(SEGMENT, SEGMENT + ".new")
        os.rename(SEGMENT + ".new", SEGMENT)
        self.assertTrue(can_lock(BROWSE))
        second = self.holder()
        self.assertFalse(can_lock(BROWSE))
        self.assert_busy(self.lister("hold"), second, "browses the database")
        self.assertIsNone(first.poll())


if __name__ == "__main__":
    parser = argparse.ArgumentParser()
    for name in ("simulator", "ipodctl", "lister"):
        parser.add_argument(f"--{name}", required=True)
    OPTIONS, rest = parser.parse_known_args()
    enter_private_namespace()
    sys.argv[1:] = rest
    unittest.main()
