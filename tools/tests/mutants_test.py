#!/usr/bin/env python3
"""Tests which faults tools/mutants derives from a line."""

import importlib.machinery
import importlib.util
import pathlib
import sys
import unittest

sys.dont_write_bytecode = True

PATH = pathlib.Path(__file__).resolve().parent.parent / "mutants"
LOADER = importlib.machinery.SourceFileLoader("mutants", str(PATH))
mutants = importlib.util.module_from_spec(importlib.util.spec_from_loader("mutants", LOADER))
LOADER.exec_module(mutants)


class Changes(unittest.TestCase):
    def expect(self, line, *changed):
        self.assertEqual(sorted(mutants.changes(line)), sorted(changed))

    def test_change_one_operator_at_a_time_and_the_condition(self):
        self.expect("    if (a < b && c) return;", "    if (a <= b && c) return;", "    if (a < b || c) return;",
                    "    if (!(a < b && c)) return;", "    ;")

    def test_move_a_number_by_one(self):
        self.expect("    return f(x + 7);", "    return f(x - 7);", "    return f(x + 8);")
        self.expect("    mode(0644);", "    mode(0645);", "    ;")

    def test_swap_two_arguments(self):
        self.expect("    return f(a, b);", "    return f(b, a);")

    def test_delete_a_statement(self):
        self.expect("    object.Change(x);", "    ;")
        self.expect("    count = other;", "    ;")

    def test_change_a_text_but_not_its_form(self):
        self.expect("    return \"a < b, 1\";", "    return \"a < b, 1x\";")

    def test_skip_declarations_and_comments(self):
        for line in ("#include <a>", "    // a < b", "    std::string text;", "using a = b;"):
            self.expect(line)


class Equivalents(unittest.TestCase):
    def test_are_faults_that_exist(self):
        faults = {(name, new.strip()) for name, _, new in mutants.faults()}
        self.assertGreater(len(faults), 100)
        self.assertLessEqual(mutants.equivalents(), faults)


if __name__ == "__main__":
    unittest.main()
