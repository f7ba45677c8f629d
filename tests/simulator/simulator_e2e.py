#!/usr/bin/env python3
"""Runs the simulator as a program, with a private bus, shared memory, and cache."""
import argparse
import functools
import json
import os
import pty
import re
import select
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest

TESTS = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..")
sys.path[:0] = [os.path.join(TESTS, "ipodctl"), os.path.join(TESTS, "support")]

from private_session import (LIMIT, Bus, OnAPrivateBus, clear_shared_memory, enter_private_namespace,  # noqa: E402
                             line_within, needs_private_mount, within)
from schema_check import check  # noqa: E402


@functools.cache
def samples():
    """Created once: encoding takes half a minute in an emulator."""
    folder = tempfile.TemporaryDirectory()
    subprocess.run([OPTIONS.samples, f"{folder.name}/music"], check=True, stdout=subprocess.DEVNULL)
    return folder


class OnABus(OnAPrivateBus):
    def setUp(self):
        super().setUp()
        self.bus.environment.update(XDG_CACHE_HOME=f"{self.folder}/cache", LC_ALL="C.UTF-8")

    def begin(self, *words):
        """Starts a simulator without waiting until it is ready."""
        return self.launch(OPTIONS.simulator, *words, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)

    def start(self, *words, stderr=subprocess.PIPE, **options):
        return self.launch_simulator(OPTIONS.simulator, *words, stderr=stderr, **options)

    def end(self, process):
        """Ends a simulator, and returns what it wrote to standard error."""
        process.terminate()
        return process.communicate(timeout=LIMIT)[1]

    def refusal(self, *words):
        done = self.complete(OPTIONS.simulator, *words)
        self.assertNotEqual(done.returncode, 0)
        self.assertEqual(done.stdout, "")
        self.assertRegex(done.stderr, r"^[^\n]+\n(hint: [^\n]+\n)?$")
        return done.stderr

    def gdbus(self, name, path, method, *arguments):
        return self.complete("gdbus", "call", "--session", "--timeout", "10", "--dest", name, "--object-path", path,
                             "--method", method, *arguments)

    def ask(self, method, *arguments):
        name = "com.zarn.linux.ipod"
        return self.gdbus(name, "/com/zarn/linux/ipod", f"{name}.{method}", *arguments).stdout.strip()

    def control(self, method, *arguments):
        name = "com.zarn.linux.ipod.Simulator"
        return self.gdbus(name, "/com/zarn/linux/ipod/simulator", f"{name}.{method}", *arguments)

    def owner(self):
        """Returns the unique name of the service, or an empty text."""
        return self.gdbus("org.freedesktop.DBus", "/", "org.freedesktop.DBus.GetNameOwner", "com.zarn.linux.ipod").stdout

    def do(self, event, value=None):
        return self.control("Do", json.dumps({"event": event} | ({} if value is None else {"value": value})))

    def sample_music(self):
        """Creates a folder for the test."""
        return shutil.copytree(f"{samples().name}/music", os.path.join(self.folder, "music"))

    def write(self, name, text):
        path = os.path.join(self.folder, name)
        with open(path, "w", encoding="utf-8") as file:
            file.write(text)
        return path


