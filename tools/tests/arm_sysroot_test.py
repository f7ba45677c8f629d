#!/usr/bin/env python3
"""Tests arm-sysroot with a mirror that fails in every way. Nothing is downloaded: mmdebstrap and apt-get are stubs."""

import os
import pathlib
import signal
import subprocess
import tempfile
import unittest

TOOL = pathlib.Path(__file__).resolve().parent.parent / "arm-sysroot"

APT_GET = "#!/bin/sh\n[ -z \"$NO_MIRROR\" ] && echo stable bookworm main http://mirror.example/debian\n"

# A root with three files, written as a tar stream; MODE selects the failure.
MMDEBSTRAP = """#!/bin/bash
set -e
printf '%s\\n' "$@" >"$ARGUMENTS"
root=$(mktemp -d)
trap 'rm -rf "$root"' EXIT
mkdir -p "$root/usr/include" "$root/usr/lib"
yes header | head -n 20000 >"$root/usr/include/some.h"
ln -s /lib/some.so "$root/usr/lib/some.so"
case $MODE in
    unreachable) echo 'E: Failed to fetch http://mirror.example/debian/x.deb' >&2; exit 1 ;;
    broken) echo 'E: setup failed: no such package' >&2; exit 1 ;;
    cut) tar -c -C "$root" . | head -c 60000; exit 0 ;;
    hang) tar -c -C "$root" .; exec sleep 60 ;;
esac
tar -c -C "$root" .
"""


class ArmSysroot(unittest.TestCase):
    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.scratch = pathlib.Path(scratch.name)
        self.sysroot = self.scratch / "sysroot"
        self.tools = self.scratch / "bin"
        self.tools.mkdir()
        self.put("apt-get", APT_GET)
        self.put("mmdebstrap", MMDEBSTRAP)

    def put(self, name, text):
        (self.tools / name).write_text(text, encoding="utf-8")
        (self.tools / name).chmod(0o755)

    def start(self, mode, **environment):
        path = f"{self.tools}:{os.environ['PATH']}"
        environment.update(PATH=path, MODE=mode, ARGUMENTS=str(self.scratch / "arguments"))
        return subprocess.Popen([TOOL, self.sysroot], env=dict(os.environ, **environment), stderr=subprocess.PIPE, text=True,
                                start_new_session=True)

    def run_tool(self, mode="well", **environment):
        """Returns the exit status and the last line."""
        process = self.start(mode, **environment)
        _, error = process.communicate(timeout=60)
        return process.returncode, error.splitlines()[-1]

    def assert_whole(self):
        self.assertEqual((self.sysroot / "usr/include/some.h").read_text(), "header\n" * 20000)
        self.assertEqual(os.readlink(self.sysroot / "usr/lib/some.so"), "../../lib/some.so")

    def test_creates_a_sysroot_and_keeps_it_if_complete(self):
        status, line = self.run_tool()
        self.assertEqual((status, line.split(":")[1]), (0, " created"), line)
        self.assert_whole()
        status, line = self.run_tool("broken")
        self.assertEqual((status, line.split(":")[1]), (0, " ready"), line)

    def test_unpacks_libraries_but_no_build_tools(self):
        self.run_tool()
        arguments = (self.scratch / "arguments").read_text().splitlines()
        packages = next(word for word in arguments if word.startswith("--include=")).partition("=")[2].split(",")
        self.assertIn("libglib2.0-dev", packages)
        self.assertIn("python3-dev", packages)
        self.assertNotIn("dpkg-dev", packages)

    def test_skips_if_the_mirror_is_unreachable(self):
        status, line = self.run_tool("unreachable")
        self.assertEqual(status, 77)
        self.assertIn("skipped: the mirror cannot be reached (E: Failed to fetch", line)
        self.assertFalse(self.sysroot.exists())

    def test_skips_without_a_mirror(self):
        status, line = self.run_tool(NO_MIRROR="1")
        self.assertEqual((status, line), (77, "arm-sysroot: skipped: apt knows no mirror of bookworm main"))

    def test_fails_with_the_reason_given_by_the_tool(self):
        status, line = self.run_tool("broken")
        self.assertEqual((status, line), (1, "arm-sysroot: failed: mmdebstrap: E: setup failed: no such package"))

    def test_rejects_a_truncated_stream(self):
        status, line = self.run_tool("cut")
        self.assertEqual(status, 1, line)
        self.assertFalse(self.sysroot.exists())

    def test_starts_over_after_it_was_killed(self):
        process = self.start("hang")
        self.addCleanup(process.stderr.close)
        while not (self.scratch / "sysroot.partial/usr/lib/some.so").is_symlink():
            self.assertIsNone(process.poll())
        os.killpg(process.pid, signal.SIGKILL)
        process.wait(timeout=60)
        self.assertFalse(self.sysroot.exists())
        self.assertEqual(self.run_tool()[0], 0)
        self.assert_whole()
        self.assertFalse((self.scratch / "sysroot.partial").exists())

    def test_recreates_it_if_files_are_missing(self):
        self.run_tool()
        (self.sysroot / "usr/include/some.h").unlink()
        status, line = self.run_tool()
        self.assertEqual((status, line.split(":")[1]), (0, " created"), line)
        self.assert_whole()

    def test_recreates_it_if_its_marker_was_truncated(self):
        self.run_tool()
        (self.sysroot / ".arm-sysroot").write_text("")
        self.assertIn(" created:", self.run_tool()[1])

    def test_keeps_files_that_it_did_not_create(self):
        (self.sysroot / "usr").mkdir(parents=True)
        status, line = self.run_tool()
        self.assertEqual(status, 1)
        self.assertIn("is not a sysroot of this script; remove it, or name another directory", line)
        self.assertTrue((self.sysroot / "usr").exists())


if __name__ == "__main__":
    unittest.main(verbosity=2)
