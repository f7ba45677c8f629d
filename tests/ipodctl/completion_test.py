#!/usr/bin/env python3
"""Tests the shell completion of ipodctl command lines, without a service.

Usage: completion_test.py "PROGRAM [ARGUMENT...]" FOLDER-OF-THE-SCRIPTS
"""
import re
import shlex
import shutil
import subprocess
import sys
import unittest

PROGRAM = sys.argv[1]
FOLDER = sys.argv[2]

LINES = (("sta", "status"), ("--deadline 3 sta", "status"), ("--json --deadline 3 eap ec", "echo"),
         ("status --w", "--watch"), ("shuffle al", "albums"), ("events --until ph", "phone-call"), ("cd .", ".."),
         ("sim batt", "battery"), ("sim fault rest", "restart-storm"), ("sim battery le", "level="),
         ("sim battery charging-status=ch", "charging-status=charged"))


def output_of(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True, timeout=60).stdout


def bash(line):
    """Returns the replacements of the last word, including the prefix that bash keeps."""
    words = ["ipodctl", *line.split(" ")]
    script = (f"_init_completion() {{ words=({shlex.join(words)}) cword={len(words) - 1} cur={shlex.quote(words[-1])}; }}; "
              f"compopt() {{ :; }}; ipodctl() {{ {PROGRAM} \"$@\"; }}; _filedir() {{ COMPREPLY+=(files$*); }}; "
              f"source {FOLDER}/ipodctl.bash; _ipodctl; printf '%s\\n' \"${{COMPREPLY[@]}}\"")
    kept = re.match("(.*[=:])?", words[-1]).group()
    return [kept + word for word in output_of("bash", "-c", script).splitlines()]


def fish(line):
    script = f"function ipodctl; {PROGRAM} $argv; end; source {FOLDER}/ipodctl.fish; complete -C {shlex.quote(f'ipodctl {line}')}"
    return [word.split("\t")[0] for word in output_of("fish", "--no-config", "-c", script).splitlines()]


def zsh(line):
    words = ["ipodctl", *line.split(" ")]
    script = (f"ipodctl() {{ {PROGRAM} \"$@\"; }}; compadd() {{ print -l -- \"${{(@)argv[${{argv[(i)--]}}+1,-1]}}\"; }}; "
              f"_files() {{ print files $*; }}; complete() {{ source {FOLDER}/_ipodctl; }}; "
              f"words=({shlex.join(words)}) CURRENT={len(words)} PREFIX={shlex.quote(words[-1])}; complete")
    return output_of("zsh", "-f", "-c", script).splitlines()


class Completion(unittest.TestCase):
    def assert_offers(self, shell):
        for line, offered in LINES:
            with self.subTest(line):
                self.assertIn(offered, shell(line))

    def test_bash_completes_each_word(self):
        self.assert_offers(bash)
        self.assertNotIn("seek", bash("sta"))
        self.assertEqual(bash("sim scenario "), ["filesjson"])

    @unittest.skipUnless(shutil.which("fish"), "fish is not installed")
    def test_fish_completes_each_word(self):
        self.assert_offers(fish)

    @unittest.skipUnless(shutil.which("zsh"), "zsh is not installed")
    def test_zsh_completes_each_word(self):
        self.assert_offers(zsh)
        self.assertEqual(zsh("sim scenario "), ["files -g *.json"])


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=2)