class Program(OnABus):
    def test_exits_on_signals_and_releases_its_name(self):
        for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
            with self.subTest(number):
                process = self.start()
                self.assertTrue(self.owner())
                process.send_signal(number)
                self.assertEqual(process.wait(timeout=LIMIT), 0)
                self.assertFalse(self.owner())
        self.start()
        self.assertEqual(self.ask("GetPlayStatus"), "(0,)", "the remaining segments are reused")

    def test_exits_while_starting(self):
        many = os.path.join(self.folder, "many")
        subprocess.run([OPTIONS.samples, "--count", "3000", many], check=True, stdout=subprocess.DEVNULL)
        for after in (0.0, 0.01, 0.05, 0.1, 0.2):
            with self.subTest(after):
                process = self.begin("--no-cache", many)
                time.sleep(after)
                process.send_signal(signal.SIGTERM)
                self.assertIn(process.wait(timeout=LIMIT), (0, -signal.SIGTERM))
                self.assertFalse(self.owner())

    def huge_files(self, count):
        """Creates a folder with huge files that contain no audio."""
        folder = os.path.join(self.folder, "huge")
        os.mkdir(folder)
        for number in range(count):
            with open(os.path.join(folder, f"{number}.mp3"), "wb") as file:
                file.truncate(3 << 30)
        with open(os.path.join(folder, "list.m3u"), "wb") as file:
            file.truncate(3 << 30)
        return folder

    def test_does_not_read_huge_files_completely(self):
        process = self.begin("--no-cache", self.huge_files(1))
        self.assertIn("ready: 0 songs", line_within(process.stdout, LIMIT))
        self.assertIn("list.m3u: larger than 16 MiB\n", self.end(process))

    def test_exits_while_reading_a_large_file(self):
        process = self.begin("--no-cache", self.huge_files(200))
        self.assertTrue(within(LIMIT, self.owner))
        time.sleep(0.3)
        begin = time.monotonic()
        process.send_signal(signal.SIGTERM)
        self.assertEqual(process.wait(timeout=LIMIT), 0)
        self.assertLess(time.monotonic() - begin, 5)

    def test_warns_of_a_simulator_on_another_bus(self):
        first = self.start()
        own, self.bus = self.bus, Bus()
        self.addCleanup(self.bus.stop)
        second = self.start()
        self.bus = own
        for process, warned in ((second, True), (first, False)):
            err = self.end(process)
            self.assertEqual("warning: another simulator on another bus uses the same shared memory" in err, warned, err)
        self.assertEqual(self.end(self.start()), "", "the first one's claim is released")

    def test_a_second_one_reports_the_owner_of_the_name(self):
        first = self.start()
        self.assertEqual(self.refusal(), "ipod-simulator: another simulator or service is running on this bus: "
                                         f"process {first.pid} owns com.zarn.linux.ipod.Simulator\n")
        self.assertEqual(self.ask("GetPlayStatus"), "(0,)")

    def test_keeps_running_when_its_output_is_closed(self):
        process = self.start("--verbose")
        process.stdout.close()
        process.stderr.close()
        self.assertEqual(self.ask("GetPlayStatus"), "(0,)")
        self.assertEqual(self.ask("GetPlayStatus"), "(0,)")
        process.send_signal(signal.SIGINT)
        self.assertEqual(process.wait(timeout=LIMIT), 0)

    def test_logs_requests_and_replies(self):
        process = self.start("--verbose")
        self.ask("Seek", "5")
        self.assertEqual(line_within(process.stderr, LIMIT), "Seek (5,) -> ()\n")

    def test_reports_unusable_arguments(self):
        self.assertIn("music folder /nonexistent: No such file or directory", self.refusal("/nonexistent"))
        self.assertIn("/nonexistent: No such file or directory", self.refusal("--scenario", "/nonexistent"))
        self.assertIn(f"{self.folder}: Is a directory", self.refusal("--scenario", self.folder))
        self.bus.environment["DBUS_SESSION_BUS_ADDRESS"] = "unix:path=/nonexistent"
        self.assertIn("no session bus", self.refusal())

    def test_a_full_output_is_reported(self):
        for program, word in ((OPTIONS.simulator, "--print-schema"), (OPTIONS.simulator, "--version"),
                              (OPTIONS.samples, "--help")):
            with self.subTest([program, word]), open("/dev/full", "w", encoding="utf-8") as full:
                done = subprocess.run([program, word], stdout=full, stderr=subprocess.PIPE, text=True, timeout=LIMIT)
                self.assertEqual((done.returncode, done.stderr), (1, f"{os.path.basename(program)}: cannot write to "
                                                                  "standard output: No space left on device\n"))

    def test_usage_errors_are_one_line_and_exit_with_2(self):
        for program in (OPTIONS.simulator, OPTIONS.samples):
            name = os.path.basename(program)
            for words in (["a", "--wrong"], ["a", "--speed" if name == "ipod-simulator" else "--count", "x"], ["a", "b"]):
                with self.subTest([name, *words]):
                    done = self.complete(program, *words)
                    self.assertEqual((done.returncode, done.stdout), (2, ""))
                    self.assertRegex(done.stderr, rf"^{name}: .*{words[-1]}.*\nhint: try '{name} --help'\n$")

    def test_samples_need_a_folder_that_can_be_created(self):
        file = self.write("file", "")
        self.assertEqual(self.complete(OPTIONS.samples).stderr,
                         "ipod-make-samples: missing argument: folder\nhint: try 'ipod-make-samples --help'\n")
        for folder, code, expected in (("", 2, "folder: must not be empty\nhint: try 'ipod-make-samples --help'"),
                                       ("/proc/x", 1, "cannot create /proc/x: No such file or directory"),
                                       (file, 1, f"cannot create {file}: Not a directory")):
            for more in ([], ["--count", "3"]):
                with self.subTest([folder, *more]):
                    done = self.complete(OPTIONS.samples, folder, *more, cwd=self.folder)
                    self.assertEqual((done.returncode, done.stdout), (code, ""))
                    self.assertEqual(done.stderr, f"ipod-make-samples: {expected}\n")
        self.assertEqual(os.listdir(self.folder), ["file"])

    def test_numbers_are_decimal(self):
        self.assertEqual(self.complete(OPTIONS.samples, "--count", "010", self.folder).stdout, f"10 files in {self.folder}\n")

    def test_invalid_values_are_usage_errors_with_the_expectation(self):
        for words, expected in ((["--speed", "0"], "--speed: expected a number between 0.001 and 10000, got '0'"),
                                (["--speed", "1e-300"], "--speed: expected a number between 0.001 and 10000, got '1e-300'"),
                                (["--speed", "1e5"], "--speed: expected a number between 0.001 and 10000, got '1e5'"),
                                (["--speed", "x"], "--speed: expected a number between 0.001 and 10000, got 'x'"),
                                (["--speed", "nan"], "--speed: expected a number between 0.001 and 10000, got 'nan'"),
                                (["--speed", "1e999"], "--speed: expected a number between 0.001 and 10000, got '1e999'"),
                                (["--speed", ""], "--speed: expected a number between 0.001 and 10000, got ''"),
                                (["--seed", "-1"], "--seed: expected an integer between 0 and 4294967295, got '-1'"),
                                (["--name", ""], "--name: must not be empty"),
                                (["--name", b"\xff"], "--name: expected UTF-8 text, got '\N{REPLACEMENT CHARACTER}'"),
                                ([""], "folder: must not be empty"),
                                (["--scenario", ""], "--scenario: must not be empty"),
                                (["--seed"], "--seed: missing value"),
                                (["--sede", "3", "--one-device"],
                                 "unknown option '--sede'\nhint: did you mean '--seed'?"),
                                (["--fault", "delay=-1"],
                                 "--fault: delay: expected an integer between 0 and 4294967295, got '-1'"),
                                (["--fault", "long-record=200000000@GetCurrentMediaInfo"],
                                 "--fault: long-record: expected an integer between 0 and 1048576, got '200000000'"),
                                (["--fault", "delay", "--fault", "dely"],
                                 '--fault: expected one of delay, no-reply, error, wrong-type, short-record, long-record, '
                                 'half-filled, unterminated, bad-message, out-of-range, crash, crash-locked, '
                                 "restart-storm, got 'dely' (did you mean 'delay'?)")):
            with self.subTest(words):
                done = self.complete(OPTIONS.simulator, *words)
                hint = "" if "hint:" in expected else "\nhint: try 'ipod-simulator --help'"
                self.assertEqual((done.returncode, done.stdout, done.stderr),
                                 (2, "", f"ipod-simulator: {expected}{hint}\n"))

    def test_limits_the_size_of_a_scenario(self):
        self.assertEqual(self.refusal("--scenario", "/dev/zero"),
                         "ipod-simulator: /dev/zero: expected a scenario of at most 8 MiB\n")

    def test_reports_where_a_scenario_is_malformed(self):
        file = self.write("bad.json", '{"steps": [\n  {"time": 0, "event": "button", "value": "eject"}\n]}\n')
        self.assertEqual(self.refusal("--scenario", file), f"ipod-simulator: {file}: steps[0].value: "
                         'expected one of play, pause, stop, next, previous, got "eject"\n')

    def test_runs_a_scenario(self):
        file = self.write("short.json", '{"title": "Short", "steps": [{"time": 0.1, "event": "button", "value": "play"}]}')
        process = self.start("--scenario", file)
        self.assertEqual(line_within(process.stdout, LIMIT), "scenario ended: Short\n")
        self.assertEqual(self.ask("GetPlayStatus"), "(1,)")

    def test_runs_a_scenario_without_a_title(self):
        process = self.start("--scenario", self.write("untitled.json", '{"steps": []}'))
        self.assertEqual(line_within(process.stdout, LIMIT), "scenario ended\n")

    def test_runs_the_shipped_scenarios(self):
        for name in sorted(os.listdir(OPTIONS.scenarios)):
            with self.subTest(name):
                process = self.start("--speed", "40", "--scenario", os.path.join(OPTIONS.scenarios, name))
                self.assertIn("scenario ended: ", line_within(process.stdout, LIMIT))
                self.assertEqual(self.end(process), "")

    def test_draws_and_removes_a_bar_on_a_terminal(self):
        many = os.path.join(self.folder, "many")
        subprocess.run([OPTIONS.samples, "--count", "3000", many], check=True, stdout=subprocess.DEVNULL)
        controller, terminal = pty.openpty()
        process = self.start("--no-cache", many, stderr=terminal)
        os.close(terminal)
        drawn = b""
        while select.select([controller], [], [], 0.5)[0]:
            drawn += os.read(controller, 65536)
        os.close(controller)
        process.send_signal(signal.SIGTERM)
        if b"of 3000 files" in drawn:  # a fast machine is done before the first update
            self.assertTrue(drawn.endswith(b"\r\x1b[K"), drawn[-80:])

    def test_stores_the_index_and_detects_damage(self):
        music = self.sample_music()
        for expected in ("", "is damaged or from another version", ""):
            err = self.end(self.start(music))
            err = re.sub(r"(?m)^reading tags: .*\n", "", err)  # printed only if the scan takes seconds
            self.assertIn(expected, err) if expected else self.assertEqual(err, "")
            kept = os.listdir(f"{self.folder}/cache/ipod-simulator")
            self.assertEqual(len(kept), 1)
            if not expected:
                os.truncate(f"{self.folder}/cache/ipod-simulator/{kept[0]}", 50)

    def test_ignores_a_relative_cache_folder(self):
        music = self.sample_music()
        self.bus.environment.update(XDG_CACHE_HOME="relative", HOME=f"{self.folder}/home")
        process = self.start(music, cwd=self.folder)
        process.send_signal(signal.SIGTERM)
        self.assertEqual(process.wait(timeout=LIMIT), 0)
        self.assertNotIn("relative", os.listdir(self.folder))
        self.assertEqual(len(os.listdir(f"{self.folder}/home/.cache/ipod-simulator")), 1)


