#!/usr/bin/env python3
"""The help of ipodctl, its guide, its manual page and its completions name the same verbs and options.

Usage: names_agree_test.py "PROGRAM [ARGUMENT...]" GUIDE PAGE BASH ZSH FISH
"""
import re
import shlex
import shutil
import subprocess
import sys
import unittest

PROGRAM = shlex.split(sys.argv[1])
GUIDE, PAGE, BASH, ZSH, FISH = sys.argv[2:7]
OF_THE_PARSER = {"help", "version"}


def help_of(*verbs):
    return subprocess.run([*PROGRAM, *verbs, "--help"], check=True, capture_output=True, text=True).stdout


def verbs_of(*verbs):
    listed = re.search(r"^Commands:\n((?:  .*\n)+)", help_of(*verbs), re.MULTILINE)
    return re.findall(r"^  (\S+)", listed.group(1), re.MULTILINE) if listed else []


def options_of(*verbs):
    listed = re.search(r"^Options:\n((?:  .*\n)+)", help_of(*verbs), re.MULTILINE)
    entries = re.findall(r"^  (-.*?)(?:  |$)", listed.group(1), re.MULTILINE) if listed else []
    options = {option for entry in entries for option in re.findall(r"--([\w-]+)", entry)}
    return options.union(*(options_of(*verbs, verb) for verb in verbs_of(*verbs)))


def text_of(path):
    with open(path, encoding="utf-8") as file:
        return file.read().replace("\\-", "-")


class Names(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.verbs = sorted(verbs_of())
        cls.options = options_of()

    def test_there_are_some(self):
        self.assertGreater(len(self.verbs), 20)
        self.assertGreater(len(self.options), 30)

    def test_every_option_of_the_help_is_named_everywhere(self):
        for path in (GUIDE, PAGE, BASH, ZSH, FISH):
            named = options_in(path)
            with self.subTest(path):
                self.assertEqual(self.options - named - OF_THE_PARSER, set())

    def test_no_option_is_named_that_there_is_not(self):
        for path in (GUIDE, PAGE, BASH, ZSH, FISH):
            with self.subTest(path):
                self.assertEqual(options_in(path) - self.options - OF_THE_PARSER, set())

    def test_the_guide_has_a_chapter_for_each_verb(self):
        self.assertEqual(sorted(re.findall(r"^### (\S+)$", text_of(GUIDE), re.MULTILINE)), self.verbs)
        for verb in verbs_of("eap"):
            self.assertIn(f"ipodctl eap {verb}", text_of(GUIDE))

    def test_the_page_has_an_entry_for_each_verb(self):
        entries = re.findall(r'^\.BR?I? "?([a-z]+)', text_of(PAGE), re.MULTILINE)
        self.assertEqual(set(self.verbs) - set(entries), set())

    def test_the_completions_offer_each_verb(self):
        bash = re.search(r"local verbs='([^']*)'", text_of(BASH)).group(1).split()
        self.assertEqual(sorted(bash), self.verbs)
        zsh = re.search(r"local -a verbs=\((.*?)\n    \)", text_of(ZSH), re.DOTALL).group(1)
        self.assertEqual(sorted(re.findall(r"'([a-z]+):", zsh)), self.verbs)
        self.assertEqual(sorted(re.findall(r"^__ipodctl_verb ([a-z]+)", text_of(FISH), re.MULTILINE)), self.verbs)

    def test_the_completions_offer_each_verb_of_sessions(self):
        for path in (BASH, ZSH, FISH, PAGE):
            for verb in verbs_of("eap"):
                self.assertRegex(text_of(path), rf"\b{verb}\b", path)

    def test_bash_completes_the_actions_of_the_simulator_from_the_program(self):
        for line, offered in (("sim batt", "battery"), ("sim battery charging-status=ch", "charged"),
                              ("sim fault rest", "restart-storm"), ("sim battery le", "level=")):
            with self.subTest(line):
                words = re.split(r"(=)| ", f"ipodctl {line}")
                words = [word for word in words if word]
                script = (f"_init_completion() {{ words=({shlex.join(words)}) cword={len(words) - 1}; cur=${{words[cword]}} "
                          f"prev=${{words[cword - 1]}}; }}; compopt() {{ :; }}; ipodctl() {{ {shlex.join(PROGRAM)} \"$@\"; }}; "
                          f"source {BASH}; _ipodctl; printf '%s\\n' \"${{COMPREPLY[@]}}\"")
                done = subprocess.run(["bash", "-c", script], check=True, capture_output=True, text=True, timeout=60)
                self.assertIn(offered, done.stdout.splitlines())

    @unittest.skipUnless(shutil.which("fish"), "fish is not installed")
    def test_fish_completes_behind_an_option_with_a_value(self):
        for line, offered in (("ipodctl sta", "status"), ("ipodctl --deadline 3 sta", "status"),
                              ("ipodctl --json --deadline 3 eap ec", "echo"), ("ipodctl sim batt", "battery"),
                              ("ipodctl sim fault rest", "restart-storm"),
                              ("ipodctl sim battery charging-status=ch", "charging-status=charged")):
            with self.subTest(line):
                script = f"function ipodctl; {shlex.join(PROGRAM)} $argv; end; source {FISH}; complete -C '{line}'"
                words = subprocess.run(["fish", "--no-config", "-c", script], check=True,
                                       capture_output=True, text=True, timeout=60).stdout
                self.assertIn(offered, [word.split("\t")[0] for word in words.splitlines()])

    def test_exit_codes_are_the_same(self):
        listed = re.search(r"Exit codes:\n((?:  .*\n)+)", help_of()).group(1)
        codes = re.findall(r"^  (\d+)", listed, re.MULTILINE)
        self.assertEqual(re.findall(r"^\| (\d+) \|", text_of(GUIDE), re.MULTILINE), codes)
        status = text_of(PAGE).split(".SH EXIT STATUS")[1].split(".SH ")[0]
        self.assertEqual(re.findall(r"^\.B (\d+)$", status, re.MULTILINE), codes)


def options_in(path):
    text = text_of(path)
    if path == FISH:
        patterns = (r"complete -c ipodctl.* -l ([\w-]+)", r"--([a-z][\w-]+)")
        return set().union(*(re.findall(pattern, text, re.MULTILINE) for pattern in patterns))
    return set(re.findall(r"--([a-z][\w-]+)", text))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=2)
