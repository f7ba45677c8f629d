#!/usr/bin/python3
"""Uses ipod-screen from outside: reads it through the accessibility bus, as a screen reader does, and sends input as
a user does.

    with-private-shm with-display dbus-run-session desktop_test.py BUILD
"""
import os
import subprocess
import sys
import time
import unittest

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi  # noqa: E402

BUILD = sys.argv.pop()
PATIENCE = 15  # seconds, for busy machines
CONTROLS = {"push button", "slider", "list item", "list", "scroll bar", "check box"}


def until(condition):
    """Waits until a condition holds, and returns its value."""
    end = time.monotonic() + PATIENCE
    while not (value := condition()) and time.monotonic() < end:
        time.sleep(0.05)
    return value


class Screen(unittest.TestCase):
    def setUp(self):
        env = {**os.environ, "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1"}
        self.start("simulator/ipod-simulator", os.environ)
        self.start("screen/ipod-screen", env, "--size", "800x480")
        self.root = until(lambda: self.find(Atspi.get_desktop(0), "ipod-screen"))
        self.assertIsNotNone(self.root, "not on the accessibility bus")
        self.root.set_cache_mask(Atspi.Cache.NONE)
        self.assertTrue(until(lambda: self.control("Play")))
        self.do("search", "--sync", "--onlyvisible", "--name", "ipod-screen", "windowfocus", "--sync")

    def start(self, program, env, *arguments):
        process = subprocess.Popen([f"{BUILD}/{program}", *arguments], env=env, stdout=subprocess.DEVNULL)
        self.addCleanup(process.wait)
        self.addCleanup(process.terminate)

    def do(self, *arguments):
        subprocess.run(["xdotool", *arguments], check=True, timeout=PATIENCE, stdout=subprocess.DEVNULL)

    def visible(self, node):
        """Generates the accessible objects that are shown."""
        try:
            if not node.get_state_set().contains(Atspi.StateType.SHOWING):
                return
            yield node
            for i in range(node.get_child_count()):
                yield from self.visible(node.get_child_at_index(i))
        except gi.repository.GLib.GError:
            return  # disappeared meanwhile

    def find(self, desktop, name):
        children = (desktop.get_child_at_index(i) for i in range(desktop.get_child_count()))
        return next((child for child in children if child and child.get_name() == name), None)

    def nodes(self):
        windows = range(self.root.get_child_count())
        return [node for i in windows for node in self.visible(self.root.get_child_at_index(i))]

    def control(self, name):
        return next((node for node in self.nodes() if node.get_name() == name), None)

    def tap(self, name):
        node = until(lambda: self.control(name))
        self.assertIsNotNone(node, f"{name} is not shown")
        box = node.get_extents(Atspi.CoordType.SCREEN)
        self.do("mousemove", str(box.x + box.width // 2), str(box.y + box.height // 2), "click", "1")

    def assert_shown(self, name):
        self.assertTrue(until(lambda: self.control(name)),
                        f"{name} is not among {[node.get_name() for node in self.nodes()]}")

    def test_every_control_has_a_name(self):
        for page in ("Playing", "Next", "Devices", "Music", "Songs", "Search"):
            self.tap(page)
            time.sleep(0.3)
            controls = [node for node in self.nodes() if node.get_role_name() in CONTROLS]
            self.assertGreater(len(controls), 5, page)
            for node in controls:
                self.assertTrue(node.get_name(), f"{page}: a {node.get_role_name()} has no name")

    def test_the_pointer_plays_a_song_and_changes_the_theme(self):
        self.tap("Music")
        self.tap("Songs")
        self.tap("Blue Lantern")
        self.assert_shown("Nadia Brandt")
        self.tap("Pause")
        self.assert_shown("Play")
        self.tap("Day colors")
        self.assert_shown("Night colors")

    def test_the_keyboard_finds_a_chinese_artist(self):
        self.tap("Music")
        self.tap("Artists")
        self.assert_shown("Nadia Brandt")
        self.do("type", "zyt")
        self.assertTrue(until(lambda: self.control("曾雨桐") and not self.control("Nadia Brandt")))
        self.do("key", "Return")
        self.assert_shown("江南小雨")
        self.do("key", "Escape", "Escape")
        self.assert_shown("Playlists")

    def test_a_screen_reader_presses_a_button(self):
        button = self.control("Music")
        self.assertTrue(Atspi.Action.do_action(button, 0))
        self.assert_shown("Playlists")


if __name__ == "__main__":
    unittest.main()
