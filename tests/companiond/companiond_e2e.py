#!/usr/bin/env python3
"""Runs ipod-companiond against the simulator, with playerctl and a D-Bus client, on a private bus.

IPOD_TRACK_CHANGES sets the number of track changes (default: 50).
"""
import argparse
import inspect
import os
import re
import shutil
import signal
import subprocess
import sys
import time
import unittest

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "support"))

import mpris_rules  # noqa: E402
from gi.repository import Gio, GLib  # noqa: E402
from mpris_rules import PLAYER, PROPERTIES, ROOT, described  # noqa: E402
from private_session import LIMIT, OnAPrivateBus, enter_private_namespace, line_within  # noqa: E402

CHANGES = int(os.environ.get("IPOD_TRACK_CHANGES", "50"))
DONE, NO_OUTPUT, USAGE, NO_BUS, ALREADY_RUNNING = range(5)
SERVICE = "com.zarn.linux.ipod"
MPRIS, MPRIS_PATH = "org.mpris.MediaPlayer2.ipod", mpris_rules.PATH
STATE, STATE_PATH = "com.zarn.linux.ipod.State", "/com/zarn/linux/ipod/State"

# Commands, and the properties that they set.
PLAYERCTL = [
    ("loop Track", "LoopStatus", "Track"),
    ("loop Playlist", "LoopStatus", "Playlist"),
    ("loop None", "LoopStatus", "None"),
    ("shuffle On", "Shuffle", True),
    ("pause", "PlaybackStatus", "Paused"),
    ("play-pause", "PlaybackStatus", "Playing"),
]


class Client:
    """A connection that records the signals of the daemon and of the service."""

    def __init__(self, address):
        flags = Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION
        self.bus = Gio.DBusConnection.new_for_address_sync(address, flags, None, None)
        self.bus.set_exit_on_close(False)
        self.signals = []
        self.progress = (0, 0.0)
        self.bus.signal_subscribe(None, None, None, MPRIS_PATH, None, Gio.DBusSignalFlags.NONE, self.record)
        self.bus.signal_subscribe(None, SERVICE, "OnPlayProgressChange", None, None, Gio.DBusSignalFlags.NONE,
                                  self.record_progress)

    def record(self, _bus, _sender, _path, _interface, name, arguments):
        self.signals.append((name, arguments.unpack()))

    def record_progress(self, _bus, _sender, _path, _interface, _name, arguments):
        self.progress = (arguments.unpack()[0], time.monotonic())

    def call(self, name, path, interface, method, arguments=None):
        reply = self.bus.call_sync(name, path, interface, method, arguments, None, Gio.DBusCallFlags.NO_AUTO_START,
                                   LIMIT * 1000, None)
        return reply.unpack() if reply else None

    def player(self, method, arguments=None):
        return self.call(MPRIS, MPRIS_PATH, PLAYER, method, arguments)

    def get(self, name, interface=PLAYER):
        to = (MPRIS, MPRIS_PATH) if interface in (PLAYER, ROOT) else (STATE, STATE_PATH)
        return self.call(*to, PROPERTIES, "Get", GLib.Variant("(ss)", (interface, name)))[0]

    def set(self, name, value, interface=PLAYER):
        self.call(MPRIS, MPRIS_PATH, PROPERTIES, "Set", GLib.Variant("(ssv)", (interface, name, value)))

    def state(self):
        return self.call(STATE, STATE_PATH, PROPERTIES, "GetAll", GLib.Variant("(s)", (STATE,)))[0]

    def owner(self, name):
        try:
            return self.call("org.freedesktop.DBus", "/", "org.freedesktop.DBus", "GetNameOwner",
                             GLib.Variant("(s)", (name,)))[0]
        except GLib.Error:
            return None

    def do(self, event, value):
        text = f'{{"event": "{event}", "value": {value}}}'
        self.call("com.zarn.linux.ipod.Simulator", "/com/zarn/linux/ipod/simulator", "com.zarn.linux.ipod.Simulator",
                  "Do", GLib.Variant("(s)", (text,)))

    def until(self, condition, seconds=LIMIT):
        """Delivers signals until the condition holds or time runs out; returns whether it holds."""
        end = time.monotonic() + seconds
        while not condition():
            if time.monotonic() > end:
                return False
            if not GLib.MainContext.default().iteration(False):
                time.sleep(0.001)
        return True

    def wait(self, seconds):
        self.until(lambda: False, seconds)

    def changes(self):
        """The properties of the player that each signal changed."""
        return [arguments[1] for name, arguments in self.signals if name == "PropertiesChanged"
                and arguments[0] == PLAYER]


