#!/usr/bin/env python3
"""Runs every verb of ipodctl against the simulator, with a private bus and private shared memory."""
import argparse
import collections
import fcntl
import json
import os
import pty
import re
import select
import shutil
import signal
import socket
import struct
import subprocess
import sys
import tempfile
import termios
import threading
import time
import unittest

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "support"))

from music_folder import write_track  # noqa: E402
from private_session import (LIMIT, OnAPrivateBus, clear_shared_memory, enter_private_namespace,  # noqa: E402
                             line_within, segments, stop, within)
from schema_check import check  # noqa: E402

DONE, NOTHING_DONE, USAGE, NO_BUS, NO_SERVICE, NO_SEGMENTS, SERVICE_LOST = range(7)
NO_OUTPUT = 7


class OnABus(OnAPrivateBus):
    def setUp(self):
        super().setUp()
        self.bus.environment["TZ"] = "UTC"

    def start(self, *words, **options):
        return self.launch(OPTIONS.ipodctl, *words, stdout=subprocess.PIPE, stderr=subprocess.PIPE, cwd=self.folder,
                           **options)

    def end(self, process, code=DONE, data=None):
        """Waits until a run exits, checks its exit code, and returns its outputs."""
        out, err = process.communicate(data, timeout=LIMIT)
        self.assertEqual(process.returncode, code, (process.args, out, err))
        return out, err.decode()

    def interrupt(self, process):
        process.send_signal(signal.SIGINT)
        return self.end(process)

    def run_ctl(self, *words, code=DONE, data=b""):
        """Runs ipodctl until it exits, checks its exit code, and returns its standard output."""
        out, err = self.end(self.start(*words, stdin=subprocess.PIPE), code, data)
        if code == DONE:
            self.assertEqual(err, "")
        else:
            self.assertRegex(err, r"^ipodctl: [^\n]+\n(hint: [^\n]+\n)?$")
        return out

    def text(self, *words, **options):
        return self.run_ctl(*words, **options).decode()

    def json(self, *words, code=DONE, **options):
        out = self.run_ctl("--json", *words, code=code, **options).decode()
        self.assertEqual(out.count("\n"), 1, out)
        return self.valid(out)

    def valid(self, text):
        """Validates an answer against the schema, and returns it."""
        answer = json.loads(text)
        self.assertEqual(check(answer, SCHEMA), [])
        return answer

    def file(self, name, content=b""):
        path = os.path.join(self.folder, name)
        with open(path, "wb") as file:
            file.write(content)
        return path

    def failure(self, *words, code, **options):
        """Checks a failure in text and JSON form and returns its message and hint."""
        self.assertEqual(self.run_ctl(*words, code=code, **options), b"")
        error = self.json(*words, code=code, **options)["error"]
        self.assertEqual(error["code"], code)
        return error["message"], error.get("hint", "")

    def refused(self, *words, code, **options):
        return self.failure(*words, code=code, **options)[0]

    def assert_output_error_is_reported(self, words, redirection, reason, **options):
        done = subprocess.run(f"'{OPTIONS.ipodctl}' {words} {redirection}", env=self.bus.environment, shell=True,
                              stderr=subprocess.PIPE, timeout=LIMIT, check=False, **options)
        self.assertEqual((done.returncode, done.stderr.decode()),
                         (NO_OUTPUT, f"ipodctl: cannot write to standard output: {reason}\n"))


class WithoutAService(OnABus):
    def test_a_missing_bus_is_reported(self):
        self.bus.environment["DBUS_SESSION_BUS_ADDRESS"] = "unix:path=/nonexistent/bus"
        self.assertIn("no session bus", self.refused("status", code=NO_BUS))

    def test_every_verb_reports_a_missing_service_and_leaves_no_segments(self):
        for words in (["status"], ["info"], ["play"], ["play", "3"], ["pause"], ["toggle"], ["ff"], ["rw"], ["search", "x"], ["update-list"], ["stop"], ["next"], ["previous"],
                      ["seek", "-10"], ["shuffle"], ["repeat", "all"], ["ls"], ["cd", "/"], ["queue"], ["devices"],
                      ["carplay"], ["carlife"], ["button", "1"], ["hub", "0"], ["art"], ["events"],
                      ["eap", "init", "a", "b"], ["eap", "launch", "a"], ["eap", "write", "1"], ["eap", "listen"],
                      ["eap", "echo", "a"], ["eap", "bridge"], ["bench"], ["ls", "--index"]):
            with self.subTest(words):
                self.assertIn("no iPod service", self.refused(*words, code=NO_SERVICE))
        self.assertEqual(segments(), [])

    def test_wrong_arguments_are_reported_without_a_service(self):
        for words in (["seek", "1:99"], ["seek", "5", "6"], ["repeat", "two"], ["ls", "--count", "0"],
                      ["ls", "--index", "--names"], ["--deadline", "0", "status"],
                      ["bench", "--count", "0"], ["status", "--watch", "--listen", "1"],
                      ["events", "--exec", "a", "--format", "b"], ["queue", "-1"], ["queue", "--from", "x"],
                      ["queue", "--all", "--from", "1"], ["queue", "1", "--count", "2"], ["ff", "0"], ["rw", "x"],
                      ["search"], ["search", ""], ["--color", "sometimes", "status"], ["status", "--keys", "--watch"],
                      ["status", "--keys", "--format", "a"], ["help", "dance"], ["help", "sim", "dance"],
                      ["queue", "x"], ["cd"], ["cd", ""], ["eap", "write", "70000"], ["hub", "256"],
                      ["events", "--count", "x"], ["status", "--wrong"], ["eap", "init", "x" * 256, "b"],
                      ["eap", "launch", b"\xff"], ["--deadline", "nan", "status"], ["events", "--timeout", "nan"],
                      ["status", "--listen", "inf"], ["sim", "call"], ["sim", "battery"], ["events", "--format", ""], ["events", "--exec", ""]):
            with self.subTest(words):
                self.refused(*words, code=USAGE)

    def test_wrong_arguments_are_reported_by_name(self):
        for words, message, hint in (
                (["--foo"], "unknown option '--foo'", "try 'ipodctl --help'"),
                (["dance"], "unknown command 'dance'", "try 'ipodctl --help'"),
                (["staus"], "unknown command 'staus'", "did you mean 'status'?"),
                (["help", "sek"], "unknown command 'sek'", "did you mean 'seek'?"),
                (["ls", "--cuont=3"], "unknown option '--cuont=3'", "did you mean '--count'?"),
                (["status", "--jsno"], "unknown option '--jsno'", "did you mean '--json'?"),
                (["help", "seek", "x"], "unexpected argument 'x'", "try 'ipodctl --help'"),
                (["help", "sim", "battery", "x"], "unexpected argument 'x'", "try 'ipodctl --help'"),
                (["--colour", "auto", "status"], "unknown option '--colour'", "did you mean '--color'?"),
                (["--deadline", "x", "status"],
                 "--deadline: expected a number of seconds between 0.001 and 86400, got 'x'", "try 'ipodctl --help'"),
                (["sim", "actions", "batery"], "unknown action 'batery'", "did you mean 'battery'?"),
                (["sim", "actions", "dance"], "unknown action 'dance'", "try 'ipodctl sim actions'"),
                (["eap", "foo"], "unknown command 'foo'", "try 'ipodctl eap --help'"),
                (["sim", "cal"], "unknown command 'cal'", "did you mean 'call'?"),
                (["sim", "call", "--foo"], "unknown option '--foo'", "try 'ipodctl sim call --help'"),
                (["sim", "foo", "--help"], "unknown command 'foo'", "try 'ipodctl sim --help'"),
                ([], "missing command", "try 'ipodctl --help'"),
                (["eap"], "missing command", "try 'ipodctl eap --help'"),
                (["hub"], "missing argument: mode", "try 'ipodctl hub --help'"),
                (["ls", "x"], "unexpected argument 'x'", "try 'ipodctl ls --help'"),
                (["ls", "--count"], "--count: missing value", "try 'ipodctl ls --help'"),
                (["ls", "--count", "1", "--count", "2"], "--count: can be given only once", "try 'ipodctl ls --help'"),
                (["ls", "--all", "--from", "1"], "--from cannot be used with --all", "try 'ipodctl ls --help'"),
                (["ls", "--all=maybe"], "--all: does not accept a value", "try 'ipodctl ls --help'"),
                (["shuffle", "x"], "mode: expected one of off, songs, albums, got 'x'", "try 'ipodctl shuffle --help'"),
                (["hub", "x"], "mode: expected an integer between 0 and 255, got 'x'", "try 'ipodctl hub --help'"),
                (["button", "-1"], "number: expected an integer between 0 and 4294967295, got '-1'",
                 "try 'ipodctl button --help'"),
                (["sim", "eap-close", "sesion=1"], "unknown field 'sesion'", "did you mean 'session'?"),
                (["sim", "clear-faults", "all"], "unexpected argument 'all'", "try 'ipodctl sim clear-faults --help'"),
                (["events", "--timeout", "0"], "--timeout: expected a number of seconds between 0.001 and 4000000, got '0'",
                 "try 'ipodctl events --help'"),
                (["eap", "bridge", "--socket", ""], "--socket: must not be empty", "try 'ipodctl eap bridge --help'"),
                (["eap", "init", "", "b"], "protocols: must not be empty", "try 'ipodctl eap init --help'"),
                (["eap", "init", "a", ""], "bundle: must not be empty", "try 'ipodctl eap init --help'"),
                (["eap", "launch", ""], "bundle: must not be empty", "try 'ipodctl eap launch --help'"),
                (["eap", "init", b"\xff", "b"], "the list of protocols: expected UTF-8 text, got '\ufffd'", ""),
                (["seek"], "missing argument: time", "give SECONDS, MM:SS, H:MM:SS, +N, or -N"),
                (["seek", "--back", "-5"], "'-5' is not a valid time", "give SECONDS, MM:SS, H:MM:SS, +N, or -N"),
                (["seek", "--back=-3"], "'-3' is not a valid time", "give SECONDS, MM:SS, H:MM:SS, +N, or -N"),
                (["seek", "-1:99"], "'-1:99' is not a valid time", "give SECONDS, MM:SS, H:MM:SS, +N, or -N"),
                (["sim", "battery", "charging-status=charging", "charging-status=charged"],
                 "charging-status: can be given only once", "try 'ipodctl sim battery --help'")):
            with self.subTest(words):
                self.assertEqual(self.failure(*words, code=USAGE), (message, hint))

    def test_forms_that_exclude_each_other_are_usage_errors(self):
        for words, message in ((["art", "-"], "--json cannot be used with '-', which writes the image"),
                               (["events", "--format", "{{ title }}"], "--json cannot be used with --format"),
                               (["status", "--format", "{{ title }}"], "--json cannot be used with --format"),
                               (["browse"], "--json cannot be used with browse")):
            with self.subTest(words):
                self.assertEqual(self.json(*words, code=USAGE)["error"]["message"], message)

    def test_the_help_fits_into_eighty_columns_and_has_nothing_of_the_parser(self):
        commands = re.findall(r"^  ([a-z]\S*) ", self.text("--help").split("Exit codes:")[0], re.M)
        self.assertGreater(len(commands), 20)
        subcommands = [[command, sub] for command in ("eap", "sim")
                       for sub in re.findall(r"^  ([a-z]\S*) ", self.text(command, "--help").split("Examples:")[0], re.M)]
        for words in [[], *([command] for command in commands), *subcommands]:
            with self.subTest(words):
                text = self.text(*words, "--help")
                self.assertLessEqual(max(map(len, text.split("Examples:")[0].splitlines())), 80, text)
                self.assertNotRegex(text, r"INT|FLOAT|REQUIRED|Excludes|SUBCOMMAND|VERB|\{\d\}| \n")
                if len(words) == 1:
                    self.assertIn("Examples:\n  ipodctl ", text)

    def test_texts_for_the_simulator_are_utf_8(self):
        for words in (["app", b"\xff"], ["button", b"\xff"], ["fault", b"\xff"], ["call", b"display-name=\xff"]):
            with self.subTest(words):
                self.assertIn("is not valid UTF-8", self.refused("sim", *words, code=USAGE))

    def test_a_full_output_is_reported(self):
        for redirection, reason in ((">/dev/full", "No space left on device"), (">&-", "Bad file descriptor")):
            for word in ("--help", "--version", "fingerprint"):
                with self.subTest((word, redirection)):
                    self.assert_output_error_is_reported(word, redirection, reason)

    def test_endless_files_are_reported(self):
        for words in (["sim", "scenario", "/dev/zero"], ["sim", "eap-data", "hex=@/dev/zero"],
                      ["eap", "write", "1", "/dev/zero"]):
            with self.subTest(words):
                self.assertRegex(self.refused(*words, code=USAGE),
                                 r"^cannot use '/dev/zero': it is longer than \d+ bytes$")

    def test_help_and_version_need_nothing(self):
        self.assertIn("Exit codes:", self.text("--help"))
        self.assertRegex(self.text("--version"), r"^ipodctl \d+\.\d+\.\d+\n$")
        self.assertEqual(self.text("-V"), self.text("--version"))
        self.assertEqual(self.text("help"), self.text("--help"))
        for words in (["seek"], ["sim", "battery"], ["help"]):
            self.assertEqual(self.text("help", *words), self.text(*words, "--help"))


