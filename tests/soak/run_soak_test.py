#!/usr/bin/env python3
"""Tests the evaluation of a run: every shortfall must be reported."""

import pathlib
import sys
import unittest
import xml.etree.ElementTree

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent))
import judge  # noqa: E402
import picture  # noqa: E402

GOOD = {"minutes": 2, "calls": 9, "failed": 1, "wrong": 0, "lost": 0, "doubled": 0, "events_sent": 5,
        "events_received": 10, "bytes_moved": 100, "bytes_changed": 0, "faults_injected": 3, "faults_survived": 3,
        "worst_recovery_ms": 20, "heap_kib_per_minute": 8,
        "rss_kib_per_minute": 10, "demanded_kib_per_minute": 5, "descriptors_per_minute": 0,
        "descriptors_more": 0}
TALLY = {"silence": {"injected": 1, "survived": 1, "worst_ms": 25010}}
ENDS = [0, 0]


class Judging(unittest.TestCase):
    def test_a_good_run_has_no_shortfall(self):
        self.assertEqual(judge.shortfalls(GOOD, TALLY, ENDS), [])

    def test_each_shortfall_is_noticed(self):
        for spoilt in ({"wrong": 1}, {"lost": 1}, {"doubled": 1}, {"bytes_changed": 1}, {"faults_survived": 2},
                       {"faults_injected": 0, "faults_survived": 0}, {"worst_recovery_ms": 5000},
                       {"rss_kib_per_minute": 5000}, {"heap_kib_per_minute": 100},
                       {"descriptors_more": 3}, {"events_received": 0},
                       {"bytes_moved": 0}):
            with self.subTest(spoilt):
                self.assertEqual(len(judge.shortfalls({**GOOD, **spoilt}, TALLY, ENDS)), 1)

    def test_ignores_slopes_of_a_short_run(self):
        self.assertEqual(judge.shortfalls({**GOOD, "minutes": 0.2, "rss_kib_per_minute": 5000}, TALLY, ENDS), [])

    def test_recovery_limits_scale_with_patience(self):
        late = {**GOOD, "worst_recovery_ms": 5000}
        self.assertEqual(judge.shortfalls(late, TALLY, ENDS, patience=5), [])
        self.assertEqual(len(judge.shortfalls(late, TALLY, ENDS, patience=4)), 1)

    def test_an_application_that_died_is_noticed(self):
        self.assertEqual(len(judge.shortfalls(GOOD, TALLY, [0, -11])), 1)

    def test_a_call_beyond_the_bus_timeout_is_noticed(self):
        late = {"silence": {"injected": 1, "survived": 1, "worst_ms": 29000}}
        self.assertEqual(len(judge.shortfalls(GOOD, late, ENDS)), 1)


class Slopes(unittest.TestCase):
    def test_one_per_second_is_sixty_per_minute(self):
        self.assertAlmostEqual(judge.slope([(second, 7 + second) for second in range(10)]), 60)

    def test_only_the_second_half_counts(self):
        samples = [{"second": second, "rss": [max(0, 5 - second), 1]} for second in range(20)]
        self.assertAlmostEqual(judge.slope_of(samples, "rss"), 0)

    def test_temporary_growth_does_not_count(self):
        samples = [{"second": second, "heap": [1000 if second % 5 == 0 else 1]} for second in range(40)]
        self.assertAlmostEqual(judge.slope_of(samples, "heap"), 0)

    def test_permanent_growth_counts(self):
        samples = [{"second": second, "heap": [7 * second]} for second in range(40)]
        self.assertAlmostEqual(judge.slope_of(samples, "heap"), 420)


class Picture(unittest.TestCase):
    def test_it_is_well_formed_and_shows_every_fault(self):
        samples = [{"second": second, "calls": 10 * second, "events": second, "moved": second, "rss": [1, 2]}
                   for second in range(1, 5)]
        log = [{"second": 1, "kind": kind} for kind in picture.COLORS]
        drawn = picture.draw({"figures": GOOD, "date": "today", "samples": samples, "fault_log": log})
        xml.etree.ElementTree.fromstring(drawn)
        self.assertEqual(drawn.count('stroke-width="1.5"'), len(log))


if __name__ == "__main__":
    unittest.main()
