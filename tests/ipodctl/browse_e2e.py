#!/usr/bin/env python3
"""Drives ipodctl browse in a terminal against the simulator, with a private bus and private shared memory."""
import argparse
import json
import os
import resource
import signal
import subprocess
import sys
import unittest

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path[:0] = [os.path.join(HERE, "..", "support"), os.path.join(HERE, "..", "..", "tools")]

from ipodctl_e2e import DONE, NO_BUS, NOTHING_DONE, NO_SERVICE, SERVICE_LOST, USAGE  # noqa: E402
from music_folder import write_collection  # noqa: E402
from private_session import LIMIT, OnAPrivateBus, enter_private_namespace  # noqa: E402
from terminal_session import TerminalSession  # noqa: E402

ENTER, ESCAPE, CTRL_C, CTRL_L, CTRL_Z = "\r", "\033", "\003", "\014", "\032"
UP, LEFT = "\033OA", "\033OD"


def selected(screen):
    """Returns the text of the row drawn in reverse video."""
    for line in screen.cells:
        if line[0].look.reverse and line[-2].look.reverse:
            return "".join(cell.text for cell in line).strip()
    return ""


class InATerminal(OnAPrivateBus):
    def setUp(self):
        super().setUp()
        self.bus.environment.update(TZ="UTC", TERM="xterm-256color")

    def start(self, rows=24, columns=80, **environment):
        terminal = TerminalSession([OPTIONS.ipodctl, "browse"], rows, columns,
                                   dict(self.bus.environment, **environment))
        self.addCleanup(terminal.close)
        return terminal

    def sees(self, terminal, *texts):
        holds = lambda screen: all(text in screen.text() for text in texts)
        self.assertTrue(terminal.wait_for(holds, LIMIT), (texts, terminal.screen.text()))

    def selects(self, terminal, name):
        holds = lambda screen: selected(screen).startswith(name)
        self.assertTrue(terminal.wait_for(holds, LIMIT), (name, terminal.screen.text()))

    def ends(self, terminal, code):
        """Expects an exit with the code, or a crash if it is None, and a restored terminal."""
        ended = terminal.wait(LIMIT)
        self.assertNotIn(ended, (DONE, None)) if code is None else self.assertEqual(ended, code)
        self.assertEqual(terminal.modes(), terminal.modes_before)
        self.assertFalse(terminal.screen.alternate)
        self.assertTrue(terminal.screen.cursor_shown)

    def ctl(self, *words):
        answer = self.complete(OPTIONS.ipodctl, "--json", *words)
        answer.check_returncode()
        return json.loads(answer.stdout)


class WithoutAService(InATerminal):
    def test_a_missing_service_is_reported_before_the_screen_opens(self):
        terminal = self.start()
        self.ends(terminal, NO_SERVICE)
        self.assertIn("no iPod service", terminal.screen.text())
        self.assertNotIn(b"\033", terminal.received)

    def test_a_missing_bus_is_reported(self):
        terminal = self.start(DBUS_SESSION_BUS_ADDRESS="unix:path=/nonexistent/bus")
        self.ends(terminal, NO_BUS)

    def test_a_missing_terminal_is_reported(self):
        for words in (["browse"], ["--json", "browse"]):
            process = self.complete(OPTIONS.ipodctl, *words, stdin=subprocess.DEVNULL)
            self.assertEqual(process.returncode, USAGE)
            self.assertIn("ipodctl ls", process.stderr)


