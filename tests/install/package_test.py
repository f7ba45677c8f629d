#!/usr/bin/env python3
"""Tests the control files of the Debian packages. Nothing is installed.

Usage: package_test.py PACKAGES
"""

import pathlib
import re
import shutil
import sys
import unittest

from upgrade_test import field, run

STANDIN = "libqbxmiddleware-standin1"
LIBRARIES = {"libipod1": "libipod", "libipodkit2": "libipodkit", "libipodnames1": "libipodnames",
             STANDIN: "libqbxmiddleware"}


def package(name):
    return next(pathlib.Path(PACKAGES).glob(f"{name}_*.deb"))


def shared_libraries(name):
    """Returns the libraries in a package, without their versions."""
    return set(re.findall(r"/(lib\w+)\.so\.", run("dpkg-deb", "--contents", package(name))))


class Packages(unittest.TestCase):
    def test_each_library_has_a_separate_package(self):
        for name, library in LIBRARIES.items():
            with self.subTest(name):
                self.assertEqual(shared_libraries(name), {library})

    def test_programs_stay_installable_after_a_library_fix(self):
        for name, library in LIBRARIES.items():
            with self.subTest(name):
                version = re.search(r"\d+$", name)[0]
                self.assertRegex(run("dpkg-deb", "--info", package(name), "shlibs"),
                                 rf"^{library} {version} {name} \(>= [\d.]+\)( \| libqbxmiddleware1)?\n$")

    def test_the_core_needs_no_libraries_but_its_own(self):
        needed = {re.split(r"[ (]", word.strip())[0] for word in field(package("libipod1"), "Depends").split(",")}
        allowed = {"libboost-filesystem", "libboost-system", "libc", "libgcc-s", "libglib", "libprotobuf-lite",
                   "libqbxmiddleware-standin", "libstdc++"}
        self.assertEqual({re.sub(r"[\d.]+.*", "", name) for name in needed} - allowed, set())

    def test_only_the_library_of_names_needs_icu(self):
        needing = {path.name.split("_")[0] for path in pathlib.Path(PACKAGES).glob("*.deb")
                   if "libicu" in (field(path, "Depends") or "")}
        self.assertEqual(needing, {"libipodnames1"})

    def test_the_stand_in_yields_to_the_middleware_of_a_head_unit(self):
        self.assertIn(f"{STANDIN} (>= ", field(package("libipod1"), "Depends"))
        self.assertIn(") | libqbxmiddleware1", field(package("libipod1"), "Depends"))
        self.assertEqual(field(package(STANDIN), "Provides"), "libqbxmiddleware1")
        self.assertEqual(field(package(STANDIN), "Conflicts"), "libqbxmiddleware1")
        self.assertIn("Do not install it on a head unit", field(package(STANDIN), "Description"))

    def test_libraries_in_multiarch_directories_are_multi_arch(self):
        for name in LIBRARIES:
            with self.subTest(name):
                directories = set(re.findall(r" \./(\S*/)lib\w+\.so", run("dpkg-deb", "--contents", package(name))))
                of_one = {bool(re.fullmatch(r"usr/lib/\w+-linux-\w+/", path)) for path in directories}
                self.assertEqual(of_one, {field(package(name), "Multi-Arch") == "same"})

    def test_debug_information_is_packaged_separately(self):
        for name in (*LIBRARIES, "ipod-tools", "ipod-companiond"):
            with self.subTest(name):
                symbols = next(pathlib.Path(PACKAGES).glob(f"{name}-dbgsym_*.ddeb"))
                self.assertIn("/usr/lib/debug/.build-id/", run("dpkg-deb", "--contents", symbols))


if __name__ == "__main__":
    PACKAGES = sys.argv[1]
    if not shutil.which("dpkg-deb") or not list(pathlib.Path(PACKAGES).glob("*.deb")):
        print(f"skipped: no dpkg-deb, or no packages in {PACKAGES}")
        sys.exit(77)
    unittest.main(argv=sys.argv[:1], verbosity=2)
