#!/usr/bin/env python3
"""Tests that manual page and completions cover every verb and option of a program's --help.

Usage: manual_test.py "PROGRAM [ARGUMENT...]" PAGE [COMPLETION...]
"""

import os
import re
import shlex
import subprocess
import sys
import unittest

PROGRAM, FILES = shlex.split(sys.argv[1]), sys.argv[2:]


def help_of(*verbs):
    return subprocess.run([*PROGRAM, *verbs, "--help"], check=True, capture_output=True, text=True).stdout


def verbs_in(text):
    listed = re.search(r"^Commands:\n((?:  .*\n)+)", text, re.MULTILINE)
    return re.findall(r"^  (\S+)", listed.group(1), re.MULTILINE) if listed else []


def options_in(text):
    listed = re.search(r"^Options:\n((?:  .*\n)+)", text, re.MULTILINE)
    return re.findall(r"^  (?:-\w, ?)?--([\w-]+)", listed.group(1), re.MULTILINE)


def words_of_help(*verbs):
    text = help_of(*verbs)
    words = set(verbs_in(text)) | set(options_in(text))
    for verb in verbs_in(text):
        words |= words_of_help(*verbs, verb)
    return words


def missing_in(path, words):
    with open(path, encoding="utf-8") as file:
        text = file.read().replace("\\-", "-")
    return sorted(w for w in words if not re.search(rf"(?<![\w-]){re.escape(w)}(?![\w-])", re.sub("--", " ", text)))


def stray_quotes_in(path):
    """Returns lines of requests with a quote inside a word that does not start with one."""
    with open(path, encoding="utf-8") as file:
        requests = [line.rstrip("\n") for line in file if line.startswith(".") and not line.startswith('.\\"')]
    return [line for line in requests if any('"' in word[1:-1] + (word[0] != '"') * word[-1:]
                                             for word in re.findall(r'"[^"]*"?|[^\s"]\S*', line))]


class EveryWordOfTheHelp(unittest.TestCase):
    def test_is_in_the_manual_page_and_in_the_completions(self):
        words = words_of_help()
        self.assertIn("version", words)
        for path in FILES:
            with self.subTest(os.path.basename(path)):
                self.assertEqual(missing_in(path, words), [])

    def test_the_manual_page_has_no_stray_quotes(self):
        self.assertEqual([line for path in FILES if path.endswith(".1") for line in stray_quotes_in(path)], [])


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=2)
