#!/usr/bin/env python3
"""Tests that the toolchain file reports what is missing. Usage: toolchain_test.py CMAKE"""

import pathlib
import subprocess
import sys
import tempfile
import unittest

TOOLCHAIN = pathlib.Path(__file__).resolve().parent.parent.parent / "cmake/toolchain-armhf.cmake"


class Toolchain(unittest.TestCase):
    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.scratch = pathlib.Path(scratch.name)
        (self.scratch / "CMakeLists.txt").write_text("cmake_minimum_required(VERSION 3.25)\nproject(nothing CXX)\n")

    def refused(self, *options):
        result = subprocess.run([CMAKE, "-S", self.scratch, "-B", self.scratch / "build",
                                 f"-DCMAKE_TOOLCHAIN_FILE={TOOLCHAIN}", *options], text=True, timeout=60,
                                stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        self.assertNotEqual(result.returncode, 0, result.stdout)
        return " ".join(result.stdout.split())

    def test_no_sysroot(self):
        self.assertIn("No sysroot in ''. Create one with tools/arm-sysroot DIR", self.refused())

    def test_a_directory_that_is_not_a_sysroot(self):
        self.assertIn(f"No sysroot in '{self.scratch}'.", self.refused(f"-DCMAKE_SYSROOT={self.scratch}"))

    def test_no_cross_compiler(self):
        (self.scratch / "usr/include").mkdir(parents=True)
        for language in ("C", "CXX"):
            output = self.refused(f"-DCMAKE_SYSROOT={self.scratch}", "-DCMAKE_C_COMPILER=cc", "-DCMAKE_CXX_COMPILER=c++",
                                f"-DCMAKE_{language}_COMPILER=no-such-compiler")
            self.assertIn("Cannot find the cross compiler 'no-such-compiler'. Install the packages of "
                          "packaging/packages-arm.txt", output)


if __name__ == "__main__":
    CMAKE = sys.argv[1]
    unittest.main(argv=sys.argv[:1], verbosity=2)