class OnABus(OnAPrivateBus):
    def setUp(self):
        super().setUp()
        self.artwork = os.path.join(self.folder, "ipod-companiond")
        self.bus.environment["XDG_RUNTIME_DIR"] = self.folder
        self.client = Client(self.bus.environment["DBUS_SESSION_BUS_ADDRESS"])

    def eventually(self, condition):
        self.assertTrue(self.client.until(condition), inspect.getsource(condition).strip())

    def settled(self):
        """Waits until all changes are announced, and forgets them."""
        self.client.wait(0.1)
        self.client.signals.clear()

    def announced(self):
        """Waits for a new track."""
        self.eventually(lambda: any("Metadata" in each for each in self.client.changes()))

    def start(self, *words, **options):
        return self.launch(*words, text=True, **options)

    def simulator(self):
        process = self.launch_simulator(OPTIONS.simulator, stderr=subprocess.DEVNULL)
        self.eventually(lambda: self.client.owner(SERVICE))
        return process

    def daemon(self):
        process = self.start(OPTIONS.companiond)
        self.eventually(lambda: self.client.owner(MPRIS))
        return process

    def ready(self):
        """Waits for both objects; the player collects changes for some milliseconds."""
        self.eventually(lambda: self.client.state()["Phase"] == "Ready" and self.client.get("CanPlay"))

    def playing(self):
        """Starts everything, plays the first track, and waits until it is announced."""
        service, daemon = self.simulator(), self.daemon()
        self.ready()
        self.client.player("Play")
        self.announced()
        self.settled()
        return service, daemon

    def run_player(self, *words):
        done = self.complete("playerctl", "--player=ipod", *words)
        return (done.stdout + done.stderr).strip()

    def assert_error(self, name, function, *arguments):
        with self.assertRaises(GLib.Error) as raised:
            function(*arguments)
        self.assertIn(name, str(raised.exception))


