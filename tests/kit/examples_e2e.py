#!/usr/bin/env python3
"""Runs the examples quoted in docs/ipodkit.md against the simulator, with a private bus and private shared memory."""
import argparse
import os
import subprocess
import sys
import tempfile
import unittest

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "support"))

from private_session import LIMIT, Bus, OnAPrivateBus, enter_private_namespace, within  # noqa: E402


class Followed:
    """An example that runs until it is killed."""

    def __init__(self, test, name, *arguments):
        self.test, self.name = test, name
        self.output = tempfile.NamedTemporaryFile(suffix=name)
        test.addCleanup(self.output.close)
        test.launch(os.path.join(OPTIONS.examples, name), *arguments, stdout=self.output, stderr=self.output)

    def printed(self):
        with open(self.output.name, encoding="utf-8") as output:
            return output.read()

    def expect(self, text):
        found = within(LIMIT, lambda: text in self.printed())
        self.test.assertTrue(found, f"{self.name}: no '{text}' in:\n{self.printed()}")


class Examples(OnAPrivateBus):
    def setUp(self):
        super().setUp()
        self.launch_simulator(OPTIONS.simulator)

    def run_example(self, name, *arguments, bus=None):
        """Runs an example until it exits; returns its output and exit code."""
        result = subprocess.run([os.path.join(OPTIONS.examples, name), *arguments],
                                env=(bus or self.bus).environment, timeout=LIMIT, stdout=subprocess.PIPE,
                                stderr=subprocess.STDOUT, text=True)
        return result.stdout, result.returncode

    def follow(self, name, *arguments):
        return Followed(self, name, *arguments)

    def ipodctl(self, *arguments):
        return subprocess.run([OPTIONS.ipodctl, *arguments], env=self.bus.environment, check=True, timeout=LIMIT,
                              stdout=subprocess.PIPE, text=True).stdout

    def test_now_playing_in_both_forms(self):
        forms = [self.follow("now_playing"), self.follow("now_playing_coroutine")]
        for example in forms:
            example.expect("[Ready] = ")
        self.ipodctl("sim", "button", "play")
        for example in forms:
            example.expect("[Ready] > Harbour Quartet - Low Water")

    def test_browse_and_jump_in_both_forms(self):
        self.ipodctl("cd", "/Songs")
        output, status = self.run_example("browse_and_jump", "jnxy")
        self.assertIn("江南小雨\t(jiang nan xiao yu)\n", output)
        self.assertEqual(status, 0)
        self.assertEqual(self.run_example("browse_and_jump_coroutine", "jnxy"), (output, status))

    def test_known_or_why(self):
        example = self.follow("known_or_why")
        example.expect("name: Desk iPod\nbattery: not reported yet\n")
        self.ipodctl("sim", "battery", "level=42")
        example.expect("battery: 42 %")

    def test_event_log(self):
        example = self.follow("event_log")

        def reported():
            self.ipodctl("sim", "battery", "level=42")
            return "battery: \n" in example.printed()

        # The program misses events until it has subscribed.
        self.assertTrue(within(LIMIT, reported), example.printed())
        self.ipodctl("repeat", "all")
        example.expect("repeat: all\n")

    def test_requests(self):
        output, status = self.run_example("requests")
        self.assertEqual(status, 0, output)
        lines = output.splitlines()
        self.assertIn("Desk iPod", lines)
        self.assertEqual(len([line for line in lines if line.isdigit()]), 2, output)
        output, status = self.run_example("background")
        self.assertTrue(output.strip().isdigit() and status == 0, output)

    def test_artwork_to_file(self):
        example = self.follow("artwork_to_file", self.folder)
        self.ipodctl("sim", "button", "play")
        example.expect(f"file://{self.folder}/")

    def test_accessory_echo(self):
        example = self.follow("accessory_echo")
        self.assertTrue(within(LIMIT, lambda: "EapInit" in self.ipodctl("sim", "calls", "EapInit")))
        self.ipodctl("sim", "eap-open")
        example.expect("session 1 opened")
        self.ipodctl("sim", "eap-data", "1", "text=hello")
        self.assertTrue(within(LIMIT, lambda: "(true)" in self.ipodctl("sim", "calls", "EapWrite")))

    def test_audio_source(self):
        self.follow("audio_source").expect(
            "Released -> Granted: granted\nGranted -> Active: activated\nActive -> Playing: played\n"
            "Playing -> Released: released\n")

    def test_view_test(self):
        self.assertEqual(self.run_example("view_test"), ("passed\n", 0))

    def test_remedies(self):
        self.assertEqual(self.run_example("remedies", "0"), ("", 0))
        empty = Bus()
        self.addCleanup(empty.stop)
        output, status = self.run_example("remedies", "0", bus=empty)
        self.assertIn("remedies: NoService: ", output)
        self.assertIn("\nhint: start the iPod service\n", output)
        self.assertEqual(status, 1)


if __name__ == "__main__":
    enter_private_namespace()
    parser = argparse.ArgumentParser()
    parser.add_argument("--simulator", required=True)
    parser.add_argument("--ipodctl", required=True)
    parser.add_argument("--examples", required=True)
    OPTIONS, rest = parser.parse_known_args()
    unittest.main(argv=[sys.argv[0], *rest], verbosity=2)