class InATest(OnABus):
    def run_example(self):
        if not OPTIONS.example:
            self.skipTest("the examples are not built")
        done = self.complete(OPTIONS.example)
        return done.returncode, done.stdout, done.stderr

    def test_the_example_succeeds(self):
        self.assertEqual(self.run_example(), (0, "passed\n", ""))

    def test_the_example_reports_a_missing_bus(self):
        self.bus.environment["DBUS_SESSION_BUS_ADDRESS"] = "unix:path=/nonexistent"
        code, out, err = self.run_example()
        self.assertEqual((code, out), (1, ""))
        self.assertRegex(err, r"^no session bus.*\n$")


class Faults(OnABus):
    def test_crash_during_a_call(self):
        process = self.start("--fault", "crash@Next/1")
        self.assertIn("true", self.ask("Play", "3"))
        self.assertEqual(self.ask("Next"), "")
        self.assertEqual(process.wait(timeout=LIMIT), -signal.SIGKILL)
        self.assertFalse(self.owner())
        self.start()
        self.assertEqual(self.ask("GetPlayStatus"), "(0,)")

    def test_crash_with_the_locks_held_blocks_the_segments(self):
        for segment in ("buffers", ""):
            with self.subTest(segment):
                process = self.start("--fault", "crash-locked" + ("=" + segment if segment else "") + "@Pause")
                self.ask("Pause")
                self.assertEqual(process.wait(timeout=LIMIT), -signal.SIGKILL)
                self.assertIn("ListVectorSharedMemory", os.listdir("/dev/shm"))
                locked = segment.capitalize().rstrip("s") or "List"
                self.assertEqual(self.refusal(), f"ipod-simulator: shared memory {locked}VectorSharedMemory: it is "
                                 "locked by a process that died\nhint: stop all applications that use the service, remove "
                                 f"/dev/shm/{locked}VectorSharedMemory, and start again\n")
                clear_shared_memory()

    def test_unusable_segments_are_reported_with_a_remedy(self):
        for contents in (b"\2\0\0\0", b"\2\0\0\0" + b"x" * 0x4ffffc, b"\2\0\0\0" + bytes(0x4ffffc)):
            with self.subTest(len(contents)):
                with open("/dev/shm/ListVectorSharedMemory", "wb") as segment:
                    segment.write(contents)
                self.assertRegex(self.refusal(), "^ipod-simulator: shared memory ListVectorSharedMemory: .*\nhint: stop all "
                                 "applications that use the service, remove /dev/shm/ListVectorSharedMemory, and start again$")

    def remount_shared_memory(self, options):
        # The present mount options name a user of the outer namespace, who is unknown here.
        subprocess.run(["mount", "--options-mode=ignore", "-o", f"remount,{options}", "/dev/shm"], check=True)

    @needs_private_mount
    def test_full_shared_memory_is_reported(self):
        self.addCleanup(self.remount_shared_memory, "size=50%")
        for size in ("48k", "5200k"):
            with self.subTest(size):
                clear_shared_memory()
                self.remount_shared_memory(f"size={size}")
                name = "List" if size == "48k" else "Buffer"
                self.assertRegex(self.refusal(), rf"^ipod-simulator: shared memory {name}VectorSharedMemory: no space for "
                                 r"its \d+ bytes\nhint: free space in /dev/shm and start again\n$")

    def test_missing_pages_of_segments_are_allocated(self):
        self.start()
        for segment in ("ListVectorSharedMemory", "BufferVectorSharedMemory"):
            status = os.stat(f"/dev/shm/{segment}")
            self.assertGreaterEqual(status.st_blocks * 512, status.st_size)

    @needs_private_mount
    def test_a_read_only_file_system_is_reported_without_useless_advice(self):
        self.addCleanup(self.remount_shared_memory, "rw")
        self.remount_shared_memory("ro")
        self.assertEqual(self.refusal(),
                         "ipod-simulator: shared memory ListVectorSharedMemory: Read-only file system\n")

    def test_a_segment_in_a_larger_object_is_used(self):
        self.end(self.start())
        path = "/dev/shm/ListVectorSharedMemory"
        os.truncate(path, os.path.getsize(path) + 4096)
        self.start()
        self.assertIn("true", self.ask("EnterDbRoot"))

    def test_vectors_are_falsified(self):
        self.start()
        self.do("fault", "unterminated@GetDeviceList/1")
        self.assertEqual(self.ask("GetDeviceList"), "(true,)")
        with open("/dev/shm/ListVectorSharedMemory", "rb") as segment:
            self.assertIn(b"x" * 256, segment.read())
        self.do("fault", "half-filled@GetDeviceList/1")
        self.assertEqual(self.ask("GetDeviceList"), "(true,)")

    def until_done(self, *action):
        self.assertTrue(within(LIMIT, lambda: self.do(*action).returncode == 0), action)

    def test_a_restart_storm_is_replaced_by_another_and_ends_when_faults_are_cleared(self):
        process = self.start()
        before = self.owner()
        for times in ("10000", "20000", "10000"):
            self.until_done("fault", f"restart-storm={times}")
            self.assertTrue(within(LIMIT, lambda: self.owner() not in (before, "")))
        self.until_done("clear-faults")
        time.sleep(1)
        after = self.owner()
        time.sleep(1)
        self.assertEqual((self.owner(), process.poll()), (after, None))
        self.assertEqual(self.ask("GetPlayStatus"), "(0,)")

    def test_listing_calls_of_an_unknown_method_fails(self):
        self.start()
        self.assertIn("the interface has no method 'getplaystats' (did you mean 'GetPlayStatus'?)",
                      self.control("Calls", "getplaystats").stderr)
        self.assertEqual(self.control("Calls", "GetPlayStatus").stdout, "(@a(tssavsav) [],)\n")

    def test_are_armed_and_cleared_over_the_bus(self):
        self.start("--fault", "error@GetPlayStatus")
        self.assertEqual(self.ask("GetPlayStatus"), "")
        self.do("clear-faults")
        self.assertEqual(self.ask("GetPlayStatus"), "(0,)")
        refused = self.do("fault", "bad-message@Play")
        self.assertIn("expected one of OnIpodPhoneCallChange, OnIpodBatteryChange, got 'Play'", refused.stderr)