class Playback(OnABus):
    def assert_rules(self):
        self.assertEqual(mpris_rules.Player(self.client.bus, MPRIS).violations(), [])

    def test_the_rules_of_media_players_are_obeyed(self):
        self.daemon()
        self.assert_rules()
        self.simulator()
        self.ready()
        self.assert_rules()
        for method in ("Play", "Next", "Pause", "Play", "Stop"):
            self.client.player(method)
            self.client.wait(0.3)
            with self.subTest(method):
                self.assert_rules()
        changes = [arguments for name, arguments in self.client.signals if name == "PropertiesChanged"]
        self.assertGreater(len(changes), 4)
        self.assertEqual(mpris_rules.change_violations(changes), [])

    def test_the_rules_hold_at_the_last_track(self):
        self.playing()
        while self.client.get("CanGoNext"):
            before = self.client.get("Metadata")
            self.client.player("Next")
            self.eventually(lambda before=before: self.client.get("Metadata") != before)
        self.assert_rules()

    def test_playerctl_shows_and_controls_playback(self):
        self.playing()
        self.assertEqual(self.run_player("--list-all"), "ipod")
        self.assertEqual(self.run_player("status"), "Playing")
        self.assertEqual(self.run_player("metadata", "--format", "{{artist}}|{{title}}|{{album}}|{{duration(mpris:length)}}"),
                         "Harbour Quartet|Low Water|Tide Tables|4:36")
        self.assertRegex(self.run_player("metadata", "mpris:trackid"), r"^'?/com/zarn/linux/ipod/track/\d+'?$")
        url = self.run_player("metadata", "mpris:artUrl")
        self.assertTrue(url.startswith("file:///"), url)
        with open(url[len("file://"):], "rb") as picture:
            self.assertEqual(picture.read(4), b"\x89PNG")
        for words, name, value in PLAYERCTL:
            self.run_player(*words.split())
            with self.subTest(words):
                self.eventually(lambda name=name, value=value: self.client.get(name) == value)
        for word, value in (("loop", "None"), ("shuffle", "On"), ("status", "Playing")):
            self.assertEqual(self.run_player(word), value)
        self.run_player("position", "60")
        self.eventually(lambda: self.client.get("Position") >= 60e6)
        self.assertRegex(self.run_player("position"), r"^6[01]\.")
        self.run_player("stop")
        self.eventually(lambda: self.client.get("PlaybackStatus") == "Stopped")

    def test_a_removed_file_of_the_artwork_is_written_again_with_the_next_track(self):
        self.playing()
        shutil.rmtree(self.artwork)
        self.client.player("Next")
        self.announced()
        url = self.client.get("Metadata")["mpris:artUrl"]
        self.assertTrue(os.path.exists(url[len("file://"):]), url)

    def test_artwork_is_removed_at_its_start_and_end(self):
        os.mkdir(self.artwork)
        old = os.path.join(self.artwork, "1-0123456789abcdef.png")
        with open(old, "wb"):
            pass
        _, daemon = self.playing()
        self.assertEqual(len(os.listdir(self.artwork)), 1)
        self.assertFalse(os.path.exists(old))
        self.complete(OPTIONS.companiond)
        self.assertTrue(os.path.exists(self.client.get("Metadata")["mpris:artUrl"][len("file://"):]))
        daemon.terminate()
        self.assertEqual(daemon.wait(LIMIT), DONE)
        self.assertFalse(os.path.exists(self.artwork))

    def test_playerctl_follows_the_tracks(self):
        self.playing()
        follower = self.start("playerctl", "--player=ipod", "metadata", "--follow", "--format", "{{title}}|{{mpris:artUrl}}",
                              stdout=subprocess.PIPE)
        self.assertRegex(line_within(follower.stdout, LIMIT), r"^Low Water\|file:///")
        self.client.player("Next")
        self.assertRegex(line_within(follower.stdout, LIMIT), r"^Slack Tide\|file:///")

    def test_each_track_change_is_one_signal_with_the_artwork(self):
        self.playing()
        self.client.set("LoopStatus", GLib.Variant("s", "Playlist"))
        self.eventually(lambda: self.client.changes())
        self.settled()
        for number in range(1, CHANGES + 1):
            self.client.player("Next")
            self.eventually(lambda number=number: len(self.client.changes()) >= number)
        self.client.wait(0.4)
        changes = self.client.changes()
        self.assertEqual(len(changes), CHANGES)
        for change in changes:
            self.assertIn("mpris:artUrl", change["Metadata"])
            self.assertIn("xesam:title", change["Metadata"])
            self.assertNotIn("Position", change)
        tracks = {change["Metadata"]["mpris:trackid"] for change in changes}
        self.assertEqual(len(tracks), CHANGES)
        reply = self.client.bus.call_sync(MPRIS, MPRIS_PATH, PROPERTIES, "Get", GLib.Variant("(ss)", (PLAYER, "Metadata")),
                                          None, Gio.DBusCallFlags.NONE, -1, None)
        identifier = reply.get_child_value(0).get_variant().lookup_value("mpris:trackid", None)
        self.assertEqual(identifier.get_type_string(), "o")

    def test_the_position_is_accurate_and_jumps_are_reported(self):
        self.playing()
        before = self.client.progress
        self.eventually(lambda: self.client.progress != before)
        for _ in range(12):
            self.client.wait(0.11)
            position, at = self.client.progress
            expected = position * 1000 + (time.monotonic() - at) * 1e6
            self.assertLess(abs(self.client.get("Position") - expected), 100_000)
        self.assertEqual([name for name, _ in self.client.signals if name == "Seeked"], [])

        track = self.client.get("Metadata")["mpris:trackid"]
        self.client.player("SetPosition", GLib.Variant("(ox)", (track, 90_000_000)))
        self.eventually(lambda: ("Seeked", (90_000_000,)) in self.client.signals)
        self.client.player("SetPosition", GLib.Variant("(ox)", ("/com/zarn/linux/ipod/track/0", 5_000_000)))
        self.client.player("SetPosition", GLib.Variant("(ox)", (track, 5_000_000_000)))
        self.client.player("SetPosition", GLib.Variant("(ox)", (track, -1)))
        self.assertAlmostEqual(self.client.get("Position") / 1e6, 90, delta=2)
        self.client.player("SetPosition", GLib.Variant("(ox)", (track, 275_900_000)))
        self.eventually(lambda: ("Seeked", (275_000_000,)) in self.client.signals)
        self.client.player("Seek", GLib.Variant("(x)", (-300_000_000,)))
        self.eventually(lambda: ("Seeked", (0,)) in self.client.signals)
        self.client.player("Seek", GLib.Variant("(x)", (2**63 - 1,)))
        self.eventually(lambda: self.client.get("Metadata")["xesam:title"] == "Slack Tide")

    def test_unsupported_operations_are_errors(self):
        self.playing()
        self.assert_error("NotSupported", self.client.player, "OpenUri", GLib.Variant("(s)", ("file:///a.mp3",)))
        self.assert_error("NotSupported", self.client.set, "Volume", GLib.Variant("d", 0.5))
        self.assert_error("NotSupported", self.client.set, "Rate", GLib.Variant("d", 2.0))
        self.assert_error("NotSupported", self.client.set, "Fullscreen", GLib.Variant("b", True), ROOT)
        self.assert_error("NotSupported", self.client.get, "DesktopEntry", ROOT)
        self.assert_error("InvalidArgs", self.client.set, "LoopStatus", GLib.Variant("s", "Sometimes"))
        self.client.set("Rate", GLib.Variant("d", 1.0))
        self.client.set("Volume", GLib.Variant("d", 1.0))
        self.assertEqual(self.client.get("PlaybackStatus"), "Playing")
        self.client.player("Previous")
        self.assertFalse(self.client.get("CanGoPrevious"))

    def test_failures_of_the_service_are_answered_and_counted(self):
        self.playing()
        self.client.do("fault", '{"fault": "error@Pause/1"}')
        self.assert_error("com.zarn.linux.ipod.Error.Refused", self.client.player, "Pause")
        state = self.client.state()
        self.assertEqual((state["Requests"], state["Failures"], state["Restarts"]), (2, {"Refused": 1}, 0))
        self.assertGreater(state["LatencyP50"], 0)
        self.assertGreaterEqual(state["LatencyP99"], state["LatencyP50"])


