#!/usr/bin/env python3
"""Each check must fail on a seeded violation and pass without it. Usage: check_tools_test.py CHECK [COMPILER NM]"""

import pathlib
import subprocess
import sys
import tempfile
import unittest

TOOLS = pathlib.Path(__file__).resolve().parent.parent
COMPILER, NM = sys.argv[2:4] if len(sys.argv) > 3 else ("cc", "nm")


class Case(unittest.TestCase):
    """A scratch tree, and the check that runs on it."""

    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.root = pathlib.Path(scratch.name)

    def write(self, name, text):
        path = self.root / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text, encoding="utf-8")
        return str(path)

    def run_check(self, tool, *arguments):
        result = subprocess.run([sys.executable, str(TOOLS / tool), *map(str, arguments)], text=True, timeout=60,
                                stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        return result.returncode, result.stdout

    def expect(self, expected, *arguments, **changed):
        """Checks with these arguments: EXPECTED is "" if the check must pass, otherwise a part of its output."""
        with self.subTest(arguments or changed):
            status, output = self.check(*arguments, **changed)
            self.assertEqual(status, 1 if expected else 0, output)
            self.assertIn(expected, output)


class CheckLayers(Case):
    def setUp(self):
        super().setUp()
        self.write("include/Public.h", "#include <string>\n")
        self.write("middleware/include/QBXLog.h", "#include <zlog.h>\n")
        self.write("libipod/internal/secret.h", "#pragma once\n")
        self.write("libipod/client.cpp", '#include "internal/secret.h"\n#include <Public.h>\n#include <ipod_dbus.h>\n')
        self.write("simulator/service.cpp", "#include <Public.h>\n#include <png.h>\n#include <ipod.pb.h>\n")

    def check(self, file=None, header=None):
        """With a source that includes a header."""
        if file:
            self.write(file, f'#include "{header}"\n')
        result = self.run_check("check-layers", self.root)
        if file:
            (self.root / file).unlink()
        return result

    def test_passes_what_the_rules_allow(self):
        self.expect("")
        self.expect("", "include/gvariant_data.h", "glib.h")
        self.expect("", "tests/unit/good.cpp", "internal/secret.h")

    def test_finds_what_a_folder_must_not_include(self):
        for file, header in (("simulator/bad.cpp", "internal/secret.h"), ("simulator/bad.cpp", "../libipod/internal/secret.h"),
                             ("tests/bus/bad.cpp", "internal/secret.h"), ("include/Bad.h", "glib.h"),
                             ("middleware/src/bad.cpp", "boost/optional.hpp"), ("middleware/src/bad.cpp", "Public.h")):
            module = "tests" if file.startswith("tests/") else file.split("/")[0]
            self.expect(f"{file}:1: {module} must not include {header}\n", file, header)

    def test_refuses_a_tree_without_sources(self):
        self.assertEqual(2, self.run_check("check-layers", self.root / "docs")[0])


class CheckLogTable(Case):
    SOURCE = ('int Client::Play(int option)\n{\n    LOG_INFO("play %d "\n             "now", option);\n'
              '    Call(SYNC(com_play_sync));\n}\n')
    TABLE = ("| `play %d now` | INFO | `Play` | it plays |\n"
             "| `com_{method}_sync: Failed to call dbus method. Reason: %s.` | ERROR | `{Method}` | it does not |\n")
    XML = '<node><interface name="com"><method name="Play"/>{}</interface></node>'

    STOP = 'void Stop()\n{\n    LOG_WARN("%s");\n}\n'

    def check(self, more="", source=SOURCE, methods=""):
        """With more rows in the table."""
        self.write("libipod/client.cpp", source)
        return self.run_check("check-log-table", self.write("docs/logging.md", self.TABLE + more), self.root / "libipod",
                              self.write("com.xml", self.XML.format(methods)))

    def test_passes_when_table_and_code_agree(self):
        self.expect("")

    def test_finds_differences(self):
        for expected, source in (
                ("not in logging.md: | `stop` | WARN | `Stop` |", self.SOURCE + self.STOP % "stop"),
                ("not in logging.md: | `play %d now` | ERROR | `Play` |", self.SOURCE.replace("LOG_INFO", "LOG_ERROR")),
                ("not in logging.md: | `play %d now` | INFO | `Start` |", self.SOURCE.replace("::Play", "::Start")),
                ("com_stop_sync: Failed to call dbus method. Reason: %s.` | ERROR | `Play` |",
                 self.SOURCE.replace("com_play", "com_stop")),
                ("without a literal text", self.SOURCE.replace('"play %d "\n             "now"', "kText"))):
            self.expect(expected, source=source)
        self.expect("not in the code: | `gone` | INFO | `Play` |", "| `gone` | INFO | `Play` | x |\n")
        self.expect("not in the code: | `com_enter_db_root_sync: Failed", methods='<method name="EnterDbRoot"/>')
        self.expect("an exception for Gone", "| `Gone` | — |\n")

    def test_accepts_the_exceptions_of_a_template(self):
        status, output = self.check("| `Play` | `PlayIt` |\n| `Notify` | — |\n", self.SOURCE.replace("::Play", "::PlayIt"),
                                    '<method name="Notify"/>')
        self.assertEqual(1, status, output)
        self.assertNotIn("com_", output)

    def test_accepts_several_functions_in_a_row(self):
        status, output = self.check("| `{function}()` | WARN | `Stop`, `Next` | x |\n", self.SOURCE + self.STOP % "Stop()")
        self.assertEqual(1, status, output)
        self.assertIn("not in the code: | `Next()` | WARN | `Next` |", output)
        self.assertNotIn("`Stop()`", output)


class CheckFunctionSize(Case):
    def function(self, lines, indent=""):
        return f"{indent}int Long(int a,\n{indent}         int b)\n{indent}{{\n" + f"{indent}    a += b;\n" * lines + f"{indent}}}\n"

    def check(self, text):
        self.write("libipod/unit.cpp", text)
        return self.run_check("check-function-size", self.root / "libipod")

    def test_finds_a_function_that_is_one_line_too_long(self):
        self.expect("", self.function(40))
        for text in (self.function(41), "class C\n{\n" + self.function(41, "    ") + "};\n",
                     self.function(0)[:-2] + "    if (a)\n    {\n" + "        ++a;\n" * 38 + "    }\n}\n"):
            self.expect("Long() has 41 lines, the limit is 40", text)

    def test_treats_neither_namespaces_nor_tables_as_functions(self):
        table = "const int kTable[] =\n{\n" + "    1,\n" * 60 + "};\n"
        status, output = self.check("namespace a\n{\n" + table + "void F() { g(); }\n}\n")
        self.assertEqual(0, status, output)
        self.assertIn("1 functions, median 1 lines", output)

    def test_measures_a_lambda_in_a_table_without_a_name(self):
        long = "    {\"long\",\n     [](int& a)\n     {\n" + "         ++a;\n" * 41 + "     }},\n"
        short = "    {\"short\",\n     [](int& a) { ++a; }\n    },\n"
        status, output = self.check("const Row kTable[] = {\n" + long + short + "};\n")
        self.assertEqual(1, status, output)
        self.assertIn("lambda() has 41 lines", output)
        self.assertIn("2 functions", output)

    def test_refuses_a_folder_without_functions(self):
        self.assertEqual(2, self.check("int x;\n")[0])


class CheckExports(Case):
    def check(self, listed, source="int offered(void) { return 1; }\nint made_by_tool(void) { return 2; }\n"):
        library = self.root / "lib.so"
        subprocess.run([COMPILER, "-shared", "-fPIC", "-nostdlib", "-o", str(library), self.write("lib.c", source)],
                       check=True, timeout=60)
        return self.run_check("check-exports", library, self.write("exports.txt", listed), NM)

    def test_passes_when_the_list_matches_every_symbol_and_every_line_matches_one(self):
        for listed in ("# comment\noffered\nmade_by_tool\n", "offered\npattern: made_.*\npattern: never_there\n",
                       "offer[ei]d\nmade_by_tool\n"):
            self.expect("", listed)

    def test_finds_differences(self):
        for listed, expected in (("offered\n", "exported but not listed: made_by_tool"),
                                 ("offered\npattern: made\n", "exported but not listed: made_by_tool"),
                                 ("offered\nmade_by_tool\ngone\n", "listed but not exported: gone"),
                                 ("offer[aio]d\noffered\nmade_by_tool\n", "listed but not exported: offer[aio]d")):
            self.expect(expected, listed)


class CheckContract(Case):
    """On the tree's own document: one thing is changed at a time."""

    TREE = TOOLS.parent
    FILES = {"document": "docs/contract.md", "xml": "ipc/com.zarn.linux.ipod.xml", "proto": "proto/ipod.proto"}

    def check(self, changed=None, before="", after=""):
        texts = {name: (self.TREE / path).read_text(encoding="utf-8") for name, path in self.FILES.items()}
        if changed:
            self.assertIn(before, texts[changed])
            texts[changed] = texts[changed].replace(before, after, 1)
        return self.run_check("check-contract", *(self.write(name, text) for name, text in texts.items()))

    def test_passes_the_tree_as_it_is(self):
        status, output = self.check()
        self.assertEqual(0, status, output)
        self.assertIn("66 members, 14 fields, 0 differences", output)

    def test_finds_differences(self):
        pause = '<method name="Pause">'
        for expected, changed, before, after in (
                ("EapWrite", "document", "| `SessionID`: q |", "| `SessionID`: y |"),
                ("fromtop", "xml", 'name="formtop"', 'name="fromtop"'),
                ("Break", "xml", pause, '<method name="Break"/>' + pause),
                ("only in the document: ('signal', 'OnPlayStatusChanged'", "xml", '<signal name="OnPlayStatusChanged">',
                 '<signal name="OnChanged">'),
                ("order", "document", "| `Pause` | | `result`: b |\n| `Stop` | | `result`: b |",
                 "| `Stop` | | `result`: b |\n| `Pause` | | `result`: b |"),
                ("State", "xml", pause, '<property name="State" type="i" access="read"/>' + pause),
                ("object path", "xml", 'node name="/com/zarn/linux/ipod"', 'node name="/com/zarn"'),
                ("remote_id", "proto", "remote_id = 1;", "remote_id = 13;")):
            self.expect(expected, changed, before, after)


class CheckLinks(Case):
    def check(self, text):
        self.write("docs/other.md", "# Other page\n\n## `code`, and *more*\n\n    # no heading\n\n## Twice\n## Twice\n")
        self.write("docs/page.md", text)
        return self.run_check("check-links", self.root)

    def test_passes_links_that_lead_somewhere_and_those_in_code(self):
        for text in ("# Here\n[a](other.md) [b](other.md#code-and-more) [c](#here) [d](../docs)\n"
                     "[e](https://example.com/x#y) [f](other.md#twice-1) ![g](other.md)\n[h]: other.md\n",
                     "[a](other.md)\n```cpp\n[](gone)\n```\n`[](gone)`\n\n    [](gone)\n"):
            self.expect("", text)

    def test_finds_links_that_lead_nowhere(self):
        for text, expected in (("[a](gone.md)\n", "docs/page.md:1: gone.md"), ("[a]: gone.md\n", "docs/page.md:1: gone.md"),
                               ("[a](other.md)\n[b](other.md#gone)\n", "docs/page.md:2: other.md#gone"),
                               ("# Here\n[a](#there)\n", "docs/page.md:2: #there"),
                               ("[a](other.md#no-heading)\n", "#no-heading")):
            self.expect(expected, text)

    def test_refuses_documents_without_links(self):
        self.assertEqual(1, self.check("nothing\n")[0])


class CheckWords(Case):
    def check(self, text):
        return self.run_check("check-words", "--no-spelling", self.write("docs/page.md", text))

    def test_finds_expressions_to_avoid(self):
        for text, expected in (("The library fails with an error.\n", ""), ("No memory is to be\nhad.\n", "page.md:"),
                               ("Good.\nThe list is another one than before.\n", "page.md:2: 'is another one than'")):
            self.expect(expected, text)

    def test_refuses_to_check_nothing(self):
        self.assertEqual(2, self.run_check("check-words", "--no-spelling", self.root / "*.none")[0])


class MakeMessages(Case):
    SOURCE = 'void Open()\n{\n    throw Failure(kUsage, "cannot open \'" + Printable(path) + "\': " + why, "try again later");\n}\n'

    def setUp(self):
        super().setUp()
        self.write("docs/ipodctl-reference.md", "lists all commands\n")
        self.write("run", 'die "unknown verb \'$1\'" "list the verbs"\n')
        self.write("ipodctl/open.cpp", self.SOURCE + 'const char* kHelp = "lists all commands";\n')
        self.assertEqual((0, ""), self.run_check("make-messages", self.root))

    def test_lists_messages_with_their_hints_and_no_help(self):
        page = (self.root / "docs/messages.md").read_text(encoding="utf-8")
        self.assertIn("* cannot open '…': … · try again later\n", page)
        self.assertIn("* unknown verb '…' · list the verbs\n", page)
        self.assertNotIn("lists all commands", page)

    def test_passes_a_current_page(self):
        status, output = self.run_check("make-messages", "--check", self.root)
        self.assertEqual(0, status, output)

    def test_finds_a_changed_message(self):
        self.write("ipodctl/open.cpp", self.SOURCE.replace("cannot open", "failed to open"))
        status, output = self.run_check("make-messages", "--check", self.root)
        self.assertEqual(1, status, output)
        self.assertIn("+* failed to open '…': … · try again later", output)


class Hardening(Case):
    SOURCE = "void __stack_chk_fail(void) {}\nvoid start(void) {}\n"

    def check(self, name, *link):
        """The verdict on an unoptimized program or library that is hardened as far as LINK says."""
        built = self.root / name
        built.parent.mkdir(parents=True, exist_ok=True)
        subprocess.run([COMPILER, "-fPIC", "-nostdlib", "-Wl,-z,relro,-z,now", *link, "-o", str(built),
                        self.write("source.c", self.SOURCE)], check=True, timeout=60)
        return self.run_check("../tests/faults/hardening_test.py", 0, built)

    def test_expects_the_flags_of_programs_in_any_build(self):
        for name in ("build/program", "libipod/build/program", "libipod.so.d/program"):
            with self.subTest(name):
                self.assertEqual((0, "1 hardened, 0 not\n"), self.check(name, "-pie", "-rdynamic", "-Wl,-e,start"))

    def test_finds_a_library_that_can_be_unloaded(self):
        status, output = self.check("build/libipod.so.1", "-shared")
        self.assertEqual(1, status, output)
        self.assertIn("libipod.so.1: lacks never unloaded", output)


class CheckKitDocs(Case):
    CODE = "int main()\n{\n    show();\n}\n"
    EXAMPLES = ("now_playing", "now_playing_coroutine", "browse_and_jump", "browse_and_jump_coroutine")

    def check(self, block="show();\n", names="`OnChange()`, `Pause()`", code=CODE):
        for name in self.EXAMPLES:
            self.write(f"examples/{name}.cpp", code)
        self.write("include/IQBXIpodPlayer.h", "    virtual bool Pause() = 0;\n")
        self.write("include/IQBXIpodPlayerListener.h", "    virtual ~Listener();\n    virtual void OnChange(int) {}\n")
        self.write("include/IQBXService.h", "")
        self.write("include/IQBXListener.h", "")
        self.write("docs/ipodkit.md", f"From `now_playing.cpp`:\n\n```cpp\n{block}```\n")
        self.write("docs/ipodkit-migration.md", names)
        return self.run_check("check-kit-docs", self.root)

    def test_passes_excerpts_and_complete_tables(self):
        self.assertEqual((0, "check-kit-docs: 1 excerpts, 2 operations, 0 wrong\n"), self.check())

    def test_finds_what_differs_is_missing_or_too_long(self):
        self.expect("docs/ipodkit.md:3: differs from examples/now_playing.cpp", block="show(1);\n")
        self.expect("docs/ipodkit.md:3: differs", block="{\nshow();\n")
        self.expect("lacks Pause()", names="`OnChange()`")
        self.expect("lacks OnChange()", names="`Pause()`, OnChange()")
        self.expect("browse_and_jump.cpp: 34 lines, at most 30", code=self.CODE + "// no code\n\nf();\n" * 30)
        self.expect("docs/ipodkit-migration.md: 702 words", names="`Pause()` `OnChange()` " + "word " * 700)


class CompareTestLists(Case):
    def build(self, name, tests):
        lines = "".join(f'add_test({test} "true")\n' for test in tests)
        self.write(f"{name}/CTestTestfile.cmake", lines)
        return self.root / name

    def check(self, native, other, excluded="", *options):
        return self.run_check("compare-test-lists", self.build("native", native), self.build("other", other),
                              self.write("excluded", excluded), *options)

    def test_compares_both_lists_and_the_exclusions(self):
        for expected, *arguments in (
                ("", ["a", "b"], ["b", "a"]),
                ("", ["a", "b1", "b2"], ["a"], "# comment\nb.  no such thing there\n"),
                ("", ["a", "b"], ["a"], "", "--exclude-regex", "b"),
                ("only native, without a reason: b", ["a", "b"], ["a"]),
                ("not native: b", ["a"], ["a", "b"]),
                ("leaves nothing out any more: a", ["a"], ["a"], "a  once it could not\n")):
            self.expect(expected, *arguments)

    def test_reports_exclusions_with_their_reasons(self):
        _, output = self.check(["a", "b1", "b2"], ["a"], "# comment\nb.  no such thing there\n")
        self.assertIn("left out: b. (2): no such thing there", output)
        self.assertIn("tests: 3 native, 1 here, 2 left out with a reason, 0 differences", output)

    def test_rejects_a_missing_build(self):
        self.assertEqual(2, self.check(["a"], [])[0])
        self.assertEqual(2, self.check(["a"], ["a_NOT_BUILT"])[0])
        status, output = self.run_check("compare-test-lists", self.root / "none", self.root / "none", "excluded")
        self.assertEqual((2, f"compare-test-lists: {self.root}/none is not built\n"), (status, output))


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], "--verbose", *sys.argv[1:2]])
