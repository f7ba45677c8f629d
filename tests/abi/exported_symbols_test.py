#!/usr/bin/env python3
"""Checks what the built library exposes to the loader. Usage: exported_symbols_test.py LIBRARY READELF NM BOOST-VERSION"""

import re
import subprocess
import sys
import unittest

LIBRARY, READELF, NM = sys.argv[1:4]
BOOST = tuple(int(number) for number in sys.argv[4].split("."))

# The first version whose exceptions are visible to the linker, and the first one without a boost_system library.
BOOST_SHOWS_EXCEPTIONS, BOOST_HAS_NO_SYSTEM = (1, 62), (1, 89)

# Third-party templates instantiated with this library's messages exist nowhere else.
OURS_BY_ARGUMENT = re.compile(r"_ZN6google8protobuf5Arena18CreateMaybeMessageIN4ipod")

# Without these, whether a program can catch the library's exceptions by type would depend on the program.
EXCEPTIONS = ("interprocess_exception", "bad_alloc", "lock_exception")


def output_of(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def symbols(which):
    lines = output_of(NM, "-D", which, "--with-symbol-versions", LIBRARY).splitlines()
    return [line.split()[-1] for line in lines if line.split()[-2] != "A"]


def owner(mangled):
    """The outermost scope of a mangled name: "boost", "google", "std"; empty for names of C and of no scope."""
    name = re.sub(r"^_Z(?:T[A-Zc]|G[VR])?", "", mangled)
    if re.match(r"N?[VK]*S[tabsiod]", name):
        return "std"
    nested = re.match(r"N[VKRO]*(\d+)", name)
    if not nested:
        return ""
    start = nested.end()
    return name[start:start + int(nested.group(1))]


class TheLibrary(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.dynamic = output_of(READELF, "-dW", LIBRARY)
        cls.exported = symbols("--defined-only")
        cls.names = [symbol.split("@")[0] for symbol in cls.exported]
        cls.imported = [symbol.split("@")[0] for symbol in symbols("--undefined-only")]

    def test_is_found_by_programs_under_its_major_version(self):
        self.assertIn("Library soname: [libipod.so.1]", self.dynamic)

    def test_is_never_unloaded(self):
        self.assertIn("NODELETE", self.dynamic)

    def test_needs_the_boost_libraries_that_the_head_unit_is_checked_for(self):
        if BOOST < BOOST_HAS_NO_SYSTEM:
            self.assertRegex(self.dynamic, r"NEEDED.*libboost_system\.so")
        self.assertRegex(self.dynamic, r"NEEDED.*libboost_filesystem\.so")

    def test_every_symbol_has_its_version(self):
        self.assertGreater(len(self.exported), 250)
        self.assertEqual([s for s in self.exported if not s.endswith("@@IPOD_1")], [])

    def test_exports_no_symbols_of_its_dependencies(self):
        foreign = [n for n in self.names if owner(n) in ("boost", "google", "std", "__gnu_cxx", "QBXMutex", "QBXSource")]
        leaked = [n for n in foreign if not OURS_BY_ARGUMENT.match(n) and not re.match(r"_ZT[IS]N5boost", n)]
        leaked += [n for n in self.names if "log_category" in n or n.startswith("zlog")]
        self.assertEqual(leaked, [])

    def test_exports_only_exception_types_of_boost(self):
        shown = {n for n in self.names if owner(n) == "boost"}
        wanted = {f"_ZT{kind}N5boost12interprocess{len(e)}{e}E" for kind in "IS" for e in EXCEPTIONS}
        if BOOST >= BOOST_SHOWS_EXCEPTIONS:
            self.assertEqual(shown, wanted)
        self.assertLessEqual(shown, wanted)

    def test_leaves_log_sink_and_source_manager_to_the_program(self):
        for seam in ("zlog", "liblog_category", "_ZN9QBXSource7RequestEiNS_13AudioGainTypeE",
                     "_ZN9QBXSource9IsActivedEi", "_ZN9QBXSource7ReleaseEii", "_ZN8QBXMutex4LockEv"):
            self.assertIn(seam, self.imported)

    def test_offers_both_halves_of_the_bus_binding(self):
        for half in ("proxy_new_for_bus_sync", "call_play_sync", "skeleton_new", "complete_play",
                     "emit_on_play_status_changed"):
            self.assertIn("com_zarn_linux_ipod_" + half, self.names)


class TheReaderOfMangledNames(unittest.TestCase):
    def test_finds_the_owner_of_a_symbol(self):
        scopes = {
            "_ZTIN5boost12interprocess9bad_allocE": "boost",
            "_ZN6google8protobuf5Arena8AllocateEv": "google",
            "_ZNSt6vectorIiSaIiEE9push_backERKi": "std",
            "_ZNK4ipod11iPodBattery12ByteSizeLongEv": "ipod",
            "_Z17QBX_GetIpodPlayerv": "",
            "zlog": "",
        }
        self.assertEqual({name: owner(name) for name in scopes}, scopes)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=2)
