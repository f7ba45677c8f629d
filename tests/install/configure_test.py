#!/usr/bin/env python3
"""Tests that build options have their documented effect. Nothing is compiled.

Usage: configure_test.py SOURCE CMAKE
"""

import json
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

SOURCE, CMAKE = pathlib.Path(sys.argv[1]), sys.argv[2]
NEWER_THAN_3_16 = r"PROJECT_IS_TOP_LEVEL|COMMAND_ERROR_IS_FATAL|NO_CACHE|\bcmake_path\(|\bcheck_compiler_flag\(|" \
                  r"\bcmake_language\(|\bfile\(\s*(?:CONFIGURE|CHMOD|REAL_PATH)|\$<CONFIG:[^>]*,|\bblock\("
CORE_ALONE = ["-DIPOD_BUILD_TESTS=OFF", "-DIPOD_BUILD_TOOLS=OFF", "-DIPOD_BUILD_KIT=OFF"]


class Build:
    """An attempt to configure a build directory: status, output, and compile commands."""

    def __init__(self, directory, source, *options):
        self.directory = pathlib.Path(directory)
        run = subprocess.run([CMAKE, "-S", source, "-B", directory, "-G", "Ninja", "-DCMAKE_EXPORT_COMPILE_COMMANDS=ON",
                              *options], stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
        self.status, self.output = run.returncode, run.stdout

    def commands(self):
        """Returns the C++ compile commands."""
        entries = json.loads((self.directory / "compile_commands.json").read_text())
        return [entry["command"] for entry in entries if not entry["file"].endswith(".c")]


class Options(unittest.TestCase):
    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.scratch = pathlib.Path(scratch.name)

    def configure(self, *options, source=SOURCE):
        build = Build(self.scratch / "build", source, *options)
        self.assertEqual(build.status, 0, build.output)
        return build

    def host_project(self):
        """Creates a project that includes the library as a subdirectory."""
        host = self.scratch / "host"
        host.mkdir()
        (host / "CMakeLists.txt").write_text("cmake_minimum_required(VERSION 3.13)\nproject(host C CXX)\n"
                                             f"add_subdirectory({SOURCE} libipod)\n")
        return host

    def test_the_language_standard_is_at_least_17(self):
        for chosen, used in ((None, 17), (98, 17), (14, 17), (17, 17), (20, 20)):
            with self.subTest(chosen=chosen):
                choice = [f"-DCMAKE_CXX_STANDARD={chosen}"] if chosen else ["-UCMAKE_CXX_STANDARD"]
                standards = {re.search(r" -std=(\S+)", line).group(1)
                             for line in self.configure(*CORE_ALONE, *choice).commands()}
                self.assertEqual(standards, {f"c++{used}"})

    def test_a_static_library_is_rejected(self):
        build = Build(self.scratch / "build", SOURCE, *CORE_ALONE, "-DBUILD_SHARED_LIBS=OFF")
        self.assertNotEqual(build.status, 0)
        self.assertIn("libipod is always a shared library", build.output)

    def test_a_host_project_may_build_its_own_libraries_statically(self):
        self.configure("-DBUILD_SHARED_LIBS=OFF", source=self.host_project())

    def test_a_host_project_installs_no_debian_files(self):
        build = self.configure(source=self.host_project())
        self.assertFalse((build.directory / "CPackConfig.cmake").exists())
        scripts = list(build.directory.rglob("cmake_install.cmake"))
        self.assertTrue(any("libipod.pc" in script.read_text() for script in scripts))
        for word in ("lintian", "changelog", "copyright"):
            self.assertEqual([script for script in scripts if word in script.read_text()], [], word)

    def test_the_library_alone_uses_nothing_newer_than_cmake_3_16(self):
        folders = (".", "cmake", "ipc", "libipod", "middleware", "packaging", "proto")
        files = [path for folder in folders for pattern in ("CMakeLists.txt", "*.cmake", "*.cmake.in")
                 for path in (SOURCE / folder).glob(pattern) if path.name != "toolchain-armhf.cmake"]
        self.assertIn(SOURCE / "libipod/CMakeLists.txt", files)
        for path in files:
            self.assertEqual(re.findall(NEWER_THAN_3_16, path.read_text()), [], path)

    def test_programs_find_their_libraries_by_relative_path_even_with_prefix_usr(self):
        build = self.configure("-DIPOD_BUILD_TESTS=OFF", "-DIPOD_BUILD_PYTHON=OFF", "-DCMAKE_INSTALL_PREFIX=/usr")
        for program in ("ipodctl", "simulator"):
            self.assertRegex((build.directory / program / "cmake_install.cmake").read_text(),
                             r'RPATH "\\\$ORIGIN:\\\$ORIGIN/\.\./lib[^"]*"')

    def test_only_the_fast_build_lowers_the_optimization(self):
        for fast, lowered in (("OFF", False), ("ON", True)):
            with self.subTest(IPOD_FAST_BUILD=fast):
                build = self.configure("-DIPOD_BUILD_TESTS=OFF", "-DIPOD_BUILD_PYTHON=OFF",
                                       "-DCMAKE_BUILD_TYPE=RelWithDebInfo", f"-DIPOD_FAST_BUILD={fast}")
                tools = [line for line in build.commands() if " -o ipodctl/" in line]
                self.assertEqual({" -O1 " in line for line in tools}, {lowered})
                self.assertEqual({" -O1 " in line for line in build.commands() if " -o libipod/" in line}, {False})


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=2)
