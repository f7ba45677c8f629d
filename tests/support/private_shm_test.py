#!/usr/bin/env python3
"""Tests the isolation of tests with and without a private /dev/shm: private_shm_test.py LAYOUT-TEST [EMULATOR...]"""

import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

WITH_PRIVATE_SHM = pathlib.Path(__file__).resolve().with_name("with-private-shm")
TEST_PROGRAM = [*sys.argv[2:], os.path.abspath(sys.argv[1]), "--gtest_filter=LayoutFingerprint.LeavesNothingBehind"]
LISTS = "/dev/shm/ListVectorSharedMemory"
OWN = ["unshare", "--map-root-user", "--mount"]
# This machine's root as the root of a chroot, which is not a mount point.
CHROOT = """mount -t tmpfs tmpfs "$ROOT" && cd "$ROOT" && mkdir root && cd root
for entry in /*; do
    if [ -L "$entry" ]; then
        cp -P "$entry" .
    elif [ -d "$entry" ]; then
        mkdir ".$entry" && mount --rbind "$entry" ".$entry"
    fi
done
exec chroot . "$@"
"""
NO_MOUNTS = """mount -t tmpfs tmpfs /dev/shm && echo 0 >/proc/sys/user/max_user_namespaces
exec setpriv --bounding-set -sys_admin --inh-caps -sys_admin -- "$@"
"""


class Confined(unittest.TestCase):
    """Runs commands in a copy of this machine whose /dev/shm shows what they leave behind."""

    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.environment = dict(os.environ, TMPDIR=scratch.name, ROOT=scratch.name, SHM=str(WITH_PRIVATE_SHM))
        self.environment.pop("IPOD_PRIVATE_SHM", None)

    def run_in(self, machine, script, *arguments):
        """Returns the exit status and the output."""
        ended = subprocess.run([*OWN, "sh", "-c", machine, "sh", "sh", "-c", script, "sh", *arguments], text=True,
                               stdout=subprocess.PIPE, stderr=subprocess.STDOUT, env=self.environment, timeout=60)
        return ended.returncode, ended.stdout


class WithPrivateMounts(Confined):
    SEES = '"$SHM" sh -c "ls -A /dev/shm; touch $1; echo \\$IPOD_PRIVATE_SHM"; ls -A /dev/shm'

    def test_a_command_has_private_shared_memory(self):
        here = 'mount -t tmpfs tmpfs /dev/shm && touch /dev/shm/outside && exec "$@"'
        self.assertEqual(self.run_in(here, self.SEES, LISTS), (0, "mount\noutside\n"))

    def test_a_command_in_a_chroot_has_private_shared_memory(self):
        here = "mount -t tmpfs tmpfs /dev/shm && touch /dev/shm/outside && " + CHROOT
        self.assertEqual(self.run_in(here, self.SEES, LISTS), (0, "mount\noutside\n"))

    def test_a_test_program_has_private_shared_memory(self):
        here = f"mount -t tmpfs tmpfs /dev/shm && touch {LISTS} && " + CHROOT
        status, output = self.run_in(here, '"$@"', *TEST_PROGRAM)
        self.assertEqual(status, 0, output)


class WithoutPrivateMounts(Confined):
    def confined(self, script, *arguments):
        return self.run_in(NO_MOUNTS, script, *arguments)

    def test_the_segments_of_a_command_are_removed(self):
        script = '"$SHM" sh -c "echo \\$IPOD_PRIVATE_SHM; touch $1; exit 3"; echo $?; ls -A /dev/shm'
        self.assertEqual(self.confined(script, LISTS), (0, "lock\n3\n"))

    def test_segments_of_others_are_neither_used_nor_removed(self):
        for command in (["with-private-shm", "true"], TEST_PROGRAM):
            with self.subTest(command[0]):
                path = f"PATH={WITH_PRIVATE_SHM.parent}:$PATH; "
                status, output = self.confined(f'{path} touch {LISTS}; "$@"; echo $?; ls -A /dev/shm', *command)
                self.assertEqual((status, output.splitlines()[-2:]), (0, ["1", "ListVectorSharedMemory"]), output)
                self.assertIn("ListVectorSharedMemory", output.splitlines()[0])

    def test_the_message_ends_with_a_remedy(self):
        status, output = self.confined(f'touch {LISTS}; "$SHM" true')
        self.assertEqual(status, 1)
        self.assertRegex(output, f"^with-private-shm: {LISTS} exists, .*\nhint: .*\n$")

    def test_the_next_command_removes_leftovers_of_a_killed_one(self):
        killed = f'"$SHM" sh -c "touch {LISTS}; kill -9 \\$PPID"; ls -A /dev/shm; '
        for command in (["sh", "-c", '"$SHM" true'], TEST_PROGRAM):
            with self.subTest(command[0]):
                status, output = self.confined(killed + '"$@" >&2; echo $?; ls -A /dev/shm', *command)
                self.assertEqual((status, output.splitlines()[-1]), (0, "0"), output)
                self.assertIn("ListVectorSharedMemory", output)

    def test_a_command_waits_for_the_previous_one(self):
        script = '"$SHM" sh -c "echo begins; sleep 0.5; echo ends" & sleep 0.2; "$SHM" echo second; wait'
        self.assertEqual(self.confined(script), (0, "begins\nends\nsecond\n"))

    def test_a_nested_command_runs_at_once(self):
        self.assertEqual(self.confined('"$SHM" "$SHM" echo inner'), (0, "inner\n"))


if __name__ == "__main__":
    if subprocess.run([*OWN, "true"], capture_output=True).returncode != 0:
        print("skipped: no user namespace to confine commands in")
        sys.exit(77)
    unittest.main(argv=sys.argv[:1], verbosity=2)
