#!/usr/bin/env python3
"""Tests run-faults: it must detect every deviation."""

import dataclasses
import importlib.machinery
import importlib.util
import pathlib
import signal
import sys
import unittest

HERE = pathlib.Path(__file__).resolve().parent
sys.path.insert(0, str(HERE))
loader = importlib.machinery.SourceFileLoader("run_faults", str(HERE / "run-faults"))
run_faults = importlib.util.module_from_spec(importlib.util.spec_from_loader("run_faults", loader))
loader.exec_module(run_faults)

ROW = run_faults.rows.Row("area", "fault", "expected", "case", log={"failed": 1})
GOOD = (0, "alive\n", "it failed\n")


class Judging(unittest.TestCase):
    def assert_noticed(self, row, code, out, err):
        self.assertNotEqual(run_faults.problems(row, code, out, err), [])

    def test_a_case_that_ends_as_documented_has_no_problem(self):
        self.assertEqual(run_faults.problems(ROW, *GOOD), [])

    def test_another_exit_code_is_noticed(self):
        self.assert_noticed(ROW, 1, *GOOD[1:])

    def test_a_death_is_noticed(self):
        self.assert_noticed(ROW, -signal.SIGSEGV, *GOOD[1:])

    def test_a_missing_death_is_noticed(self):
        self.assert_noticed(dataclasses.replace(ROW, exit=-signal.SIGBUS), *GOOD)

    def test_a_case_that_hangs_is_noticed(self):
        code, out, err = run_faults.run_process(["sleep", "60"], 0.2)
        self.assertIsNone(code)
        self.assert_noticed(ROW, code, out, err)

    def test_a_missing_liveness_call_is_noticed(self):
        self.assert_noticed(ROW, 0, "", GOOD[2])

    def test_a_wrong_number_of_log_lines_is_noticed(self):
        self.assert_noticed(ROW, 0, GOOD[1], "")
        self.assert_noticed(ROW, 0, GOOD[1], GOOD[2] * 2)

    def test_a_failed_expectation_is_noticed(self):
        self.assert_noticed(ROW, 0, "NOT AS DOCUMENTED: it\nalive\n", GOOD[2])


def code_in(document):
    """Returns the lines of its code blocks."""
    text = (run_faults.ROOT / document).read_text(encoding="utf-8")
    return [line.strip() for line in text.splitlines() if line.startswith("    ") and line.endswith(";")]


class Documentation(unittest.TestCase):
    def test_the_documented_remedy_for_a_lost_bus_is_the_tested_one(self):
        tested = (HERE / "service.cpp").read_text(encoding="utf-8")
        for document in ("docs/reliability.md", "docs/doxygen/mainpage.md"):
            code = code_in(document)
            self.assertEqual(len(code), 3, document)
            for line in code:
                self.assertIn(f"    {line}\n", tested, document)

    def test_the_document_shows_the_rows(self):
        self.assertEqual(run_faults.check_docs(write=False), 0)


if __name__ == "__main__":
    unittest.main()