class WithTheSimulator(InATerminal):
    def setUp(self):
        super().setUp()
        write_collection(self.folder)
        self.start_simulator()

    def start_simulator(self):
        self.simulator = self.launch_simulator(OPTIONS.simulator, "--one-device", "--no-cache", self.folder)

    def happen(self, *words):
        self.complete(OPTIONS.ipodctl, "sim", *words).check_returncode()

    def call(self, method, *arguments):
        """Calls the service as an application that uses the core alone: it takes no lease."""
        self.complete("gdbus", "call", "--session", "--dest", "com.zarn.linux.ipod", "--object-path",
                      "/com/zarn/linux/ipod", "--method", f"com.zarn.linux.ipod.{method}", *arguments).check_returncode()

    def in_artists(self, **options):
        terminal = self.start(**options)
        self.sees(terminal, "Playlists/", "Songs/")
        terminal.type("ar" + ENTER)
        self.sees(terminal, "› Artists", "周明轩/")
        return terminal

    def test_an_artist_is_found_by_initials_opened_and_played(self):
        terminal = self.in_artists()
        terminal.type("zmx")
        self.selects(terminal, "周明轩")
        self.sees(terminal, "jump: zmx", "zhou ming xuan")
        terminal.type(ENTER)
        self.sees(terminal, "› Artists › 周明轩", "梦境里/", "秋林序/")
        terminal.type("qlx" + ENTER)
        self.sees(terminal, "› 周明轩 › 秋林序", "晚坪")
        terminal.type("wp" + ENTER)
        self.sees(terminal, "▶ 晚坪 - 周明轩")
        self.assertEqual(self.ctl("status")["track"]["title"], "晚坪")
        terminal.type(CTRL_C)
        self.ends(terminal, DONE)

    def test_keys_typed_ahead_are_applied_in_order(self):
        terminal = self.start()
        terminal.type("ar" + ENTER + "zmx" + ENTER + ENTER + "dx" + ENTER)
        self.sees(terminal, "› 周明轩 › 梦境里", "▶ 东溪 - 周明轩")

    def test_keys_wait_while_an_entry_opens_and_its_level_is_loading(self):
        terminal = self.start()
        self.sees(terminal, "Playlists/", "Songs/")
        self.happen("fault", "delay=150@GetCurDbListItems")
        terminal.type("ar" + ENTER + "zmx" + ENTER + ENTER + "dx" + ENTER)
        self.sees(terminal, "› 周明轩 › 梦境里", "▶ 东溪 - 周明轩")

    def test_going_back_restores_the_selection(self):
        terminal = self.in_artists()
        terminal.type("zmx" + ENTER)
        self.sees(terminal, "› 周明轩")
        for key in (LEFT, ESCAPE):
            terminal.type(key)
        self.selects(terminal, "Artists/")
        self.assertTrue(self.ctl("ls")["root"])

    def test_a_search_lists_matches_only(self):
        terminal = self.in_artists()
        terminal.type("/ zmx")
        self.sees(terminal, "/ zmx▏  1 match", "1/1")
        self.assertNotIn("Nadia", terminal.screen.text())
        terminal.type(ESCAPE)
        self.sees(terminal, "Nadia Brandt/", "1/11")
        terminal.type("/")
        terminal.type("夜" + "\177" + "bran" + ENTER)
        self.sees(terminal, "› Nadia Brandt", "Lanterns/")

    def test_it_plays_pauses_and_skips(self):
        self.ctl("cd", "/Songs")
        self.ctl("play", "Blue Lantern")
        terminal = self.start()
        self.sees(terminal, "▶ Blue Lantern - Nadia Brandt", "/ 4:13")
        terminal.type(" ")
        self.sees(terminal, "‖ Blue Lantern")
        terminal.type(" ")
        self.sees(terminal, "▶ Blue Lantern")
        terminal.type(">")
        self.assertTrue(terminal.wait_for(lambda screen: "Blue Lantern" not in screen.text(), LIMIT))
        terminal.type("<")
        self.sees(terminal, "Blue Lantern")

    def test_every_script_is_aligned_in_columns(self):
        terminal = self.in_artists()
        self.sees(terminal, "zhou ming xuan")
        rows = terminal.screen.lines()
        readings = {"单晓岚/": "shan xiao lan", "Анна Вершинина/": "anna vershinina", "周明轩/": "zhou ming xuan"}
        for name, reading in readings.items():
            number = next(index for index, row in enumerate(rows) if row.startswith("  " + name))
            self.assertEqual("".join(cell.text for cell in terminal.screen.cells[number][34:]).strip(), reading)
        self.assertIn("  Midori & the Foxes 🦊/", rows)
        self.assertTrue(any("מיה לביא" in row for row in rows))

    def test_it_fits_a_terminal_of_twenty_by_five_and_grows_again(self):
        terminal = self.in_artists()
        terminal.type("zmx")
        self.selects(terminal, "周明轩")
        terminal.resize(5, 20)
        self.sees(terminal, "11/11", "■ not playing")
        self.selects(terminal, "周明轩")
        terminal.type(UP)
        self.selects(terminal, "曾雨桐")
        terminal.resize(40, 120)
        self.sees(terminal, "Анна Вершинина/", "a-z jump")
        self.selects(terminal, "曾雨桐")
        for rows, columns in ((1, 1), (2, 3), (24, 80)):
            terminal.resize(rows, columns)
            terminal.settle()
        self.sees(terminal, "曾雨桐")
        terminal.type(CTRL_C)
        self.ends(terminal, DONE)

    def test_the_terminal_is_restored_after_every_exit(self):
        for number, code in ((signal.SIGINT, DONE), (signal.SIGTERM, DONE), (signal.SIGHUP, DONE),
                             (signal.SIGSEGV, None), (signal.SIGABRT, None)):
            with self.subTest(number):
                terminal = self.in_artists()
                self.assertTrue(terminal.screen.alternate)
                self.assertNotEqual(terminal.modes(), terminal.modes_before)
                terminal.process.send_signal(number)
                self.ends(terminal, code)

    def test_it_exits_when_the_terminal_hangs_up(self):
        terminal = self.in_artists()
        os.close(terminal.terminal)
        os.close(terminal.main)
        self.assertEqual(terminal.process.wait(LIMIT), DONE)
        terminal.main, terminal.terminal = os.openpty()

    def test_a_restarted_service_restores_the_path(self):
        terminal = self.in_artists()
        terminal.type("zmx" + ENTER)
        self.sees(terminal, "› 周明轩", "秋林序/")
        self.simulator.kill()
        self.sees(terminal, "service lost", "秋林序/")
        terminal.type(ENTER + ">")
        self.sees(terminal, "service lost")
        self.start_simulator()
        self.sees(terminal, "■ not playing", "› 周明轩", "秋林序/")
        self.assertNotIn(b"does not exist", terminal.received)
        self.assertEqual(self.ctl("ls")["entries"][1]["name"], "秋林序")
        terminal.type("qlx" + ENTER)
        self.sees(terminal, "› 秋林序", "晚坪")

    def test_a_level_changed_by_another_program_is_detected(self):
        terminal = self.in_artists()
        self.call("EnterDbRoot")
        self.call("EnterDbChildList", "2")
        terminal.type("zmx" + ENTER)
        self.sees(terminal, "another program changed the level; returning", "› Artists")
        self.selects(terminal, "周明轩")
        terminal.type(ENTER)
        self.sees(terminal, "› Artists › 周明轩")

    def test_one_program_browses_at_a_time_and_others_read(self):
        terminal = self.in_artists()
        self.assertEqual(self.ctl("ls")["count"], 11)
        refused = self.complete(OPTIONS.ipodctl, "cd", "/Albums")
        self.assertEqual(refused.returncode, NOTHING_DONE)
        holder = f"process {terminal.process.pid} (ipodctl)"
        self.assertIn(f"the lists are in use: {holder} browses the database\n", refused.stderr)
        locks = [check["text"] for check in self.ctl("doctor")["checks"] if check["check"] == "lock"]
        self.assertEqual(locks, [f"browse is held by {holder}"])
        terminal.type(CTRL_C)
        self.ends(terminal, DONE)
        self.assertEqual(self.ctl("cd", "/Albums")["verb"], "cd")

    def test_a_new_device_opens_at_its_root(self):
        terminal = self.in_artists()
        self.happen("detach", "Desk iPod")
        self.sees(terminal, "(empty)", "is a device attached?")
        self.assertNotIn("Artists", terminal.screen.text())
        self.happen("attach", "Second")
        self.sees(terminal, "Artists/", "1/5")
        terminal.type(CTRL_C)
        self.ends(terminal, DONE)

    def in_a_shell(self, *words):
        terminal = TerminalSession(["bash", "--norc", "--noprofile", "-i"], 24, 80,
                                   dict(self.bus.environment, PS1="ready> "))
        self.addCleanup(terminal.close)
        self.sees(terminal, "ready>")
        terminal.type(" ".join([OPTIONS.ipodctl, *words]) + ENTER)
        return terminal

    def test_the_watched_status_can_be_suspended(self):
        terminal = self.in_a_shell("status", "--watch")
        self.sees(terminal, "shuffle")
        self.assertTrue(terminal.screen.alternate)
        terminal.type(CTRL_Z)
        self.sees(terminal, "Stopped", "ready>")
        self.assertFalse(terminal.screen.alternate)
        terminal.type("fg" + ENTER)
        self.sees(terminal, "shuffle")
        self.assertTrue(terminal.screen.alternate)

    def test_it_can_be_suspended(self):
        terminal = self.in_a_shell("browse")
        self.sees(terminal, "Playlists/")
        terminal.type(CTRL_Z)
        self.sees(terminal, "Stopped", "ready>")
        self.assertFalse(terminal.screen.alternate)
        terminal.type("fg" + ENTER)
        self.sees(terminal, "Playlists/")
        terminal.type("ar")
        self.selects(terminal, "Artists/")

    def test_control_l_redraws_everything(self):
        terminal = self.in_artists()
        terminal.settle()
        before = terminal.screen.text()
        terminal.screen.feed(b"\033[H\033[Jgarbage")
        terminal.type(CTRL_L)
        self.sees(terminal, before)

    def test_waiting_for_a_slow_service_is_shown(self):
        terminal = self.in_artists()
        self.happen("fault", "delay=4000@GetCurDbListItemsAmount/1")
        terminal.type("zmx" + ENTER)
        self.sees(terminal, "waiting for the service…")
        self.sees(terminal, "› 周明轩", "秋林序/", "a-z jump")
        self.assertNotIn("waiting", terminal.screen.text())
        self.happen("fault", "delay=4000@Next/1")
        terminal.type(">")
        self.sees(terminal, "waiting for the service…")

    def test_errors_read_as_those_of_the_verbs(self):
        terminal = self.in_artists()
        terminal.type(">")
        self.sees(terminal, "the service did not skip to the next track")
        self.happen("fault", "error=com.example.Busy@Next")
        terminal.type(">")
        self.sees(terminal, "the service refused: GDBus.Error:com.example.Busy")

    def test_an_unreadable_level_is_not_shown_as_empty(self):
        for member in ("GetCurDbListItemsAmount", "EnterDbRoot"):
            with self.subTest(member):
                self.happen("fault", "error=com.example.Busy@" + member)
                terminal = self.start()
                self.sees(terminal, "(cannot be read)", "the service refused: GDBus.Error:com.example.Busy")
                self.assertNotIn("0/0", terminal.screen.text())
                self.sees(terminal, "press Ctrl-L to retry")
                self.happen("clear-faults")
                terminal.type(CTRL_L)
                self.sees(terminal, "Artists/", "a-z jump")
                terminal.type(CTRL_C)
                self.ends(terminal, DONE)

    def test_missing_names_are_reported_until_they_arrive(self):
        terminal = self.in_artists()
        self.happen("fault", "out-of-range")
        terminal.type(CTRL_L)
        self.sees(terminal, "the list is incomplete; press Ctrl-L to retry")
        self.happen("clear-faults")
        terminal.type(CTRL_L)
        self.sees(terminal, "› Artists", "周明轩/", "a-z jump")

    def test_a_lost_bus_is_reported(self):
        terminal = self.in_artists()
        self.bus.daemon.kill()
        self.ends(terminal, SERVICE_LOST)
        self.assertIn("bus closed", terminal.screen.text())

    def test_no_color_turns_colors_off(self):
        colored = rb"\033\[(\d+;)*[34][0-7]m"
        terminal = self.in_artists()
        self.assertRegex(terminal.received, colored)
        terminal.type(CTRL_C)
        self.ends(terminal, DONE)
        terminal = self.in_artists(NO_COLOR="1")
        self.assertNotRegex(terminal.received, colored)
        self.selects(terminal, "")

    def test_a_terminal_without_cursor_control_is_rejected(self):
        for kind in ("dumb", "no-such-terminal", ""):
            with self.subTest(kind):
                terminal = self.start(TERM=kind)
                self.ends(terminal, USAGE)
                self.assertIn("set TERM", terminal.screen.text().replace("\n", ""))

    def test_another_locale_changes_nothing(self):
        terminal = self.in_artists(LC_ALL="C", LANG="C")
        terminal.type("zmx")
        self.selects(terminal, "周明轩")


def parse_options():
    parser = argparse.ArgumentParser()
    parser.add_argument("--ipodctl", required=True)
    parser.add_argument("--simulator", required=True)
    parser.add_argument("tests", nargs="*")
    return parser.parse_args()


if __name__ == "__main__":
    OPTIONS = parse_options()
    enter_private_namespace()
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
    unittest.main(argv=[sys.argv[0], "-v", *OPTIONS.tests])