class OnABusWithTheSimulator(OnABus):
    music = ()

    def setUp(self):
        super().setUp()
        self.start_simulator()

    def start_simulator(self):
        self.simulator = self.launch_simulator(OPTIONS.simulator, *self.music)

    def hang(self):
        """Stops the simulator and waits until it has stopped, because it may answer until then."""
        self.simulator.send_signal(signal.SIGSTOP)
        stopped = os.waitid(os.P_PID, self.simulator.pid, os.WSTOPPED | os.WEXITED | os.WNOWAIT)
        self.assertEqual(stopped.si_code, os.CLD_STOPPED)


class WithNamesThatLookLikeSomethingElse(OnABusWithTheSimulator):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        titles = ("Twenty", "22", "Night/Day", "A" * 250)
        for number, title in enumerate(titles, 1):
            write_track(f"{folder.name}/{number}.mp3", title, "Nadia Brandt", "AM/FM", "Pop", number, 180)
        write_track(f"{folder.name}/5.mp3", "Low Water", "Nadia Brandt", "AM", "Pop", 1, 180)
        self.music = ("--no-cache", folder.name)
        super().setUp()

    def test_a_path_enters_the_longest_matching_names(self):
        for path, count in (("/Albums/AM/FM", 4), ("/Albums/AM", 1), ("/albums/am/fm/", 4), ("/Albums/AM/../AM/FM", 4)):
            with self.subTest(path):
                self.assertEqual(self.json("cd", path)["count"], count)
        self.run_ctl("cd", "/Albums")
        self.assertEqual(self.json("cd", "AM/FM")["count"], 4)
        self.assertEqual(self.failure("cd", "/Albums/AM/Nobody", code=USAGE),
                         ("no 'Nobody' in the current level", "the current level is now '/Albums/AM/'"))

    def test_a_word_after_dot_slash_is_a_name(self):
        self.run_ctl("cd", "/Songs")
        self.assertEqual(self.json("play", "./22")["track"]["title"], "22")
        self.assertEqual(self.json("play", "Night/Day")["track"]["title"], "Night/Day")
        self.assertIn("out of range", self.refused("play", "22", code=USAGE))
        self.assertEqual(self.failure("play", "./23", code=USAGE),
                         ("no '23' in the current level", "did you mean './22'?"))
        self.assertEqual(self.failure("play", "Nigth/Day", code=USAGE)[1], "did you mean 'Night/Day'?")
        self.assertEqual(self.failure("play", "Nobody", code=USAGE)[1], "list it with 'ipodctl ls --all'")

    def test_a_long_name_pads_no_other_line_in_a_pipe(self):
        self.run_ctl("cd", "/Songs")
        lines = self.text("ls", "--pinyin").splitlines()
        self.assertEqual(len(lines), 5)
        self.assertLess(sorted(map(len, lines))[-2], 50)

    def test_devices_are_chosen_by_name(self):
        self.run_ctl("sim", "attach", "Second")
        self.run_ctl("sim", "attach", "7")
        self.assertEqual(self.json("devices", "second")["entered"], {"index": 1, "name": "Second"})
        self.assertEqual(self.json("devices", "./7")["entered"], {"index": 2, "name": "7"})
        self.assertEqual(self.failure("devices", "Third", code=USAGE),
                         ("no device 'Third'", "list the devices with 'ipodctl devices'"))
        self.assertEqual(self.failure("devices", "Secnod", code=USAGE)[1], "did you mean 'Second'?")


