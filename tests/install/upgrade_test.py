#!/usr/bin/env python3
"""Tests upgrades of the Debian packages in a separate root; the machine is not modified.

Usage: upgrade_test.py PACKAGES

PACKAGES is a directory with the packages of this version. The test derives a second set: a later version, whose library
has another file name and whose tools have one file more and one less. dpkg itself replaces one set with the other.
"""

import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

LATER = "1.99.0"
# The last version in which libipod1 contained all three libraries.
UNDIVIDED = "1.0.0-1"


class Failed(Exception):
    """A failed command, with its output."""


def run(*command, **options):
    result = subprocess.run([str(word) for word in command], text=True, stdout=subprocess.PIPE,
                            stderr=subprocess.STDOUT, **options)
    if result.returncode != 0:
        raise Failed(f"{command}: {result.stdout}")
    return result.stdout


def field(package, name):
    return run("dpkg-deb", "--field", package, name).strip()


def rename_library(tree, version):
    """Replaces libipod.so.1.0.0 and its links with libipod.so.1.99.0."""
    for library in tree.rglob(f"libipod.so.{version}"):
        library.rename(library.with_name(f"libipod.so.{LATER}"))
    for link in tree.rglob("libipod.so*"):
        if link.is_symlink() and os.readlink(link) == f"libipod.so.{version}":
            link.unlink()
            link.symlink_to(f"libipod.so.{LATER}")


def make_later(package, target):
    """Creates a possible next version of a package."""
    version = field(package, "Version").split("-")[0]
    tree = target / "tree"
    run("dpkg-deb", "--raw-extract", package, tree)
    control = tree / "DEBIAN/control"
    control.write_text(control.read_text().replace(version, LATER))
    rename_library(tree, version)
    for program in tree.rglob("usr/bin/ipod-make-samples"):
        program.rename(program.with_name("ipod-new-tool"))
    build(tree, target / package.name)
    shutil.rmtree(tree)


def build(tree, package):
    run("dpkg-deb", "--root-owner-group", "-Znone", "--build", tree, package)
    return package


def make_undivided(packages, target):
    """Creates libipod1 as it was when it contained all three libraries."""
    tree = target / "tree"
    for package in packages:
        run("dpkg-deb", "--extract", package, tree)
    (tree / "DEBIAN").mkdir()
    (tree / "DEBIAN/control").write_text(f"Package: libipod1\nVersion: {UNDIVIDED}\nMaintainer: none\n"
                                         f"Architecture: {field(packages[0], 'Architecture')}\nDescription: earlier\n")
    return build(tree, target / "libipod1.deb")


def make_middleware(target, architecture):
    """Creates a package that a head unit might have instead of the stand-in."""
    tree = target / "middleware"
    (tree / "DEBIAN").mkdir(parents=True)
    (tree / "DEBIAN/control").write_text("Package: head-unit-middleware\nVersion: 5\nMaintainer: none\n"
                                         f"Architecture: {architecture}\nProvides: libqbxmiddleware1\nDescription: middleware\n")
    return build(tree, target / "middleware.deb")


def files_of(packages):
    """Returns the absolute paths of all files in the packages."""
    lines = [line for package in packages for line in run("dpkg-deb", "--contents", package).splitlines()]
    return {line.split(" -> ")[0].split()[5].lstrip(".") for line in lines if not line.startswith("d")}


def needed_elsewhere(packages):
    """Returns the names of external dependencies of the packages."""
    own = {field(package, "Package") for package in packages}
    words = ", ".join(field(package, "Depends") for package in packages)
    return {re.split(r"[ (|]", word.strip())[0] for word in words.split(",") if word.strip()} - own


def version_here(package):
    """Returns a sufficient version for packages that are not installed here."""
    found = subprocess.run(["dpkg-query", "-W", "-f", "${Version}", package], capture_output=True, text=True)
    return found.stdout or "999"


class Root:
    """A file system with a dpkg database that lists the packages' dependencies as installed."""

    def __init__(self, path, architecture, needed):
        self.path = path
        self.database = path / "var/lib/dpkg"
        for directory in ("info", "updates", "triggers"):
            (self.database / directory).mkdir(parents=True)
        entry = f"Package: {{}}\nStatus: install ok installed\nArchitecture: {architecture}\nMaintainer: none\n" \
                "Version: {}\nDescription: placeholder\n"
        status = "\n".join(entry.format(package, version_here(package)) for package in sorted(needed))
        (self.database / "status").write_text(status)
        for package in needed:
            for part in ("list", "md5sums"):
                (self.database / f"info/{package}.{part}").touch()
        native = run("dpkg", "--print-architecture").strip()
        (self.database / "arch").write_text("\n".join({native, architecture}) + "\n")
        # The package scripts call ldconfig, which is a no-op here.
        self.programs = path / "programs"
        self.programs.mkdir()
        (self.programs / "ldconfig").write_text("#!/bin/sh\n")
        (self.programs / "ldconfig").chmod(0o755)

    def dpkg(self, *words):
        environment = dict(os.environ, PATH=f"{self.programs}:{os.environ['PATH']}:/usr/sbin:/sbin", LC_ALL="C")
        return run("dpkg", f"--root={self.path}", "--force-not-root,script-chrootless,unsafe-io", *words, env=environment,
                   timeout=120)

    def files(self):
        """Returns the installed files of the packages."""
        return {"/" + str(path.relative_to(self.path)) for path in self.path.rglob("*")
                if (path.is_symlink() or path.is_file())
                and path.relative_to(self.path).parts[0] not in ("var", "programs")}


