#!/usr/bin/env python3
"""Tests ./run on different kinds of machines: the tools it would install, build, and test with are stubs."""

import os
import pathlib
import re
import shutil
import subprocess
import tempfile
import unittest

TREE = pathlib.Path(__file__).resolve().parent.parent.parent
NOBODY = 65534

# Each appends its name and arguments to the file "called".
STAND_INS = {
    "apt-get": "",
    "cmake": "",
    "ctest": """
while [ "$1" != --output-log ]; do shift; done
printf '%s\\n' "$RESULT" >"$2"
""",
    "lintian": "",
    "dpkg-query": """for package; do :; done; [ "$package" = "$MISSING" ] || echo ii""",
    "nproc": "echo 3",
    "sudo": """[ -n "$SUDO" ] || { echo "sudo: a password is required" >&2; exit 1; }
case $1 in -n) shift ;; esac
"$@"
""",
}
PASSED = """1/1 Test #1: One ...................***Failed    0.1 sec
    Start 1: One
    Test #1: One ...................   Passed    0.1 sec
100% tests passed, 0 tests failed out of 1"""


class Run(unittest.TestCase):
    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.root = pathlib.Path(scratch.name)
        (self.root / "tools").mkdir()
        for name in ("run", "tools/count-tests"):
            shutil.copy(TREE / name, self.root / name)
        shutil.copytree(TREE / "packaging", self.root / "packaging")
        for tool in ("docs/doxygen/make-docs", "tools/arm-sysroot"):
            self.write(tool, "#!/bin/sh\nmkdir -p build/docs build/release/packages build/arm/packages\n")
        for name, text in STAND_INS.items():
            self.write(f"bin/{name}", f'#!/bin/sh\necho "{name} $*" >>{self.root}/called\n{text}\n')
        self.shared_memory('IPOD_PRIVATE_SHM=mount "$@"')
        (self.root / "called").touch()
        for path in (self.root, self.root / "called"):
            path.chmod(0o777)

    def write(self, name, text):
        path = self.root / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text, encoding="utf-8")
        path.chmod(0o755)

    def shared_memory(self, command):
        self.write("tests/support/with-private-shm", f"#!/bin/sh\n{command}\n")

    def run_verb(self, *words, user=None, **environment):
        """Returns the exit status, standard output, and standard error."""
        variables = {"RESULT": PASSED, "MISSING": "", "SUDO": "", **environment}
        ended = subprocess.run(["./run", *words], cwd=self.root, user=user, stdin=subprocess.DEVNULL, text=True, timeout=60,
                               stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                               env=dict(os.environ, PATH=f"{self.root}/bin:{os.environ['PATH']}", NO_COLOR="1", **variables))
        return ended.returncode, ended.stdout, ended.stderr

    def called(self, tool):
        return re.findall(rf"^{tool} (.*)$", (self.root / "called").read_text(), re.MULTILINE)

    # Verbs

    def test_an_unknown_verb_suggests_the_nearest_one(self):
        for word, hint in (("tets", "did you mean 'test'?"), ("pakage", "did you mean 'package'?"),
                           ("xyzzy", "./run without a verb lists all verbs")):
            with self.subTest(word):
                self.assertEqual(self.run_verb(word), (1, "", f"run: unknown verb '{word}'\nhint: {hint}\n"))

    def test_the_list_of_verbs_is_complete(self):
        listed = re.findall(r"^  ([a-z-]+)\b", self.run_verb("help")[1], re.MULTILINE)
        self.assertEqual(sorted(listed), sorted(re.findall(r"^verb_([\w-]+)\(\)", (TREE / "run").read_text(), re.MULTILINE)))

    # Packages

    def test_without_root_prints_the_command_to_install_packages(self):
        status, _, errors = self.run_verb("setup", user=self.ordinary_user(), MISSING="ninja-build")
        self.assertEqual(status, 1)
        self.assertEqual(errors, "run: installing the missing Debian packages requires root\n"
                                 "hint: apt-get install --no-install-recommends ninja-build\n")
        self.assertEqual(self.called("apt-get"), [])

    def test_a_user_with_sudo_is_informed_and_installs_them(self):
        status, _, errors = self.run_verb("setup", user=self.ordinary_user(), MISSING="ninja-build", SUDO="yes")
        self.assertEqual((status, errors), (0, "==> installing Debian packages: ninja-build\n"))
        self.assertEqual(self.called("apt-get")[-1], "install -q -y --no-install-recommends "
                                                     "-o Dpkg::Options::=--force-unsafe-io ninja-build")

    def ordinary_user(self):
        return NOBODY if os.geteuid() == 0 else None

    # Debian packages of this project

    def packaged(self):
        return re.findall(r"-E chdir build/(\w+) cpack", "\n".join(self.called("cmake")))

    def test_packages_are_built_for_both_architectures_or_for_one(self):
        for words, presets in (([], ["release", "arm"]), (["release"], ["release"]), (["arm"], ["arm"])):
            with self.subTest(words):
                (self.root / "called").write_text("")
                status, _, errors = self.run_verb("package", *words)
                self.assertEqual((status, self.packaged()), (0, presets), errors)

    def test_packages_of_an_unknown_preset_are_rejected(self):
        self.assertEqual(self.run_verb("package", "dev"), (1, "", "run: unknown preset 'dev' for packages\n"
                                                                  "hint: ./run package [release|arm]\n"))

    # Tests

    def at_a_time(self):
        return [re.search(r"--parallel (\d+)", words).group(1) for words in self.called("ctest")]

    def test_twice_as_many_tests_as_processors_run_at_a_time(self):
        self.assertEqual(self.run_verb("test")[0], 0)
        self.assertEqual(self.at_a_time(), ["6"])

    def test_without_a_private_shared_memory_tests_run_one_at_a_time(self):
        self.shared_memory('IPOD_PRIVATE_SHM=lock "$@"')
        status, _, errors = self.run_verb("test")
        self.assertEqual(status, 0)
        self.assertIn("==> testing one at a time: this machine allows no private /dev/shm\n", errors)
        self.assertEqual(self.at_a_time(), ["1"])

    def test_nothing_is_built_beside_foreign_segments(self):
        self.shared_memory("echo 'with-private-shm: in use' >&2; exit 1")
        self.assertEqual(self.run_verb("test"), (1, "", "with-private-shm: in use\n"))
        self.assertEqual((self.called("cmake"), self.called("ctest")), ([], []))

    def test_a_test_that_needed_a_second_try_is_named_before_the_counts(self):
        self.assertEqual(self.run_verb("test", IPOD_TEST_TRIES="2")[1], "tried again: One\n1 passed, 0 failed, 0 skipped\n")

    # The other architecture

    def test_the_core_on_arm_is_compared_with_the_native_tests_that_need_no_tools(self):
        self.write("tools/compare-test-lists", f'#!/bin/sh\necho "compare $*" >>{self.root}/called\n')
        for words, preset, options in (([], "arm", ""), (["core"], "arm-core", " --label-exclude tools")):
            with self.subTest(words):
                (self.root / "called").write_text("")
                self.assertEqual(self.run_verb("arm", *words)[0], 0)
                self.assertIn(f"--preset {preset} ", self.called("ctest")[-1])
                self.assertEqual(self.called("compare"),
                                 [f"build/dev build/{preset} tests/arm-exclusions.txt{options}"])

    def test_on_arm_a_test_that_only_one_side_has_fails(self):
        self.write("tools/compare-test-lists", "#!/bin/sh\nexit 1\n")
        self.assertEqual(self.run_verb("arm")[0], 1)

    # Continuous integration

    def test_a_stage_that_fails_is_counted_although_all_its_tests_passed(self):
        (self.root / ".ci").mkdir()
        shutil.copy(TREE / ".ci/run", self.root / ".ci/run")
        self.write("run", """#!/bin/sh
[ "$*" != test ] || { echo "20 passed, 0 failed, 0 skipped"; exit 1; }
echo "10 passed, 0 failed, 0 skipped"
""")
        stages = (TREE / ".ci/run").read_text().count("\nstage ")
        ended = subprocess.run([self.root / ".ci/run"], text=True, timeout=60, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        self.assertEqual((ended.returncode, ended.stdout.split("\n")[-2]),
                         (1, f"{20 + 10 * (stages - 1)} passed, 1 failed, 0 skipped"))


if __name__ == "__main__":
    unittest.main(verbosity=2)