class WithTheSimulator(OnABusWithTheSimulator):
    def simulate(self, *words):
        self.run_ctl("sim", *words)

    def play_first_song(self):
        self.run_ctl("cd", "/Songs")
        return self.json("play", "0")

    def events(self, cause, *words):
        """Returns the events that a cause triggers, up to the number given with --count."""
        process = self.follow("--json", "events", *words, "--timeout", str(LIMIT))
        cause()
        out, _ = self.end(process)
        events = [self.valid(line) for line in out.decode().splitlines()]
        return events

    def follow(self, *words):
        """Starts a run that follows events, and returns it once its log shows that it is subscribed."""
        process = self.start("--verbose", *words)
        for line in process.stderr:
            if b"session Ready" in line:
                return process
        self.fail("it ended before it listened")

    def await_line(self, stream, part, keep=None):
        """Reads lines until one contains the given part."""
        for line in stream:
            if keep is not None:
                keep.append(line)
            if part in line:
                return
        self.fail(f"no line with {part}")

    # Playback

    def test_an_idle_device_is_shown_as_idle(self):
        self.assertTrue(self.text("status").startswith("stopped "))
        status = self.json("status")
        self.assertEqual((status["state"], status["index"], status["track"]), ("stopped", -1, None))
        for words in (["info"], ["next"], ["previous"], ["pause"], ["seek", "5"], ["art"], ["ff"]):
            with self.subTest(words):
                self.assertEqual(self.refused(*words, code=NOTHING_DONE),
                                 "nothing is loaded")

    def test_a_song_is_played_by_its_index_and_by_its_name(self):
        by_index = self.play_first_song()
        self.assertEqual((by_index["state"], by_index["index"]), ("playing", 0))
        names = [entry["name"] for entry in self.json("ls", "--all")["entries"]]
        self.assertEqual(by_index["track"]["title"], names[0])
        self.assertIn(names[2], self.text("play", names[2]))
        self.assertEqual(self.json("status")["index"], 2)

    def test_the_screen_shows_track_bar_modes_and_queue(self):
        track = self.play_first_song()["track"]
        lines = self.text("status").splitlines()
        self.assertEqual(lines[0], track["title"])
        self.assertEqual(lines[1], f"{track['artist']} - {track['album']}")
        self.assertRegex(lines[2], r"^\[=*> *\] 0:0\d / \d+:\d\d$")
        self.assertRegex(lines[3], r"^playing   shuffle off   repeat off   queue 1 of \d+   1 device$")
        device = self.json("devices")["devices"][0]["name"]
        self.assertTrue(lines[4].startswith(device), lines)
        queue = [entry["name"] for entry in self.json("queue")["entries"]]
        self.assertEqual(lines[5:], [f"> 0  {queue[0]}", f"  1  {queue[1]}", f"  2  {queue[2]}"])

    def test_fields_reported_by_events_are_awaited(self):
        began = time.monotonic()
        self.play_first_song()
        commands = time.monotonic() - began
        self.assertEqual((self.json("status")["battery"], self.json("status")["calls"]), ({}, []))
        process = self.follow("--json", "status", "--listen", str(3 + 3 * commands))
        self.simulate("battery", "80", "charging-status=charging")
        self.simulate("call", "ringing", "display-name=Anna", "call-uuid=1")
        status = self.valid(self.end(process)[0])
        self.assertEqual(status["battery"], {"percent": 80, "status": "charging"})
        self.assertEqual([(call["name"], call["status"]) for call in status["calls"]], [("Anna", "ringing")])

    def test_a_call_without_an_identifier_is_part_of_the_status(self):
        process = self.follow("--json", "status", "--watch")
        for status, expected in (("ringing", ["ringing"]), ("active", ["active"]), ("disconnected", [])):
            self.simulate("call", status, "display-name=Anna")
            calls = (json.loads(line)["calls"] for line in process.stdout)
            with self.subTest(status):
                self.assertTrue(any([call["status"] for call in each] == expected for each in calls))
        self.interrupt(process)

    def test_the_status_is_watched_until_ctrl_c(self):
        self.play_first_song()
        process = self.follow("--json", "status", "--watch")
        self.simulate("battery", "33")
        self.await_line(process.stdout, b'"percent":33', keep=(lines := []))
        self.interrupt(process)
        for line in lines:
            self.valid(line)

    def test_a_watched_status_reports_a_restart(self):
        self.play_first_song()
        process = self.follow("status", "--watch")
        self.await_line(process.stdout, b"playing")
        self.restart_simulator()
        self.await_line(process.stderr, b"left the bus; waiting for its return")
        self.await_line(process.stderr, b"connected to the iPod service")
        self.await_line(process.stdout, b"stopped")
        self.interrupt(process)

    def test_a_restart_is_a_line_between_the_answers_in_json(self):
        process = self.follow("--json", "status", "--watch")
        self.await_line(process.stdout, b'"verb"')
        self.restart_simulator()
        self.await_line(process.stdout, b'"ready"', keep=(lines := []))
        self.interrupt(process)
        self.assertIn("lost", [self.valid(line).get("state") for line in lines])

    def test_watching_ends_cleanly_even_during_a_request(self):
        self.play_first_song()
        began = time.monotonic()
        self.json("status")
        once = time.monotonic() - began
        self.simulate("fault", "delay=4000@GetPlayingListItems")
        process = self.follow("--json", "status", "--watch")
        time.sleep(0.5 + once)
        self.interrupt(process)

    def test_answers_of_a_watched_status_are_blocks_with_a_time(self):
        title = self.play_first_song()["track"]["title"]
        process = self.follow("status", "--watch")
        self.await_line(process.stdout, b"Desk iPod")
        self.simulate("battery", "33")
        self.await_line(process.stdout, b"battery 33 %", keep=(lines := []))
        self.interrupt(process)
        self.assertRegex(b"".join(lines).decode(), rf"\n\n\d\d:\d\d:\d\d\.\d{{3}}\n{re.escape(title)}\n")

    def test_a_dumb_terminal_gets_text_only(self):
        self.play_first_song()
        for words in (["status"], ["info"], ["events", "--count", "1", "--timeout", str(LIMIT)]):
            with self.subTest(words):
                plain = self.on_terminal(*words, size={"LINES": 24, "COLUMNS": 80}, TERM="dumb")
                self.assertNotIn("\033", plain)
                self.assertLess(plain.count("\n"), 12, plain)
        self.assertNotIn("\033", self.on_terminal("status", "--watch", interrupt_at="playing", times=1, TERM="dumb"))

    def test_a_terminal_gets_its_screen_back_after_watching(self):
        self.play_first_song()
        shown = self.on_terminal("status", "--watch", interrupt_at="playing")
        self.assertTrue(shown.startswith("\033[?1049h\033[?25l"), shown)
        self.assertTrue(shown.endswith("\033[?25h\033[?1049l"), shown)
        self.assertGreaterEqual(shown.count("playing"), 2)

    def test_artwork_is_drawn_on_request(self):
        self.play_first_song()
        plain = self.text("status").splitlines()
        drawn = self.text("status", "--art").splitlines()
        self.assertGreaterEqual(len(drawn), 8)
        self.assertNotIn("\033", "".join(drawn))
        self.assertTrue(drawn[0].endswith(plain[0]) and len(drawn[0]) > len(plain[0]), drawn)
        size = {"LINES": 24, "COLUMNS": 80}
        self.assertIn("\033[", self.on_terminal("info", size=size))
        self.assertLess(len(self.on_terminal("info", "--no-art", size=size)),
                        len(self.on_terminal("info", size=size)))
        self.refused("status", "--art", "--no-art", code=USAGE)

    def test_a_tiny_terminal_is_enough(self):
        self.play_first_song()
        self.bus.environment["NO_COLOR"] = "1"
        for verb in ("status", "info", "ls", "queue", "devices", "shm"):
            with self.subTest(verb):
                shown = self.on_terminal(verb, size={"LINES": 5, "COLUMNS": 20})
                if verb == "status":
                    self.assertLessEqual(shown.count("\n"), 4)
                    for line in shown.splitlines():
                        self.assertLessEqual(terminal_columns(line), 20)

    def test_playback_pauses_resumes_and_stops(self):
        self.play_first_song()
        self.assertTrue(self.text("pause").startswith("paused: "))
        self.assertEqual(self.json("play")["state"], "playing")
        self.assertEqual(self.json("stop")["state"], "stopped")

    def test_next_and_previous_move_within_the_list_and_end_with_it(self):
        self.play_first_song()
        self.assertEqual(self.json("next")["index"], 1)
        self.assertEqual(self.json("previous")["index"], 0)
        last = self.json("status")["count"] - 1
        self.run_ctl("queue", str(last))
        self.assertIn("did not skip to the next track", self.refused("next", code=NOTHING_DONE))
        self.assertEqual(self.json("status")["index"], last)

    def test_seek_moves_to_a_time_or_by_a_time(self):
        self.play_first_song()
        self.run_ctl("pause")
        for words, second in ((["90"], 90), (["1:00"], 60), (["+10"], 70), (["-1:05"], 5), (["-99"], 0), (["--", "-5"], 0)):
            with self.subTest(words):
                led = self.json("seek", *words)
                self.assertEqual((led["state"], led["position_ms"]), ("paused", second * 1000))
        self.assertIn(" at 1:00 / ", self.text("seek", "60"))
        self.assertIn("long", self.refused("seek", "59:59", code=USAGE))

    def calls_of(self, *words):
        """Counts the service calls that a run makes, by method."""
        self.run_ctl("sim", "calls", "--clear")
        self.run_ctl(*words)
        return collections.Counter(call["method"] for call in self.json("sim", "calls")["calls"])

    def test_toggle_pauses_and_resumes(self):
        self.play_first_song()
        self.assertEqual(self.json("toggle")["state"], "paused")
        self.assertEqual(self.json("toggle")["state"], "playing")

    def test_winding_moves_faster_than_time_and_ends(self):
        self.play_first_song()
        begin = self.json("seek", "60")["position_ms"]
        forward = self.json("ff", "0.5")
        self.assertEqual(forward["state"], "playing")
        self.assertGreater(forward["position_ms"], begin + 2000)
        self.assertLess(self.json("rw", "0.5")["position_ms"], forward["position_ms"] - 1000)
        self.assertRegex(self.text("ff", "0.1"), r"^playing: .+ at \d+:\d\d / \d+:\d\d\n$")

    def test_an_interrupted_wind_is_stopped(self):
        self.play_first_song()
        process = self.start("ff", "100")
        while not self.json("sim", "calls", "FastForward")["calls"]:
            time.sleep(0.05)
        process.send_signal(signal.SIGINT)
        self.end(process, code=130)
        self.assertEqual(self.json("status")["state"], "playing")

    def test_a_search_finds_names_by_their_initials(self):
        self.run_ctl("cd", "/Artists")
        level = self.json("ls", "--all")
        found = self.json("search", "zmx")
        self.assertEqual(found["entries"], [entry for entry in level["entries"] if entry["name"] == "周明轩"])
        self.assertEqual(found["count"], level["count"])
        self.assertIn("周明轩", self.text("search", "zhou ming"))
        self.assertEqual(self.refused("search", "qqq", code=NOTHING_DONE),
                         "no entry of the current level matches 'qqq'")

    def test_the_update_list_is_printed(self):
        self.run_ctl("cd", "/Artists")
        entries = self.json("ls", "--all")["entries"]
        self.assertEqual(self.json("update-list")["entries"], entries)
        self.assertEqual(self.text("update-list", "--names").splitlines(), [entry["name"] for entry in entries])

    def test_a_part_of_the_queue_is_printed(self):
        self.play_first_song()
        whole = self.json("queue")
        self.assertEqual(self.json("queue", "--all"), whole)
        self.assertEqual(self.json("queue", "--from", "1", "--count", "2"),
                         {**whole, "entries": whole["entries"][1:3]})
        last = whole["count"] - 1
        self.assertEqual(self.json("queue", "--from", str(last), "--count", "9")["entries"], whole["entries"][last:])
        self.assertEqual(self.refused("queue", "--from", str(last + 1), code=USAGE),
                         f"index {last + 1} is out of range: the playing list has entries 0 to {last}")

    def test_the_values_of_json_are_printed_as_keys(self):
        self.play_first_song()
        self.run_ctl("pause")
        for verb in ("status", "info"):
            with self.subTest(verb):
                answer = self.json(verb)
                keys = dict(line.split("=", 1) for line in self.text(verb, "--keys").splitlines())
                self.assertEqual(keys["verb"], verb)
                self.assertEqual(keys["track.title"], answer["track"]["title"])
                self.assertEqual(keys["position_ms"], str(answer["position_ms"]))
                self.assertEqual(self.run_ctl(verb, "--keys", "--json", code=USAGE).count(b"--keys"), 1)
        self.assertEqual(keys["index"], "0")
        keys = dict(line.split("=", 1) for line in self.text("status", "--keys").splitlines())
        self.assertEqual((keys["app"], keys["calls"]), ("", ""))
        self.assertEqual(keys["queue.1.name"], self.json("queue")["entries"][1]["name"])

    def test_colors_follow_the_option(self):
        self.play_first_song()
        self.bus.environment["NO_COLOR"] = "1"
        for words, painted in ((["queue"], "\033[1m> "), (["shm"], "\033[1m"), (["doctor"], "\033[32mok"),
                               (["events", "--count", "1"], "\033[36mprogress\033[0m")):
            with self.subTest(words):
                self.assertIn(painted, self.text("--color", "always", *words))
                for plain in ([], ["--color", "auto"], ["--color", "never"]):
                    self.assertNotIn("\033", self.text(*plain, *words))
        self.assertNotIn("\033", self.text("--color", "always", "--json", "queue"))

    def test_a_seek_is_one_call_beside_those_that_read_the_state(self):
        self.play_first_song()
        state = self.calls_of("info")
        self.assertEqual(set(state.values()), {1}, state)
        for words in (["seek", "90"], ["seek", "+10"], ["seek", "0"]):
            with self.subTest(words):
                self.assertEqual(self.calls_of(*words) - state, {"Seek": 1})

    def test_a_command_requests_only_what_it_prints(self):
        self.play_first_song()
        printed = {"GetPlayStatus": 1, "GetCurrentMediaInfo": 1}
        self.assertEqual(self.calls_of("pause"), {"Pause": 1, **printed})
        printed |= {"GetPlayPosition": 1, "GetPlayingTrackIdx": 1, "GetPlayingListItemsAmount": 1}
        self.assertEqual(self.calls_of("--json", "pause"), {"Pause": 1, **printed})

    def test_the_status_is_the_state_and_a_page_of_the_queue(self):
        self.play_first_song()
        state = self.calls_of("info")
        self.assertEqual(self.calls_of("status") - state, {"GetPlayingListItemsAmount": 1, "GetPlayingListItems": 1})

    def test_info_prints_the_whole_track(self):
        track = self.play_first_song()["track"]
        self.assertEqual(self.json("info")["track"], track)
        self.assertIn(f"genre    {track['genre']}\n", self.text("info"))

    def test_a_refused_audio_source_is_reported_and_nothing_plays(self):
        self.run_ctl("cd", "/Songs")
        self.bus.environment["QBX_SOURCE_REFUSE"] = "9"
        self.assertIn("audio-source manager refused with code 9", self.refused("play", "0", code=NOTHING_DONE))
        self.assertEqual(self.json("status")["state"], "stopped")

    # Modes

    def test_modes_are_shown_and_set(self):
        for verb, modes in (("shuffle", ["off", "songs", "albums"]), ("repeat", ["off", "one", "all"])):
            for mode in modes:
                self.assertEqual(self.json(verb, mode), {"verb": verb, "mode": mode})
                self.assertEqual(self.text(verb), f"{verb} {mode}\n")

    # The database

    def test_the_root_is_listed_with_marks_for_folders(self):
        self.assertIn("1  Artists/\n", self.text("ls"))
        level = self.json("ls")
        self.assertTrue(level["root"] and level["folder"])
        self.assertEqual(level["count"], len(level["entries"]))

    def test_pages_are_cut_out_of_a_level(self):
        self.run_ctl("cd", "/Songs")
        everything = self.json("ls", "--all")["entries"]
        self.assertEqual(self.json("ls", "--from", "3", "--count", "4")["entries"], everything[3:7])
        self.assertEqual(self.json("ls", "--from", str(len(everything) - 1))["entries"], everything[-1:])
        self.assertIn("out of range", self.refused("ls", "--from", str(len(everything)), code=USAGE))

    def test_pinyin_is_aligned(self):
        self.run_ctl("cd", "/Artists")
        entries = self.json("ls")["entries"]
        chinese = next(entry for entry in entries if entry["name"] == "周明轩")
        self.assertEqual(chinese["pinyin"].replace(" ", ""), "zhoumingxuan")
        lines = self.on_terminal("ls", size={"LINES": 24, "COLUMNS": 80}).splitlines()
        columns = {terminal_columns(line[:line.index(entry["pinyin"])])
                   for line, entry in zip(lines, entries) if "pinyin" in entry}
        self.assertEqual(len(columns), 1, lines)

    def test_pinyin_is_shown_for_all_or_for_none(self):
        self.run_ctl("cd", "/Artists")
        self.assertTrue(all("pinyin" in entry for entry in self.json("ls", "--pinyin")["entries"]))
        self.assertFalse(any("pinyin" in entry for entry in self.json("ls", "--no-pinyin")["entries"]))
        self.refused("ls", "--pinyin", "--no-pinyin", code=USAGE)

    def test_names_are_printed_alone_for_scripts(self):
        self.run_ctl("cd", "/Songs")
        names = [entry["name"] for entry in self.json("ls", "--all")["entries"]]
        self.assertEqual(self.text("ls", "--all", "--names").splitlines(), names)
        self.run_ctl("play", "0")
        self.assertEqual(self.text("queue", "--names").splitlines(), names)
        devices = [device["name"] for device in self.json("devices")["devices"]]
        self.assertEqual(self.text("devices", "--names").splitlines(), devices)

    def test_the_index_prints_where_letters_begin(self):
        self.run_ctl("cd", "/Songs")
        level = self.json("ls", "--index")
        entries = self.json("ls", "--all", "--pinyin")["entries"]
        self.assertEqual(sum(letter["count"] for letter in level["letters"]), level["count"])
        for letter in level["letters"]:
            with self.subTest(letter):
                self.assertEqual(entries[letter["index"]]["pinyin"][0].upper(), letter["label"])
        self.assertIn("C", [letter["label"] for letter in level["letters"]])
        self.assertRegex(self.text("ls", "--index"), r"(?m)^Z +\d+ +\d+ entr(y|ies) +\S")

    def test_levels_are_entered_by_index_name_pinyin_and_path(self):
        self.assertFalse(self.json("cd", "1")["root"])
        self.assertTrue(self.json("cd", "..")["root"])
        self.run_ctl("cd", "artists")
        self.run_ctl("cd", "zhou mingxuan")
        self.assertTrue(self.json("cd", "/")["root"])
        self.assertIn("folder", self.text("cd", "/Artists/周明轩"))
        self.assertIn("folder", self.text("cd", "../周明轩"))
        self.refused("cd", "/Artists/Nobody", code=USAGE)
        self.assertEqual(self.json("cd", "."), self.json("cd", "./"))
        self.assertEqual(self.failure("cd", "/Artists/../..", code=NOTHING_DONE),
                         ("the current level is already the root", "the current level is now '/'"))
        self.run_ctl("cd", "Artists")
        self.assertEqual(self.refused("cd", "../..", code=NOTHING_DONE), "the current level is already the root")
        self.assertEqual(self.failure("cd", "/Artists/Nobody", code=USAGE)[1], "the current level is now '/Artists/'")
        self.assertEqual(self.failure("cd", "./Nobody", code=USAGE)[1], "list it with 'ipodctl ls --all'")

    def test_a_level_that_cannot_be_entered_is_reported(self):
        self.assertIn("already the root", self.refused("cd", "..", code=NOTHING_DONE))
        self.assertIn("out of range", self.refused("cd", "99", code=USAGE))
        self.assertIn("no 'Nobody'", self.refused("cd", "Nobody", code=USAGE))
        self.assertIn("is a folder", self.refused("play", "0", code=NOTHING_DONE))
        self.run_ctl("cd", "/Songs")
        message, hint = self.failure("cd", "0", code=NOTHING_DONE)
        self.assertIn("cannot be entered", message)
        self.assertIn("ipodctl play 0", hint)
        self.assertIn("out of range", self.refused("play", "9999", code=USAGE))
        self.assertIn("no 'Nobody'", self.refused("play", "Nobody", code=USAGE))
        self.assertIn("no ''", self.refused("play", "", code=USAGE))

    def test_a_page_of_another_size_is_reported_with_a_likely_cause(self):
        self.run_ctl("cd", "/Songs")
        self.simulate("fault", "half-filled@GetCurDbListItems")
        self.assertIn("expected a page of 24 entries, got 12; another application may have read a list at the same time",
                      self.refused("ls", code=SERVICE_LOST))

    # The playing list

    def test_the_playing_list_is_shown_with_a_mark_and_jumped_within(self):
        self.assertEqual(self.text("queue"), "")
        self.play_first_song()
        self.assertEqual(self.json("queue", "2")["index"], 2)
        queue = self.json("queue")
        self.assertEqual(queue["playing"], 2)
        marked = [line for line in self.text("queue").splitlines() if line.startswith("> ")]
        self.assertEqual(len(marked), 1)
        self.assertIn(queue["entries"][2]["name"], marked[0])
        self.assertIn("out of range", self.refused("queue", "9999", code=USAGE))

    # Devices

    def test_devices_are_shown_and_chosen(self):
        name = self.json("devices")["devices"][0]["name"]
        self.assertEqual(self.text("devices"), f"0  {name}\n")
        self.assertEqual(self.json("devices", "0")["entered"], {"index": 0, "name": name})
        self.assertIn("out of range", self.refused("devices", "7", code=USAGE))

    def test_names_of_the_service_do_not_reach_the_terminal_raw(self):
        self.simulate("attach", "Evil\033[2J\u202eName")
        self.assertIn("Evil\ufffd[2J\ufffdName", self.text("devices"))
        raw = self.run_ctl("--json", "devices")
        self.assertNotIn(b"\033", raw)
        self.assertNotIn("\u202e".encode(), raw)
        self.assertEqual(json.loads(raw)["devices"][1]["name"], "Evil\033[2J\u202eName")

    def test_detections_are_shown(self):
        self.assertEqual(self.json("carplay")["status"], "not-detected")
        self.assertEqual(self.text("carlife"), "carlife device not-detected\n")
        self.simulate("carplay", "detected", "serial=F17")
        self.simulate("carlife", "unsupported")
        self.assertEqual(self.text("carplay"), "carplay device detected, serial number F17\n")
        self.assertEqual(self.json("carplay")["serial"], "F17")
        self.assertEqual(self.json("carlife")["status"], "unsupported")

    def test_buttons_and_the_hub_are_reached(self):
        self.assertEqual(self.json("button", "1", "--held", "500")["held_ms"], 500)
        self.assertEqual(self.text("hub", "0"), "hub test mode 0 sent\n")

    # Artwork

    def test_artwork_is_written_under_a_name_with_its_extension(self):
        self.play_first_song()
        answer = self.json("art", "cover")
        self.assertEqual((answer["file"], answer["type"]), ("cover.png", "image/png"))
        with open(os.path.join(self.folder, "cover.png"), "rb") as file:
            picture = file.read()
        self.assertEqual(len(picture), answer["bytes"])
        self.assertEqual(picture[:4], b"\x89PNG")
        size = (int.from_bytes(picture[16:20], "big"), int.from_bytes(picture[20:24], "big"))
        self.assertEqual(size, (answer["width"], answer["height"]))
        self.assertEqual(self.run_ctl("art", "-"), picture)
        self.assertTrue(self.text("art").startswith("artwork.png: image/png, "))
        self.assertIn("cannot write", self.refused("art", "/nonexistent/cover", code=USAGE))
        self.assertIn("cannot write '/dev/full'", self.refused("art", "/dev/full", code=NO_OUTPUT))

    def test_artwork_that_the_shared_memory_has_no_room_for_is_reported_as_absent(self):
        self.simulate("eap-open")
        data = self.file("data", bytes(1030000))
        self.simulate("eap-data", "1", f"hex=@{data}")
        self.assertFalse(self.play_first_song()["track"]["picture"])
        self.assertIn("the playing track has no artwork", self.refused("art", code=NOTHING_DONE))

    def test_incomplete_artwork_is_reported(self):
        self.play_first_song()
        self.simulate("fault", "half-filled@GetPlayingTrackAlbumArtwork")
        self.assertIn("the image is incomplete after ", self.refused("art", "half.png", code=SERVICE_LOST))
        self.assertEqual(os.listdir(self.folder), [])
        self.assertIn("300 x 300, incomplete\n", self.text("info"))

    def test_artwork_of_the_wrong_type_is_a_broken_answer(self):
        self.play_first_song()
        self.simulate("fault", "wrong-type@GetPlayingTrackAlbumArtwork")
        self.assertIn("sent an invalid answer: expected a record of ",
                      self.refused("art", "cover", code=SERVICE_LOST))
        self.assertEqual(os.listdir(self.folder), [])

    def test_artwork_gets_a_name_in_a_folder(self):
        self.play_first_song()
        folder = os.path.join(self.folder, "pictures")
        os.mkdir(folder)
        self.assertEqual(self.json("art", "--out", "pictures")["file"], "pictures/artwork.png")
        self.assertEqual(os.listdir(folder), ["artwork.png"])
        self.assertEqual(self.json("art", "--out", "x.jpg")["file"], "x.jpg")
        self.refused("art", "one", "--out", "two", code=USAGE)

    # Events

    def test_events_are_printed_one_per_line_until_the_count_is_reached(self):
        def cause():
            self.simulate("call", "ringing", "display-name=Li Lei", "remote-id=123")
            self.simulate("battery", "80", "charging-status=charging")
            self.simulate("wireless", "on", "address=00:11:22:33:44:55")
            self.simulate("pairing", "00:11:22:33:44:55", "hex=0a1b")
            self.simulate("location", "on")
            self.simulate("app", "com.example.maps")
            self.simulate("source", "off")
            self.simulate("carplay", "detected", "serial=F17")
            self.simulate("carlife", "detected")

        events = self.events(cause, "--no-progress", "--count", "9")
        self.assertEqual([event["event"] for event in events],
                         ["phone-call", "battery", "wireless-carplay", "pairing", "location", "foreground-app",
                          "source", "carplay", "carlife"])
        self.assertEqual((events[0]["status"], events[0]["name"]), ("ringing", "Li Lei"))
        self.assertEqual((events[1]["percent"], events[3]["hex"]), (80, "0a1b"))

    def test_playback_emits_track_list_state_modes_and_progress(self):
        def cause():
            self.play_first_song()
            self.run_ctl("shuffle", "songs")
            self.run_ctl("repeat", "all")

        names = {event["event"] for event in self.events(cause, "--no-progress", "--until", "repeat")}
        self.assertLessEqual({"track", "artwork", "queue-size", "play-status", "shuffle", "repeat"}, names)
        self.assertEqual(len(self.events(lambda: None, "progress", "--count", "2")), 2)

    def test_accessory_sessions_are_events_too(self):
        def cause():
            self.simulate("eap-open")
            self.simulate("eap-data", "1", "text=hi")
            self.simulate("eap-close", "1")

        events = self.events(cause, "--count", "3")
        self.assertEqual([event["event"] for event in events], ["eap-start", "eap-data", "eap-stop"])
        self.assertEqual(events[1]["hex"], b"hi".hex())

    def test_events_are_chosen_by_name(self):
        def cause():
            self.simulate("location", "on")
            self.simulate("battery", "5")
            self.simulate("app", "com.example.maps")

        self.assertEqual([event["event"] for event in self.events(cause, "battery", "foreground-app", "--count", "2")],
                         ["battery", "foreground-app"])
        self.refused("events", "weather", code=USAGE)

    def test_events_end_with_the_awaited_one(self):
        def cause():
            self.simulate("location", "on")
            self.simulate("battery", "5")
            self.simulate("location", "off")

        names = [event["event"] for event in self.events(cause, "--no-progress", "--until", "battery")]
        self.assertEqual(names, ["location", "battery"])
        self.assertIn("no event 'track'",
                      self.refused("events", "--no-progress", "--until", "track", "--timeout", "0.3", code=NOTHING_DONE))

    def test_events_are_printed_by_a_template(self):
        track = self.play_first_song()["track"]
        process = self.follow("events", "battery", "--count", "1", "--format",
                              '{{ title }}|{{ duration(length) }}|{{ charging | default: "?" }}|{{ percent }}')
        self.simulate("battery", "5")
        out, _ = self.end(process)
        minutes, seconds = divmod(track["length_ms"] // 1000, 60)
        self.assertEqual(out.decode(), f"{track['title']}|{minutes}:{seconds:02}|?|5\n")

    def test_the_status_is_printed_by_a_template_with_the_same_names(self):
        track = self.play_first_song()["track"]
        self.assertEqual(self.text("status", "--format", "{{ state }} {{ title }} {{ length }} {{ index }} {{ percent }}."),
                         f"playing {track['title']} {track['length_ms']} 0 .\n")
        self.assertRegex(self.text("status", "--format", "{{ clock }}"), r"^\d\d:\d\d:\d\d\.\d{3}\n$")

    def test_a_template_error_is_reported_with_its_column(self):
        out, err = self.end(self.start("events", "--format", "a {{ b }}"), code=USAGE)
        self.assertEqual(out, b"")
        self.assertIn("column 6: expected a field", err)

    def test_events_run_a_command_with_their_fields(self):
        self.play_first_song()
        process = self.follow("events", "battery", "--count", "2", "--exec",
                              'echo "$IPOD_EVENT $IPOD_PERCENT $IPOD_STATE"; cat')
        self.simulate("battery", "5")
        self.simulate("battery", "6")
        out, _ = self.end(process)
        lines = out.decode().splitlines()
        self.assertEqual([lines[0], lines[2]], ["battery 5 playing", "battery 6 playing"])
        self.valid(lines[1])
        self.assertEqual(json.loads(lines[3])["percent"], 6)

    def test_an_interrupt_ends_the_command_and_all_that_it_started_and_begins_no_other(self):
        for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
            with self.subTest(number):
                # The command prints only when the shell is already waiting for it: a shell that is interrupted earlier
                # still starts the command.
                slow = "import os, time; print(os.environ['IPOD_PERCENT'], flush=True); time.sleep(300)"
                process = self.follow("events", "battery", "--exec", f'"{sys.executable}" -c "{slow}"; echo survived')
                self.simulate("battery", "5")
                self.simulate("battery", "6")
                self.assertEqual(line_within(process.stdout, LIMIT), b"5\n")
                process.send_signal(number)
                # The output ends when the last process that holds the pipe has exited.
                out, err = self.end(process)
                self.assertEqual(out, b"")
                self.assertNotIn("ipodctl:", err)

    def test_a_command_that_ignores_the_first_interrupt_is_killed_by_the_second(self):
        process = self.follow("events", "battery", "--exec", "trap '' INT; echo begun; sleep 300; echo survived")
        self.simulate("battery", "5")
        self.assertEqual(line_within(process.stdout, LIMIT), b"begun\n")
        process.send_signal(signal.SIGINT)
        with self.assertRaises(subprocess.TimeoutExpired):
            process.wait(0.5)
        self.assertEqual(self.interrupt(process)[0], b"")

    def test_no_further_command_starts_when_the_time_is_up(self):
        began = time.monotonic()
        self.simulate("battery", "5")
        once = time.monotonic() - began
        process = self.follow("events", "battery", "--timeout", str(0.5 + 3 * once), "--exec",
                              f'echo "$IPOD_PERCENT"; sleep {1 + 3 * once}; echo ended')
        self.simulate("battery", "6")
        self.simulate("battery", "7")
        out, _ = self.end(process)
        self.assertEqual(out, b"6\nended\n")

    def test_following_ends_with_its_time(self):
        self.assertEqual(self.run_ctl("events", "--no-progress", "--timeout", "0.3"), b"")
        self.assertIn("0 of 2", self.refused("events", "--count", "2", "--timeout", "0.3", code=NOTHING_DONE))

    def test_following_ends_with_ctrl_c(self):
        process = self.follow("events")
        self.simulate("battery", "5")
        self.assertIn("battery", line_within(process.stdout, LIMIT).decode())
        _, err = self.interrupt(process)
        self.assertNotIn("ipodctl:", err)

    def test_following_ends_when_the_reader_is_gone(self):
        process = self.follow("events")
        process.stdout.close()
        self.assertEqual(process.wait(timeout=LIMIT), DONE)
        self.assertNotIn(b"ipodctl:", process.stderr.read())
        process.stderr.close()

    def test_a_partly_read_list_is_not_a_failure(self):
        self.run_ctl("cd", "/Songs")
        process = self.start("ls", "--all")
        process.stdout.close()
        self.assertEqual(process.wait(timeout=LIMIT), DONE)
        self.assertEqual(process.stderr.read(), b"")
        process.stderr.close()

    # Accessory sessions

    def test_an_echo_comes_back(self):
        self.assertEqual(self.text("eap", "echo", "hello"), "hello\n")
        self.assertEqual(self.json("eap", "echo", "你好")["received"], "你好")

    def test_an_echo_reports_a_service_that_dies(self):
        self.simulate("fault", "crash@EapWrite")
        out, err = self.end(self.start("eap", "echo", "hello"), code=SERVICE_LOST)
        self.assertEqual(out, b"")
        self.assertIn("the iPod service disappeared", err)

    def test_a_session_is_announced_launched_and_written_to(self):
        self.assertIn("announce", self.failure("eap", "launch", "com.example.app", code=NOTHING_DONE)[1])
        self.json("eap", "init", "com.example.echo", "com.example.app")
        listener = self.follow("eap", "listen", "--count", "2", "--timeout", str(LIMIT))
        self.json("eap", "launch", "com.example.app")
        self.assertEqual(self.json("eap", "write", "1", data=b"from stdin")["bytes"], 10)
        out, _ = self.end(listener)
        self.assertRegex(out.decode(), r"eap-start .*session 1, protocol 0\n.*eap-data .*10 bytes: from stdin\n$")

    def test_a_bridge_carries_bytes_both_ways_and_ends_with_its_input(self):
        data = bytes(range(256)) * 2000
        self.assertEqual(self.run_ctl("eap", "bridge", data=data), data)

    def test_a_bridge_sends_smaller_pieces_where_the_shared_memory_has_little_room(self):
        self.simulate("eap-open")
        filling = self.file("filling", bytes(self.free_bytes() - 40000))
        self.simulate("eap-data", "1", f"hex=@{filling}")
        self.simulate("eap-close", "1")
        self.assertLess(self.free_bytes(), 3 * 16384)
        data = bytes(range(256)) * 400
        self.assertEqual(self.run_ctl("eap", "bridge", data=data), data)

    def test_a_second_sender_is_refused_while_a_bridge_is_open(self):
        first = self.start("eap", "bridge", stdin=subprocess.PIPE)
        first.stdin.write(b"x")
        first.stdin.flush()
        self.assertEqual(os.read(first.stdout.fileno(), 100), b"x")
        for words in (["eap", "bridge"], ["eap", "echo", "hello"], ["eap", "write", "1"]):
            with self.subTest(words):
                self.assertEqual(self.failure(*words, code=NO_SEGMENTS),
                                 ("cannot send: another ipodctl is using the accessory buffers",
                                  "wait until its 'eap bridge', 'eap echo', or 'eap write' ends"))
        self.assertEqual(self.end(first, data=b"still here")[0], b"still here")
        self.assertEqual(self.text("eap", "echo", "hello"), "hello\n")

    def test_a_bridge_with_a_full_output_is_reported(self):
        self.assert_output_error_is_reported("eap bridge", ">/dev/full", "No space left on device", input=b"hi")

    def test_a_bridge_ends_with_the_session(self):
        process = self.start("--verbose", "eap", "bridge", "--no-launch", stdin=subprocess.PIPE)
        self.await_line(process.stderr, b"session Ready")
        time.sleep(0.3)
        self.simulate("eap-open")
        self.simulate("eap-data", "1", "text=from the device")
        self.assertEqual(os.read(process.stdout.fileno(), 100), b"from the device")
        self.simulate("eap-close", "1")
        self.end(process)

    def test_a_bridge_reports_when_the_service_leaves(self):
        process = self.start("eap", "bridge", stdin=subprocess.PIPE)
        process.stdin.write(b"x")
        process.stdin.flush()
        self.assertEqual(os.read(process.stdout.fileno(), 100), b"x")
        self.simulator.kill()
        _, err = self.end(process, code=SERVICE_LOST)
        self.assertRegex(err, r"^ipodctl: [^\n]+\n$")

    def test_a_bridge_serves_clients_of_a_socket_one_after_the_other(self):
        path = os.path.join(self.folder, "socket")
        process = self.start("eap", "bridge", "--socket", path, "--linger", "0.2")
        for text in (b"first", b"second" * 20000):
            self.assertEqual(self.exchange(path, text), text)
        self.assertEqual(os.stat(path).st_mode & 0o777, 0o600)
        self.interrupt(process)
        self.assertFalse(os.path.exists(path))

    def test_a_bridge_reuses_the_socket_of_one_that_was_killed(self):
        path = os.path.join(self.folder, "socket")
        killed = self.start("eap", "bridge", "--socket", path)
        self.assertEqual(self.exchange(path, b"first"), b"first")
        killed.kill()
        killed.communicate(timeout=LIMIT)
        self.assertTrue(os.path.exists(path))
        process = self.start("eap", "bridge", "--socket", path)
        self.assertEqual(self.exchange(path, b"second"), b"second")
        self.interrupt(process)
        self.assertFalse(os.path.exists(path))

    def exchange(self, path, text):
        """Sends text to a socket and returns what comes back. The socket refuses clients until its server listens."""
        with socket.socket(socket.AF_UNIX) as client:
            client.settimeout(LIMIT)
            self.assertTrue(within(LIMIT, lambda: client.connect_ex(path) == 0))
            threading.Thread(target=client.sendall, args=(text,)).start()
            got = b""
            while len(got) < len(text):
                got += client.recv(65536)
            return got

    def test_a_socket_that_cannot_be_created_is_reported(self):
        self.assertIn("cannot create the socket",
                      self.refused("eap", "bridge", "--socket", "/nonexistent/socket", code=USAGE))
        self.file("file")
        self.assertIn("cannot create the socket 'file': it exists and is not a socket",
                      self.refused("eap", "bridge", "--socket", "file", code=USAGE))

    def test_bytes_that_cannot_be_sent_are_reported(self):
        self.assertIn("session 77", self.refused("eap", "write", "77", data=b"x", code=NOTHING_DONE))
        self.assertIn("shared memory has no room", self.refused("eap", "write", "77", data=b"x", code=NOTHING_DONE))
        self.assertIn("cannot read", self.refused("eap", "write", "1", "/nonexistent", code=USAGE))

    def test_more_than_the_shared_memory_holds_is_rejected_in_advance(self):
        self.simulate("eap-open")
        free = self.free_bytes()
        for size in (3000000, 2000000, 614400):
            refusal = self.refused("eap", "write", "1", data=bytes(size), code=NO_SEGMENTS)
            self.assertRegex(refusal, rf"shared memory: the write buffer has no room for {size} bytes at once; at most \d+ fit")
            self.assertEqual(self.free_bytes(), free)
        most = int(re.search(r"at most (\d+) fit", refusal).group(1))
        self.json("eap", "write", "1", data=bytes(most))
        self.assertEqual(self.text("eap", "echo", "hello"), "hello\n")

    def free_bytes(self):
        segments = {segment["name"]: segment for segment in self.json("shm")["segments"]}
        return segments["BufferVectorSharedMemory"]["free"]

    # Calls

    def test_calls_of_a_method_that_the_contract_lacks_are_a_usage_error(self):
        self.run_ctl("next", code=NOTHING_DONE)
        self.assertIn("  Next  ", self.text("sim", "calls", "Next"))
        self.assertEqual(self.failure("sim", "calls", "Nexxt", code=USAGE),
                         ("unknown method 'Nexxt'", "did you mean 'Next'?"))
        self.assertEqual(self.failure("sim", "calls", "Nope!", code=USAGE),
                         ("unknown method 'Nope!'", "try 'ipodctl sim calls'"))

    # Scenarios

    def test_an_error_in_a_scenario_is_reported_with_its_file_and_line(self):
        scenario = self.file("wrong.json", b'{\n"steps": [}')
        self.assertIn(f"{scenario}: line 2, column ", self.refused("sim", "scenario", scenario, code=USAGE))

    def test_a_scenario_may_have_eight_mebibytes(self):
        scenario = self.file("long.json", b'{"steps": []}' + b" " * (7 << 20))
        self.run_ctl("sim", "scenario", scenario)
        self.file("long.json", b'{"steps": []}' + b" " * (8 << 20))
        self.assertIn("longer than 8388608 bytes", self.refused("sim", "scenario", scenario, code=USAGE))

    # Shared memory

    def test_the_contents_of_segments_are_printed(self):
        self.run_ctl("cd", "/Songs")
        names = [entry["name"] for entry in self.json("ls", "--all")["entries"]]
        segments = {segment["name"]: segment for segment in self.json("shm")["segments"]}
        lists = {vector["name"]: vector for vector in segments["ListVectorSharedMemory"]["vectors"]}
        self.assertEqual(lists["VecDBListShareMemory"]["elements"], len(names))
        self.assertGreater(segments["BufferVectorSharedMemory"]["free"], 0)
        self.assertEqual(self.json("shm", "--dump", "VecDBListShareMemory")["names"], names)
        self.assertIn("VecDBListShareMemory", self.text("shm"))
        self.json("eap", "echo", "Hello, world")
        self.assertIn("48 65 6c 6c 6f", self.text("shm", "--dump", "VecEapReadBufferShareMemory"))
        self.assertEqual(self.json("shm", "--dump", "VecEapReadBufferShareMemory")["hex"], b"Hello, world".hex())
        self.refused("shm", "--dump", "VecNothing", code=USAGE)

    def test_garbage_in_the_segments_is_reported(self):
        self.run_ctl("cd", "/Songs")
        self.run_ctl("ls", "--all")
        path = "/dev/shm/ListVectorSharedMemory"
        with open(path, "r+b") as segment:
            size = os.path.getsize(path)
            segment.seek(256)
            segment.write(os.urandom(size - 256))
        for words in (["shm"], ["shm", "--dump", "VecDBListShareMemory"]):
            self.valid(self.end(self.start("--json", *words), code=NO_SEGMENTS)[0])

    def test_missing_segments_are_reported(self):
        clear_shared_memory()
        out, err = self.end(self.start("--json", "shm"), code=NOTHING_DONE)
        self.assertEqual(err, "")
        missing = json.loads(out)["segments"]
        self.assertEqual([(segment["there"], segment["problem"]) for segment in missing],
                         [(False, "it does not exist")] * 2)
        self.assertIn("\nhint: start the service", self.end(self.start("shm"), code=NOTHING_DONE)[0].decode())
        self.assertEqual(self.failure("shm", "--dump", "VecDBListShareMemory", code=NO_SEGMENTS),
                         ("segment ListVectorSharedMemory does not exist", "start the service"))
        self.assertEqual(segments(), [])

    def test_a_segment_that_is_not_memory_is_not_reported_as_missing(self):
        clear_shared_memory()
        path = "/dev/shm/ListVectorSharedMemory"
        os.mkfifo(path)
        self.addCleanup(os.remove, path)
        self.assertEqual(self.refused("shm", "--dump", "VecDBListShareMemory", code=NO_SEGMENTS),
                         "segment ListVectorSharedMemory: it exists and is not shared memory")

    # Latencies

    def test_commands_are_measured_and_nothing_is_changed(self):
        self.play_first_song()
        self.run_ctl("pause")
        before = self.json("status")
        bench = self.json("bench", "--count", "20", "--pages")
        self.assertEqual(bench["calls"], 20)
        self.assertGreaterEqual(len(bench["commands"]), 16)
        for command in bench["commands"]:
            times = [command[name] for name in ("least_us", "p50_us", "p99_us", "most_us")]
            self.assertEqual(times, sorted(times))
        self.assertEqual(self.json("status"), before)
        self.assertIn("read-only", self.text("bench", "--count", "2"))

    # Misbehaving service

    def test_an_error_of_the_service_is_reported_unchanged(self):
        self.simulate("fault", "error=com.example.Busy")
        for words in (["next"], ["cd", ".."], ["cd", "/"], ["pause"], ["art"]):
            with self.subTest(words):
                self.assertIn("the service refused: GDBus.Error:com.example.Busy: ",
                              self.refused(*words, code=NOTHING_DONE))

    def restart_simulator(self):
        stop(self.simulator)
        self.start_simulator()

    def test_events_continue_when_the_service_restarts(self):
        process = self.follow("events", "--no-progress", "--count", "4")
        self.simulate("battery", "1")
        for level in ("2", "3", "4"):
            self.restart_simulator()
            self.await_line(process.stderr, b"connected to the iPod service; following")
            self.simulate("battery", level)
        out, _ = self.end(process)
        self.assertEqual(re.findall(r"battery +percent (\d)", out.decode()), ["1", "2", "3", "4"])

    def test_restarts_are_lines_among_the_events_in_json(self):
        process = self.follow("--json", "events", "--no-progress", "--count", "1")
        self.restart_simulator()
        self.await_line(process.stdout, b'"ready"', keep=(lines := []))
        self.simulate("battery", "7")
        out, _ = self.end(process)
        events = [self.valid(line) for line in lines + out.splitlines()]
        self.assertEqual([(event["event"], event.get("state")) for event in events],
                         [("service", "lost"), ("service", "ready"), ("battery", None)])

    def test_a_service_that_comes_late_is_waited_for_on_request(self):
        self.assertEqual(self.run_ctl("events", "--wait", "--no-progress", "--timeout", "0.3"), b"")
        stop(self.simulator)
        process = self.start("events", "--wait", "--no-progress", "--count", "1")
        self.await_line(process.stderr, b"no iPod service yet")
        self.start_simulator()
        self.await_line(process.stderr, b"connected to the iPod service; following")
        self.simulate("battery", "9")
        out, _ = self.end(process)
        self.assertIn(b"percent 9", out)

    def test_unreported_fields_are_named(self):
        self.play_first_song()
        self.simulate("fault", "long-record@GetCurrentMediaInfo")
        out, err = self.end(self.start("status"))
        self.assertRegex(err, r"^ipodctl: the service did not report the track: [^\n]*invalid answer[^\n]*\n$")
        self.assertIn(b"queue 1 of ", out)
        self.assertIn("invalid answer", self.refused("info", code=SERVICE_LOST))
        self.simulate("fault", "error=com.example.Busy@GetDeviceAmount")
        out, err = self.end(self.start("--json", "status"))
        self.assertIn("report the track, the devices", err)
        self.assertIsNone(self.valid(out)["devices"])

    def test_refused_fields_are_null_and_have_a_reason(self):
        self.play_first_song()
        for method, field, what in (("GetIpodAppBundleName", "app", "the app"),
                                    ("GetCarplayDeviceDetectStatus", "carplay", "CarPlay"),
                                    ("GetCarlifeDeviceDetectStatus", "carlife", "CarLife"),
                                    ("GetIpodName", "device", "the device name"),
                                    ("GetPlayingListItems", "queue", "the queue"),
                                    ("GetPlayingTrackAlbumArtwork", "picture", "the artwork")):
            with self.subTest(method):
                self.simulate("fault", f"error=com.example.Busy@{method}")
                out, err = self.end(self.start("--json", "status"))
                self.simulate("clear-faults")
                self.assertRegex(err, rf"^ipodctl: the service did not report {what}: .*com\.example\.Busy")
                self.assertIsNone(self.valid(out)[field])

    def test_a_mute_service_is_reported_without_a_list_of_its_fields(self):
        self.simulate("fault", "no-reply")
        self.assertEqual(self.refused("--deadline", "0.2", "status", code=SERVICE_LOST),
                         "the iPod service did not answer in time: no request was answered")

    def test_a_silent_service_is_reported(self):
        self.play_first_song()
        self.simulate("fault", "error=com.example.Busy")
        for words in (["status"], ["info"]):
            self.assertIn("GDBus.Error:com.example.Busy: ", self.refused(*words, code=NOTHING_DONE))
        self.simulate("clear-faults")
        self.simulate("fault", "wrong-type")
        for words in (["status"], ["bench", "--count", "1"]):
            self.assertIn("sent an invalid answer", self.refused(*words, code=SERVICE_LOST))

    def test_a_simulator_that_hangs_is_reported_after_the_deadline(self):
        self.hang()
        began = time.monotonic()
        self.assertIn("the simulator did not answer",
                      self.refused("--deadline", "0.3", "sim", "calls", code=SERVICE_LOST))
        self.assertLess(time.monotonic() - began, 8)

    def test_a_service_that_hangs_is_reported_after_the_deadline(self):
        self.hang()
        for words in (["status"], ["pause"], ["ls"], ["events"], ["art"]):
            with self.subTest(words):
                began = time.monotonic()
                self.assertIn("did not answer in time",
                              self.refused("--deadline", "0.3", *words, code=SERVICE_LOST))
                self.assertLess(time.monotonic() - began, 10)

    def test_a_service_that_dies_during_a_call_is_reported(self):
        began = time.monotonic()
        self.run_ctl("status")
        once = time.monotonic() - began
        self.hang()
        process = self.start("status")
        time.sleep(0.5 + 2 * once)
        self.assertIsNone(process.poll())
        self.simulator.kill()
        out, err = self.end(process, code=SERVICE_LOST)
        self.assertEqual(out, b"")
        self.assertIn("disappeared", err)

    def test_a_service_that_dies_before_it_is_watched_is_reported(self):
        # The full pipe stops ipodctl at the log record of its first question: whether there is a service.
        errors, full = os.pipe()
        with os.fdopen(errors, "rb") as errors:
            os.write(full, bytes(fcntl.fcntl(full, fcntl.F_GETPIPE_SZ)))
            process = subprocess.Popen([OPTIONS.ipodctl, "--verbose", "status"], env=self.bus.environment,
                                       stdout=subprocess.DEVNULL, stderr=full)
            os.close(full)
            time.sleep(0.5)
            self.simulator.kill()
            self.simulator.wait()
            began = time.monotonic()
            printed = errors.read().lstrip(b"\0").decode()
        self.assertIn("\nipodctl: no iPod service on the bus: nobody owns com.zarn.linux.ipod\n", printed)
        self.assertEqual(process.wait(LIMIT), NO_SERVICE)
        self.assertLess(time.monotonic() - began, 10)

    def test_a_service_that_dies_during_a_list_is_reported_once(self):
        self.run_ctl("cd", "/Songs")
        self.simulate("fault", "crash@GetCurDbListItems")
        self.assertEqual(self.end(self.start("ls"), code=SERVICE_LOST),
                         (b"", "ipodctl: the iPod service disappeared: it left the bus before it answered\n"
                               "hint: check whether the service is running, then try again\n"))

    def test_a_bus_that_disappears_while_events_are_followed_is_reported(self):
        process = self.follow("events", "--no-progress")
        self.bus.daemon.kill()
        _, err = self.end(process, code=SERVICE_LOST)
        self.assertIn("bus closed", err)

    def test_segments_that_cannot_be_attached_are_reported(self):
        for name in segments():
            os.rename(f"/dev/shm/{name}", f"/dev/shm/{name}.hidden")
        os.mkdir("/dev/shm/ListVectorSharedMemory")
        self.addCleanup(os.rmdir, "/dev/shm/ListVectorSharedMemory")
        self.assertIn("shared memory", self.refused("status", code=NO_SEGMENTS))

    # Output streams

    def test_verbose_shows_the_log_on_standard_error_only(self):
        out, err = self.end(self.start("--verbose", "art", "--json"), code=NOTHING_DONE)
        self.assertIn("DEBUG ipodkit", err)
        self.valid(out)

    def test_verbose_shows_the_requests_of_every_verb(self):
        for words, record in ((["pause"], r" GetPlayStatus\(\) took \d+\.\d ms\n"),
                              (["ls"], r" GetCurDbListItemsAmount\(.*\) took "),
                              (["play", "99"], r"(?m) PlayDbList\(|99 is not in the list|^ipodctl: "),
                              (["doctor"], r" org\.freedesktop\.DBus\.GetNameOwner\(\) took "),
                              (["sim", "calls"], r" com\.zarn\.linux\.ipod\.Simulator\.Calls\(\) took "),
                              (["sim", "button", "x"], r"Simulator\.Do\(\) failed after \d+\.\d ms: .*x")):
            with self.subTest(words):
                _, err = self.start("--verbose", *words).communicate(timeout=LIMIT)
                self.assertRegex(err.decode(), record)

    def test_the_environment_chooses_level_and_file_of_the_log(self):
        log = os.path.join(self.folder, "log")
        for config, in_file, on_screen in ((f"INFO:{log}", True, False), (f"DEBUG:{log}", True, False),
                                           ("DEBUG", False, True), ("/missing/zlog.conf", False, False)):
            with self.subTest(config):
                self.bus.environment["QBX_LOG"] = config
                out, err = self.end(self.start("art", "--json"), code=NOTHING_DONE)
                self.valid(out)
                written = ""
                if in_file:
                    with open(log, encoding="utf-8") as file:
                        written = file.read()
                    os.remove(log)
                for text, expected in ((written, in_file), (err, on_screen)):
                    self.assertEqual("INFO  libipod/QBXIpod_MediaPlayer_Client InitShareMemory" in text, expected, text)
                self.assertEqual("DEBUG ipodkit" in written + err, config.startswith("DEBUG"))
                self.assertEqual("QBX_LOG='/missing/zlog.conf': " in err, config == "/missing/zlog.conf")
                self.assertEqual(os.listdir(self.folder), [])

    def test_a_terminal_gets_color_unless_it_is_disabled(self):
        self.play_first_song()
        self.assertIn("\033[", self.on_terminal("status"))
        self.assertNotIn("\033", self.on_terminal("status", "--json"))
        self.bus.environment["NO_COLOR"] = "1"
        self.assertNotIn("\033", self.on_terminal("status"))

    def test_progress_is_one_line_of_a_terminal(self):
        self.play_first_song()
        shown = self.on_terminal("events", "--count", "2", "--timeout", str(LIMIT))
        self.assertRegex(shown, r"^(\r\033\[K\[=*> *\] 0:0\d / \d+:\d\d){2}\r\n$")
        shown = self.on_terminal("events", "--count", "2", "--timeout", str(LIMIT), LC_ALL="C.UTF-8")
        self.assertRegex(shown, r"^(\r\033\[K━*╸?─* 0:0\d / \d+:\d\d){2}\r\n$")

    def test_progress_keeps_within_a_terminal_that_was_made_narrower(self):
        self.play_first_song()
        main, terminal = pty.openpty()
        self.addCleanup(os.close, main)
        fcntl.ioctl(main, termios.TIOCSWINSZ, struct.pack("HHHH", 24, 80, 0, 0))
        process = subprocess.Popen([OPTIONS.ipodctl, "events", "progress", "--count", "2"], stdout=terminal,
                                   env={**self.bus.environment, "TERM": "xterm", "LC_ALL": "C"})
        os.close(terminal)
        self.assertGreater(len(os.read(main, 4096).removeprefix(b"\r\033[K")), 40)
        fcntl.ioctl(main, termios.TIOCSWINSZ, struct.pack("HHHH", 24, 40, 0, 0))
        self.assertLessEqual(len(os.read(main, 4096).removeprefix(b"\r\033[K").rstrip()), 40)
        self.assertEqual(process.wait(timeout=LIMIT), DONE)

    def on_terminal(self, *words, size=None, interrupt_at=None, times=2, **environment):
        main, terminal = pty.openpty()
        if size:
            fcntl.ioctl(terminal, termios.TIOCSWINSZ, struct.pack("HHHH", size["LINES"], size["COLUMNS"], 0, 0))
        process = subprocess.Popen([OPTIONS.ipodctl, *words], stdout=terminal, stderr=terminal,
                                   env={**self.bus.environment, "TERM": "xterm", "LC_ALL": "C", **environment})
        os.close(terminal)
        shown = b""
        while select.select([main], [], [], LIMIT)[0]:
            try:
                shown += os.read(main, 4096)
            except OSError:
                break
            if interrupt_at and shown.count(interrupt_at.encode()) >= times:
                process.send_signal(signal.SIGINT)
                interrupt_at = None
        os.close(main)
        self.assertEqual(process.wait(timeout=LIMIT), DONE)
        return shown.decode()


class Doctor:
    """Checks the findings and exit codes of doctor, and validates each answer against the schema."""

    def examine(self, code, *options):
        process = self.start("--json", *options, "doctor")
        out, err = process.communicate(timeout=LIMIT)
        # QEMU adds its own line when a signal kills a process.
        err = re.sub(rb"qemu: uncaught target signal .*\n", b"", err)
        self.assertEqual((process.returncode, err), (code, b""), out)
        answer = self.valid(out)
        return {finding["check"]: finding for finding in answer["checks"]}

    def assert_problem(self, finding, text):
        self.assertEqual(finding["state"], "error")
        self.assertIn(text, finding["text"])
        self.assertIn("/dev/shm/", finding["advice"])


class DoctorWithoutAService(Doctor, OnABus):
    def test_no_bus_is_a_problem(self):
        self.bus.environment["DBUS_SESSION_BUS_ADDRESS"] = "unix:path=/nonexistent/bus"
        bus = self.examine(NO_BUS)["bus"]
        self.assertEqual((bus["state"], bus["advice"]),
                         ("error", "set DBUS_SESSION_BUS_ADDRESS to the service's bus"))

    def test_no_service_is_a_problem_and_nothing_is_created(self):
        findings = self.examine(NO_SERVICE)
        self.assertEqual(findings["service"]["state"], "error")
        self.assertEqual(findings["lists"]["state"], "warning")
        self.assertEqual(segments(), [])


class DoctorWithTheSimulator(Doctor, OnABusWithTheSimulator):
    def test_all_is_well(self):
        self.assertEqual({finding["state"] for finding in self.examine(DONE).values()}, {"ok"})
        self.assertRegex(self.text("doctor"), r"(?m)^bus      ok  connected to the session bus$(?s:.*)^build        contract ")

    def test_the_guide_shows_the_present_contract(self):
        guide = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "docs", "ipodctl.md")
        with open(guide, encoding="utf-8") as file:
            self.assertIn(re.search("contract [0-9a-f]{12}", self.text("doctor"))[0], file.read())

    def test_a_service_that_hangs_is_a_problem(self):
        self.hang()
        service = self.examine(SERVICE_LOST, "--deadline", "0.3")["service"]
        self.assertEqual(service["state"], "error")
        self.assertIn("did not answer in time", service["text"])

    def test_a_service_that_refuses_is_a_warning(self):
        self.run_ctl("sim", "fault", "error=com.example.Busy@GetPlayStatus")
        service = self.examine(NOTHING_DONE)["service"]
        self.assertIn("com.example.Busy", service["text"])

    def test_a_segment_replaced_under_the_service_is_an_error(self):
        path = "/dev/shm/ListVectorSharedMemory"
        shutil.copyfile(path, path + ".new")
        os.remove(path)
        self.assert_problem(self.examine(NO_SEGMENTS)["lists"], "uses an object that was removed or replaced")
        os.chmod(path + ".new", 0o644)
        os.rename(path + ".new", path)
        self.assert_problem(self.examine(NO_SEGMENTS)["lists"], "uses an object that was removed or replaced")

    def test_a_segment_that_is_nearly_full_is_a_warning(self):
        data = self.file("data", bytes(950000))
        self.run_ctl("sim", "eap-open")
        self.run_ctl("sim", "eap-data", "1", f"hex=@{data}")
        buffers = self.examine(NOTHING_DONE)["buffers"]
        self.assertEqual(buffers["state"], "warning")
        self.assertRegex(buffers["text"], r"only \d+ bytes free")
        self.assertIn("remove /dev/shm/BufferVectorSharedMemory", buffers["advice"])

    def test_another_mode_is_a_warning(self):
        os.chmod("/dev/shm/ListVectorSharedMemory", 0o666)
        self.assertEqual(self.examine(NOTHING_DONE)["lists"]["state"], "warning")

    def test_an_object_longer_than_its_segment_is_a_warning(self):
        path = "/dev/shm/ListVectorSharedMemory"
        os.truncate(path, os.path.getsize(path) + 4096)
        lists = self.examine(NOTHING_DONE)["lists"]
        self.assertEqual(lists["state"], "warning")
        self.assertIn("expected mode 0644", lists["advice"])

    def test_another_owner_is_a_problem(self):
        try:
            os.chown("/dev/shm/ListVectorSharedMemory", 65534, 65534)
        except OSError:
            self.skipTest("only root can change the owner of a file, and only to a user of this namespace")
        self.assertIn("as one user", self.examine(NO_SEGMENTS)["lists"]["advice"])

    def test_a_cut_segment_is_a_problem_and_does_not_end_the_doctor(self):
        os.truncate("/dev/shm/ListVectorSharedMemory", 100)
        self.assert_problem(self.examine(NO_SEGMENTS)["lists"], "damaged")

    def test_a_vector_whose_elements_are_outside_the_segment_is_a_problem(self):
        facts = {fact["name"]: fact["value"] for fact in self.json("fingerprint")["facts"]}
        name = int(re.search(r"at (\d+)", facts["name of a vector"]).group(1))
        capacity = int(re.search(r"capacity at (\d+)", facts["inside a vector"]).group(1))
        with open("/dev/shm/ListVectorSharedMemory", "r+b") as segment:
            vector = segment.read().index(b"VecDBListShareMemory\0") - name
            segment.seek(vector + capacity)
            segment.write(b"\0\0\0\x7f")
        self.assert_problem(self.examine(NO_SEGMENTS)["lists"], "VecDBListShareMemory: its elements are outside")

    def test_an_empty_object_is_a_problem_and_does_not_hang_the_doctor(self):
        os.remove("/dev/shm/BufferVectorSharedMemory")
        open("/dev/shm/BufferVectorSharedMemory", "wb").close()
        self.assert_problem(self.examine(NO_SEGMENTS)["buffers"], "does not answer")

    def test_a_fifo_is_a_problem(self):
        os.remove("/dev/shm/BufferVectorSharedMemory")
        os.mkfifo("/dev/shm/BufferVectorSharedMemory")
        self.assert_problem(self.examine(NO_SEGMENTS)["buffers"], "is not shared memory")


def terminal_columns(text):
    return sum(2 if ord(character) > 0x2E80 else 1 for character in text)


def parse_options():
    parser = argparse.ArgumentParser()
    parser.add_argument("--ipodctl", required=True)
    parser.add_argument("--simulator", required=True)
    parser.add_argument("--schema", required=True)
    parser.add_argument("--part", metavar="N/M", default="1/1", help="each test is in one of M parts")
    parser.add_argument("tests", nargs="*")
    return parser.parse_args()


def names_of_part(part):
    number, parts = map(int, part.split("/"))
    cases = unittest.defaultTestLoader.loadTestsFromModule(sys.modules["__main__"])
    return [test.id().removeprefix("__main__.") for case in cases for test in case][number - 1::parts]


if __name__ == "__main__":
    OPTIONS = parse_options()
    enter_private_namespace()
    with open(OPTIONS.schema, encoding="utf-8") as schema_file:
        SCHEMA = json.load(schema_file)
    unittest.main(argv=[sys.argv[0], "-v", *(OPTIONS.tests or names_of_part(OPTIONS.part))])