class Packages(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.scratch = tempfile.TemporaryDirectory()
        cls.addClassCleanup(cls.scratch.cleanup)
        cls.now = sorted(pathlib.Path(PACKAGES).glob("*.deb"))
        later = pathlib.Path(cls.scratch.name) / "later"
        later.mkdir()
        for package in cls.now:
            make_later(package, later)
        cls.later = sorted(later.glob("*.deb"))
        cls.architecture = field(next(p for p in cls.now if p.name.startswith("libipod1")), "Architecture")

    def setUp(self):
        self.path = pathlib.Path(tempfile.mkdtemp(dir=self.scratch.name))
        self.root = Root(self.path, self.architecture, needed_elsewhere(self.now))

    def install(self, packages):
        self.root.dpkg("--install", *packages)

    def assert_holds_exactly(self, packages):
        self.assertEqual(self.root.files(), files_of(packages))
        self.assertEqual(self.root.dpkg("--audit"), "")

    def test_an_upgrade_leaves_nothing_of_the_older_version(self):
        self.install(self.now)
        self.assert_holds_exactly(self.now)
        self.install(self.later)
        self.assert_holds_exactly(self.later)

    def test_a_downgrade_leaves_nothing_of_the_later_version(self):
        self.install(self.later)
        self.install(self.now)
        self.assert_holds_exactly(self.now)

    def libraries(self):
        return [package for package in self.now if re.match("lib(ipod|ipodkit|qbxmiddleware-standin)1_", package.name)]

    def test_three_library_packages_replace_one(self):
        self.install([make_undivided(self.libraries(), self.path.parent)])
        # In the less favorable order, in which files of the old package are overwritten, and with apt's options.
        self.root.dpkg("--auto-deconfigure", "--install", *reversed(self.libraries()))
        self.assert_holds_exactly(self.libraries())

    def test_a_head_unit_keeps_its_own_middleware(self):
        middleware = make_middleware(pathlib.Path(self.scratch.name), self.architecture)
        core = [package for package in self.libraries() if package.name.startswith("libipod1_")]
        self.install([middleware])
        self.install(core)
        self.assertEqual(self.root.dpkg("--audit"), "")
        with self.assertRaises(Failed) as refused:
            self.install([package for package in self.libraries() if "standin" in package.name])
        self.assertIn("conflicting packages", str(refused.exception))

    def test_the_same_version_again_changes_nothing(self):
        self.install(self.now)
        self.install(self.now)
        self.assert_holds_exactly(self.now)

    def test_a_removal_leaves_nothing(self):
        self.install(self.now)
        self.root.dpkg("--remove", *(field(package, "Package") for package in self.now))
        self.assertEqual(self.root.files(), set())

    def test_newer_headers_and_tools_require_the_newer_library(self):
        self.install(self.now)
        for name in ("libipod-dev", "ipod-tools"):
            later = next(package for package in self.later if package.name.startswith(name))
            with self.assertRaises(Failed) as refused:
                self.install([later])
            self.assertRegex(str(refused.exception), rf"{name}\S* depends on libipod1 \(= {LATER}\S*\); however:\n"
                                                     r"  Version of libipod1\S* on system is ")

    def test_there_are_no_configuration_files(self):
        self.assertEqual([path for path in files_of(self.now) if path.startswith("/etc/")], [])
        for package in self.now:
            self.assertNotIn("conffiles", run("dpkg-deb", "--ctrl-tarfile", package, errors="replace"))


def become_root():
    """Reruns the test in a user namespace, because dpkg changes file ownership to root."""
    if os.geteuid() == 0:
        return
    if subprocess.run(["unshare", "--map-root-user", "true"], capture_output=True).returncode != 0:
        print("skipped: neither root nor user namespaces")
        sys.exit(77)
    os.execvp("unshare", ["unshare", "--map-root-user", sys.executable, *sys.argv])


if __name__ == "__main__":
    PACKAGES = sys.argv[1]
    if not shutil.which("dpkg-deb") or not list(pathlib.Path(PACKAGES).glob("*.deb")):
        print(f"skipped: no dpkg-deb, or no packages in {PACKAGES}")
        sys.exit(77)
    become_root()
    unittest.main(argv=sys.argv[:1] + sys.argv[2:], verbosity=2)