class Control(OnABus):
    def test_describes_itself(self):
        self.start()
        described = self.complete("gdbus", "introspect", "--session", "--dest", "com.zarn.linux.ipod.Simulator",
                                  "--object-path", "/com/zarn/linux/ipod/simulator").stdout
        for member in ("Do", "Calls", "ClearCalls", "Called", "ScenarioEnded"):
            self.assertIn(member, described)


class FromTheCommandLine(OnABus):
    def ctl(self, *words, code=0):
        done = self.complete(OPTIONS.ipodctl, *words)
        self.assertEqual(done.returncode, code, (words, done.stdout, done.stderr))
        return done.stdout if code == 0 else done.stderr

    def json(self, *words):
        answer = json.loads(self.ctl("--json", "sim", *words))
        self.assertEqual(check(answer, SCHEMA), [])
        return answer

    def test_every_event_is_accepted(self):
        self.start()
        data = self.write("data", "from a file")
        for words in (["call", "ringing", "display-name=Li Lei", "is-conferenced=on", "start-timestamp=5"],
                      ["call", "sequence=ringing:0.1,active:0.1,disconnected", "direction=incoming"],
                      ["battery", "80", "charging-status=charging"], ["carplay", "detected", "serial=F17"],
                      ["carlife", "unsupported"], ["wireless", "on", "address=00:11"],
                      ["pairing", "00:11", "hex=0a1b"], ["location", "on"], ["source", "off"], ["app", "com.a"],
                      ["attach", "Second"], ["detach", "name=Second"], ["button", "play"], ["eap-data", "1", "text=a=b"],
                      ["eap-data", "hex=00ff"], ["eap-data", f"hex=@{data}"], ["eap-close", "1"], ["calls", "--clear"],
                      ["fault", "delay=5@Play/1"], ["fault", "fault=delay=5@Play/1"], ["clear-faults"],
                      ["scenario", os.path.join(OPTIONS.scenarios, "device-swap.json")]):
            with self.subTest(words):
                if words[0] == "eap-data" and "1" in words:
                    self.assertEqual(self.json("eap-open", "protocol=3")["session"], 1)
                self.assertEqual(self.json(*words), {"verb": f"sim {words[0]}"})
        self.assertEqual(self.ask("GetCarplayDeviceDetectStatus"), "(byte 0x00, 'F17')")
        self.assertEqual(self.ask("GetIpodAppBundleName"), "('com.a',)")

    def test_calls_are_shown(self):
        self.start("--fault", "no-reply@Stop/1", "--fault", "error=com.example.Busy@Pause/1")
        for words in (["Seek", "5"], ["Stop"], ["Pause"], ["GetPlayPosition"]):
            self.ask(*words)
        calls = [(call["method"], call["arguments"], call["answer"]) for call in self.json("calls")["calls"]]
        self.assertEqual(calls, [("Seek", "(5)", "()"), ("Stop", "()", "no answer"),
                                 ("Pause", "()", "com.example.Busy ('injected fault')"),
                                 ("GetPlayPosition", "()", "(0, 0)")])
        self.ask("GetCurrentMediaInfo")
        self.assertIn("(<[1040 bytes]>)", self.ctl("sim", "calls", "GetCurrentMediaInfo"))
        self.assertRegex(self.ctl("sim", "calls", "Seek"), r"^\d\d:\d\d:\d\d\.\d{3}  :1\.\d+  Seek  \(5\)  \(\)\n$")

    def test_errors_are_reported(self):
        self.assertIn("no simulator on the bus\nhint: start ipod-simulator", self.ctl("sim", "button", "play", code=4))
        self.start()
        for words, code, expected in (
                (["button", "eject"], 2, "button: expected one of play, pause, stop, next, previous, got \"eject\""),
                (["fault", "dely"], 2, "(did you mean 'delay'?)"),
                (["attach", "Desk iPod"], 1, "a device of that name is already attached"),
                (["scenario", self.write("bad.json", "{}")], 2, "event: expected the name of an action, got nothing"),
                (["scenario", self.write("typo.json", "{\n\"steps\" []}")], 2, "line 2, column "),
                (["call", "sequence=ringing:x"], 2, "sequence[0].seconds: expected a number of seconds"),
                (["call", "sequence=asleep"], 2, "sequence[0].status: expected one of disconnected, sending"),
                (["carplay", "maybe"], 2, "status: expected one of detected"),
                (["pairing", "a", "hex=0"], 2, "hex: expected pairs of hexadecimal digits"),
                (["battery", "level=full"], 2, "level: expected an integer between 0 and 4294967295, got \"full\""),
                (["battery", "levle=4"], 2, "unknown field 'levle'\nhint: did you mean 'level'?"),
                (["battery", "1", "level=4"], 2, "level: can be given only once"),
                (["battery"], 2, "missing argument: field\nhint: try 'ipodctl sim battery --help'"),
                (["eap-data", "1"], 2, "value: expected either text or hex"),
                (["eap-close", "0"], 2, "session: expected an integer between 1 and 65535, got 0"),
                (["eap-close", "7"], 1, "the session is not open"),
                (["fault", "delay/x"], 2, "expected KIND"), (["dance"], 2, "unknown command 'dance'"),
                (["scenario", "/nonexistent"], 2, "/nonexistent"), ([], 2, "missing command")):
            with self.subTest(words):
                self.assertIn(expected, self.ctl("sim", *words, code=code))
        self.assertEqual(self.ask("GetDeviceAmount"), "(1,)")

    def test_actions_are_listed_with_their_arguments(self):
        self.assertIn("\nbattery       Report the battery state\n", self.ctl("sim", "actions"))
        self.assertEqual(self.ctl("sim", "actions", "battery").split(),
                         ["level="] + [f"charging-status={word}" for word in ("disabled", "charging", "charged", "discharging")])
        self.assertEqual(self.json("actions", "location")["words"], ["on", "off"])
        self.assertIn("did you mean 'battery'?", self.ctl("sim", "actions", "batery", code=2))


