#!/usr/bin/env python3
"""Checks that the rules of MPRIS find violations: each row breaks at least one."""
import unittest

import mpris_rules
from gi.repository import GLib

VALID = {"PlaybackStatus": ("s", "Playing"), "LoopStatus": ("s", "None"), "Rate": ("d", 1), "Shuffle": ("b", False),
         "Metadata": ("a{sv}", {"mpris:trackid": GLib.Variant("o", "/t"), "mpris:length": GLib.Variant("x", 60)}),
         "Volume": ("d", 1), "Position": ("x", 5), "MinimumRate": ("d", 1), "MaximumRate": ("d", 1),
         **{name: ("b", True) for name in ("CanGoNext", "CanGoPrevious", "CanPlay", "CanPause", "CanSeek", "CanControl")}}

INVALID = [
    ("PlaybackStatus", "s", "Winding"), ("PlaybackStatus", "i", 1), ("LoopStatus", "s", "none"), ("Rate", "d", 0),
    ("Rate", "d", 2), ("MinimumRate", "d", 1.5), ("MaximumRate", "d", 0.5), ("Volume", "d", -1), ("Position", "x", -1),
    ("Position", "x", 61), ("CanControl", "b", False),
    *[("Metadata", "a{sv}", {"mpris:trackid": GLib.Variant("o", "/t"), key: value}) for key, value in (
        ("mpris:trackid", GLib.Variant("s", "/t")), ("mpris:trackid", GLib.Variant("o", "/org/mpris/t")),
        ("mpris:length", GLib.Variant("i", 60)), ("mpris:length", GLib.Variant("x", -1)),
        ("xesam:artist", GLib.Variant("s", "a")), ("mpris:artUrl", GLib.Variant("s", "/tmp/a.png")),
        ("mpris:artUrl", GLib.Variant("s", "file:///nonexistent.png")),
        ("mpris:artUrl", GLib.Variant("s", "file:///proc/self/cmdline")))],
    ("Metadata", "a{sv}", {"xesam:title": GLib.Variant("s", "no track id")}),
]


def variants(values):
    return {name: GLib.Variant(*value) for name, value in values.items()}


class Rules(unittest.TestCase):
    def test_valid_values_break_none(self):
        self.assertEqual(mpris_rules.value_violations(variants(VALID)), [])

    def test_each_invalid_value_breaks_a_rule(self):
        for name, kind, value in INVALID:
            with self.subTest(name=name, value=value):
                self.assertNotEqual(mpris_rules.value_violations(variants({**VALID, name: (kind, value)})), [])

    def test_missing_values_break_one(self):
        for name in set(VALID) - mpris_rules.OPTIONAL:
            values = variants(VALID)
            del values[name]
            self.assertEqual(mpris_rules.value_violations(values), [f"{name} is missing"])

    def test_what_must_not_be_announced_breaks_one(self):
        for changed, invalidated in (({"Position": 1}, []), ({}, ["CanControl"]), ({"Tempo": 1}, []), ({}, [])):
            self.assertEqual(len(mpris_rules.change_violations([(mpris_rules.PLAYER, changed, invalidated)])), 1)


if __name__ == "__main__":
    unittest.main()