class Services(OnABus):
    def test_without_a_service_the_player_is_stopped(self):
        self.daemon()
        self.assertEqual(self.client.get("PlaybackStatus"), "Stopped")
        self.assertEqual(self.client.get("Metadata"), {})
        for name in ("CanPlay", "CanPause", "CanGoNext", "CanGoPrevious", "CanSeek"):
            self.assertFalse(self.client.get(name), name)
        self.assertTrue(self.client.get("CanControl"))
        self.client.player("Next")
        self.assert_error("NotSupported", self.client.player, "PlayPause")
        self.assert_error("NoService", self.client.player, "Stop")
        self.assert_error("NotSupported", self.client.get, "Battery", STATE)

    def test_calls_end_with_a_service_that_dies(self):
        service, _ = self.playing()
        self.client.do("call", '{"status": "active", "display-name": "Li\\u0007Lei"}')
        self.eventually(lambda: self.client.state()["Calls"])
        call = next(iter(self.client.state()["Calls"].values()))
        self.assertEqual((call["name"], call["status"]), ("Li\ufffdLei", "active"))
        service.kill()
        service.wait()
        self.eventually(lambda: self.client.get("PlaybackStatus") == "Stopped")
        self.assertEqual(self.client.get("Metadata"), {})
        self.assertEqual(self.client.state()["Calls"], {})
        self.assertEqual(self.client.state()["Phase"], "Lost")
        self.simulator()
        self.ready()
        self.assertEqual(self.client.state()["Restarts"], 1)
        self.assertEqual(self.client.state()["Calls"], {})

    def events(self):
        """Starts a session of another process, and waits until it is ready."""
        return self.start(OPTIONS.ipodctl, "events", stdout=subprocess.PIPE)

    def test_a_daemon_that_is_killed_does_not_affect_applications(self):
        _, daemon = self.playing()
        events = self.events()
        self.client.wait(0.3)
        daemon.kill()
        daemon.wait()
        self.client.do("battery", '{"level": 41}')
        lines = ""
        while "41" not in lines:
            line = line_within(events.stdout, LIMIT)
            self.assertTrue(line, lines)
            lines += line
        self.assertIsNone(events.poll())

    def test_an_application_that_starts_in_mid_call_shows_the_call(self):
        _, daemon = self.playing()
        self.client.do("call", '{"status": "active", "display-name": "Li Lei"}')
        for _ in range(5):
            done = self.complete(OPTIONS.late_joiner)
            done.check_returncode()
            match = re.match(r"Li Lei (\d+) us remembered: (.*)\n$", done.stdout)
            self.assertTrue(match, done.stdout)
            self.assertLessEqual(int(match.group(1)), 50_000)
            self.assertIn("calls", match.group(2).split(", "))
        daemon.kill()
        daemon.wait()
        done = self.complete(OPTIONS.late_joiner)
        self.assertEqual((done.returncode, done.stdout), (0, "no call\n"))
        self.assertIsNone(self.client.owner(STATE))

    def test_a_signal_ends_it_and_returns_the_names(self):
        for number in (signal.SIGTERM, signal.SIGINT, signal.SIGHUP):
            daemon = self.daemon()
            daemon.send_signal(number)
            self.assertEqual(daemon.wait(LIMIT), DONE, number)
            self.assertIsNone(self.client.owner(MPRIS))