class Documentation(unittest.TestCase):
    def test_the_guide_lists_the_actions_of_the_schema(self):
        schema = json.loads(subprocess.run([OPTIONS.simulator, "--print-schema"], check=True, capture_output=True,
                                           text=True, timeout=LIMIT).stdout)
        with open(OPTIONS.guide, encoding="utf-8") as guide:
            table = guide.read().partition("| Subject | Actions |\n")[2].partition("\n\n")[0]
        actions = [step["properties"]["event"]["const"] for step in schema["properties"]["steps"]["items"]["oneOf"]]
        self.assertEqual(sorted(re.findall(r"`([^`]+)`", table)), sorted(actions))


class Playback(OnABus):
    def test_plays_the_list_and_stops_at_its_end(self):
        music = self.sample_music()
        self.start("--speed", "60", music)
        self.ask("Play", "3")
        self.assertEqual(self.ask("GetPlayStatus"), "(1,)")
        self.assertTrue(within(LIMIT, lambda: self.ask("GetPlayStatus") == "(0,)"), "173 s of music, 60 times as fast")
        self.assertEqual(self.ask("GetPlayingTrackIdx"), "(-1,)")

    def test_repeats_one_track_forever(self):
        music = self.sample_music()
        self.start("--speed", "100", music)
        self.ask("SetRepeatMode", "1")
        self.ask("Play", "3")
        time.sleep(1)
        self.assertEqual(self.ask("GetPlayingTrackIdx"), "(0,)")
        self.assertEqual(self.ask("GetPlayStatus"), "(1,)")


if __name__ == "__main__":
    parser = argparse.ArgumentParser()
    parser.add_argument("--simulator", required=True)
    parser.add_argument("--samples", required=True)
    parser.add_argument("--ipodctl", required=True)
    parser.add_argument("--schema", required=True)
    parser.add_argument("--scenarios", required=True)
    parser.add_argument("--guide", required=True, help="docs/simulator.md")
    parser.add_argument("--example", help="example with an embedded service")
    OPTIONS, REST = parser.parse_known_args()
    with open(OPTIONS.schema, encoding="utf-8") as schema:
        SCHEMA = json.load(schema)
    enter_private_namespace()
    unittest.main(argv=sys.argv[:1] + REST, verbosity=2)