class Starts(OnABus):
    def run_daemon(self, *words):
        done = self.complete(OPTIONS.companiond, *words)
        return done.returncode, done.stdout, done.stderr

    def test_a_second_one_on_the_bus_fails(self):
        self.daemon()
        code, _, error = self.run_daemon()
        self.assertEqual(code, ALREADY_RUNNING)
        self.assertRegex(error, r"^ipod-companiond: cannot acquire com\.zarn\.linux\.ipod\.State: .*\nhint: .*\n$")

    def test_without_a_bus_it_fails(self):
        self.bus.environment["DBUS_SESSION_BUS_ADDRESS"] = "unix:path=/nonexistent"
        code, _, error = self.run_daemon()
        self.assertEqual(code, NO_BUS)
        self.assertRegex(error, r"^ipod-companiond: cannot use the session bus: .*\n$")

    def test_it_ends_with_the_bus(self):
        daemon = self.start(OPTIONS.companiond, stderr=subprocess.PIPE)
        self.eventually(lambda: self.client.owner(MPRIS))
        self.bus.stop()
        self.assertEqual(daemon.wait(LIMIT), NO_BUS)
        self.assertIn("the session bus closed the connection", daemon.stderr.read())

    def test_the_command_line(self):
        self.assertRegex(self.run_daemon("--version")[1], r"^ipod-companiond \d+\.\d+\.\d+\n$")
        self.assertIn("--print-interface", self.run_daemon("--help")[1])
        code, _, error = self.run_daemon("--dance")
        self.assertEqual(code, USAGE)
        self.assertRegex(error, r"^ipod-companiond: unknown option '--dance'\nhint: try 'ipod-companiond --help'\n$")

    def test_a_full_output_is_reported(self):
        for word in ("--help", "--print-interface"):
            with open("/dev/full", "w", encoding="utf-8") as full:
                daemon = self.start(OPTIONS.companiond, word, stdout=full, stderr=subprocess.PIPE)
            self.addCleanup(daemon.stderr.close)
            self.assertEqual(daemon.wait(LIMIT), NO_OUTPUT)
            self.assertEqual(daemon.stderr.read(),
                             "ipod-companiond: cannot write to standard output: No space left on device\n")

    def test_the_printed_interface_is_the_exported_one(self):
        self.daemon()
        xml = self.client.call(STATE, STATE_PATH, "org.freedesktop.DBus.Introspectable", "Introspect")[0]
        code, printed, _ = self.run_daemon("--print-interface")
        self.assertEqual(code, DONE)
        self.assertEqual(described(xml, STATE), described(printed, STATE))
        self.assertEqual(len(re.findall("DocString", printed)), len(described(printed, STATE)) + 1)


def parse_options():
    parser = argparse.ArgumentParser()
    for name in ("--simulator", "--companiond", "--ipodctl", "--late-joiner"):
        parser.add_argument(name, required=True)
    parser.add_argument("tests", nargs="*")
    return parser.parse_args()


if __name__ == "__main__":
    OPTIONS = parse_options()
    enter_private_namespace()
    unittest.main(argv=[sys.argv[0], "-v", *OPTIONS.tests])
