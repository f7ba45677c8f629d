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


class CheckLayers(Case):
    def setUp(self):
        super().setUp()
        self.write("include/Public.h", "#include <string>\n")
        self.write("middleware/include/QBXLog.h", "#include <zlog.h>\n")
        self.write("libipod/internal/secret.h", "#pragma once\n")
        self.write("libipod/client.cpp", '#include "internal/secret.h"\n#include <Public.h>\n#include <ipod_dbus.h>\n')
        self.write("simulator/service.cpp", "#include <Public.h>\n#include <png.h>\n#include <ipod.pb.h>\n")

    def check(self):
        return self.run_check("check-layers", self.root)

    def expect_violation(self, file, text, header):
        self.write(file, text)
        status, output = self.check()
        self.assertEqual(1, status, output)
        self.assertIn(f"{file}:1: ", output)
        self.assertIn(f"must not include {header}", output)

    def test_passes_a_tree_that_keeps_the_rules(self):
        status, output = self.check()
        self.assertEqual(0, status, output)

    def test_finds_a_simulator_that_includes_the_client(self):
        self.expect_violation("simulator/bad.cpp", '#include "internal/secret.h"\n', "internal/secret.h")

    def test_finds_the_detour_by_a_relative_path(self):
        self.expect_violation("simulator/bad.cpp", '#include "../libipod/internal/secret.h"\n',
                              "../libipod/internal/secret.h")

    def test_finds_a_public_header_that_needs_glib(self):
        self.expect_violation("include/Bad.h", "#include <glib.h>\n", "glib.h")

    def test_allows_glib_in_the_header_about_variants(self):
        self.write("include/gvariant_data.h", "#include <glib.h>\n")
        self.assertEqual(0, self.check()[0])

    def test_finds_boost_in_the_middleware(self):
        self.expect_violation("middleware/src/bad.cpp", "#include <boost/optional.hpp>\n", "boost/optional.hpp")

    def test_finds_a_public_header_in_the_middleware(self):
        self.expect_violation("middleware/src/bad.cpp", "#include <Public.h>\n", "Public.h")

    def test_finds_a_bus_test_that_includes_the_client(self):
        self.expect_violation("tests/bus/bad.cpp", '#include "internal/secret.h"\n', "internal/secret.h")

    def test_allows_a_unit_test_that_includes_the_client(self):
        self.write("tests/unit/good.cpp", '#include "internal/secret.h"\n')
        self.assertEqual(0, self.check()[0])

    def test_refuses_a_tree_without_sources(self):
        self.assertEqual(2, self.run_check("check-layers", self.root / "docs")[0])


class CheckLogTable(Case):
    SOURCE = ('int Client::Play(int option)\n{\n    LOG_INFO("play %d "\n             "now", option);\n'
              '    Call(SYNC(com_play_sync));\n}\n')
    TABLE = ("| `play %d now` | INFO | `Play` | it plays |\n"
             "| `com_{method}_sync: Failed to call dbus method. Reason: %s.` | ERROR | `{Method}` | it does not |\n")
    XML = '<node><interface name="com"><method name="Play"/>{}</interface></node>'

    def check(self, table, source, methods=""):
        self.write("libipod/client.cpp", source)
        return self.run_check("check-log-table", self.write("docs/logging.md", table), self.root / "libipod",
                              self.write("com.xml", self.XML.format(methods)))

    def expect_violation(self, table, source, line):
        status, output = self.check(table, source)
        self.assertEqual(1, status, output)
        self.assertIn(line, output)

    def test_passes_when_table_and_code_agree(self):
        status, output = self.check(self.TABLE, self.SOURCE)
        self.assertEqual(0, status, output)

    def test_finds_a_log_site_without_a_row(self):
        self.expect_violation(self.TABLE, self.SOURCE + 'void Stop()\n{\n    LOG_WARN("stop");\n}\n',
                              "not in logging.md: | `stop` | WARN | `Stop` |")

    def test_finds_a_row_without_a_log_site(self):
        self.expect_violation(self.TABLE + "| `gone` | INFO | `Play` | x |\n", self.SOURCE,
                              "not in the code: | `gone` | INFO | `Play` |")

    def test_finds_another_level(self):
        self.expect_violation(self.TABLE, self.SOURCE.replace("LOG_INFO", "LOG_ERROR"),
                              "not in logging.md: | `play %d now` | ERROR | `Play` |")

    def test_finds_another_function(self):
        self.expect_violation(self.TABLE, self.SOURCE.replace("::Play", "::Start"),
                              "not in logging.md: | `play %d now` | INFO | `Start` |")

    def test_finds_a_call_without_a_row(self):
        self.expect_violation(self.TABLE, self.SOURCE.replace("com_play", "com_stop"),
                              "com_stop_sync: Failed to call dbus method. Reason: %s.` | ERROR | `Play` |")

    def test_finds_a_method_whose_call_the_code_lacks(self):
        status, output = self.check(self.TABLE, self.SOURCE, '<method name="EnterDbRoot"/>')
        self.assertEqual(1, status, output)
        self.assertIn("not in the code: | `com_enter_db_root_sync: Failed", output)

    def test_accepts_the_exceptions_of_a_template(self):
        status, output = self.check(self.TABLE + "| `Play` | `PlayIt` |\n| `Notify` | — |\n",
                                    self.SOURCE.replace("::Play", "::PlayIt"), '<method name="Notify"/>')
        self.assertEqual(1, status, output)
        self.assertNotIn("com_", output)

    def test_accepts_several_functions_in_a_row(self):
        status, output = self.check(self.TABLE + "| `{function}()` | WARN | `Stop`, `Next` | x |\n", self.SOURCE +
                                    'void Stop()\n{\n    LOG_WARN("Stop()");\n}\n')
        self.assertEqual(1, status, output)
        self.assertIn("not in the code: | `Next()` | WARN | `Next` |", output)
        self.assertNotIn("`Stop()`", output)

    def test_refuses_an_exception_for_no_method(self):
        status, output = self.check(self.TABLE + "| `Gone` | — |\n", self.SOURCE)
        self.assertEqual(1, status, output)
        self.assertIn("an exception for Gone", output)

    def test_refuses_a_log_site_whose_text_it_cannot_read(self):
        status, output = self.check(self.TABLE, self.SOURCE.replace('"play %d "\n             "now"', "kText"))
        self.assertEqual(1, status)
        self.assertIn("without a literal text", output)


class CheckFunctionSize(Case):
    def function(self, lines, indent=""):
        return f"{indent}int Long(int a,\n{indent}         int b)\n{indent}{{\n" + f"{indent}    a += b;\n" * lines + f"{indent}}}\n"

    def check(self, text):
        self.write("libipod/unit.cpp", text)
        return self.run_check("check-function-size", self.root / "libipod")

    def test_passes_a_function_of_the_size_that_is_allowed(self):
        status, output = self.check(self.function(40))
        self.assertEqual(0, status, output)
        self.assertIn("1 functions, median 40 lines", output)

    def test_finds_a_function_that_is_one_line_too_long(self):
        status, output = self.check(self.function(41))
        self.assertEqual(1, status)
        self.assertIn("Long() has 41 lines, the limit is 40", output)

    def test_finds_a_long_member_of_a_class(self):
        status, output = self.check("class C\n{\n" + self.function(41, "    ") + "};\n")
        self.assertEqual(1, status)
        self.assertIn("Long() has 41 lines", output)

    def test_counts_blocks_inside_a_function_as_part_of_it(self):
        body = "    if (a)\n    {\n" + "        ++a;\n" * 38 + "    }\n"
        status, output = self.check("void F(int a)\n{\n" + body + "}\n")
        self.assertEqual(1, status)
        self.assertIn("F() has 41 lines", output)

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

    def test_passes_when_library_and_list_agree(self):
        status, output = self.check("# comment\noffered\nmade_by_tool\n")
        self.assertEqual(0, status, output)

    def test_allows_what_a_pattern_matches_without_asking_for_it(self):
        status, output = self.check("offered\npattern: made_.*\npattern: never_there\n")
        self.assertEqual(0, status, output)

    def test_finds_a_symbol_that_is_not_listed(self):
        status, output = self.check("offered\n")
        self.assertEqual(1, status)
        self.assertIn("exported but not listed: made_by_tool", output)

    def test_finds_a_listed_symbol_that_is_missing(self):
        status, output = self.check("offered\nmade_by_tool\ngone\n")
        self.assertEqual(1, status)
        self.assertIn("listed but not exported: gone", output)

    def test_matches_patterns_against_whole_names(self):
        status, output = self.check("offered\npattern: made\n")
        self.assertEqual(1, status, output)

    def test_knows_one_symbol_by_the_names_of_several_architectures(self):
        self.assertEqual(0, self.check("offer[ei]d\nmade_by_tool\n")[0])
        status, output = self.check("offer[aio]d\noffered\nmade_by_tool\n")
        self.assertEqual(1, status)
        self.assertIn("listed but not exported: offer[aio]d", output)


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

    def expect_difference(self, changed, before, after, told):
        status, output = self.check(changed, before, after)
        self.assertEqual(1, status, output)
        self.assertIn(told, output)

    def test_passes_the_tree_as_it_is(self):
        status, output = self.check()
        self.assertEqual(0, status, output)
        self.assertIn("66 members, 14 fields, 0 differences", output)

    def test_finds_another_type(self):
        self.expect_difference("document", "| `SessionID`: q |", "| `SessionID`: y |", "EapWrite")

    def test_finds_another_argument_name(self):
        self.expect_difference("xml", 'name="formtop"', 'name="fromtop"', "fromtop")

    def test_finds_a_member_that_is_not_documented(self):
        self.expect_difference("xml", '<method name="Pause">', '<method name="Break"/><method name="Pause">', "Break")

    def test_finds_a_missing_member(self):
        self.expect_difference("xml", '<signal name="OnPlayStatusChanged">', '<signal name="OnChanged">',
                               "only in the document: ('signal', 'OnPlayStatusChanged'")

    def test_finds_another_order(self):
        self.expect_difference("document", "| `Pause` | | `result`: b |\n| `Stop` | | `result`: b |",
                               "| `Stop` | | `result`: b |\n| `Pause` | | `result`: b |", "order")

    def test_finds_a_property(self):
        self.expect_difference("xml", '<method name="Pause">',
                               '<property name="State" type="i" access="read"/><method name="Pause">', "State")

    def test_finds_another_path(self):
        self.expect_difference("xml", 'node name="/com/zarn/linux/ipod"', 'node name="/com/zarn"', "object path")

    def test_finds_another_field_number(self):
        self.expect_difference("proto", "remote_id = 1;", "remote_id = 13;", "remote_id")


class CheckLinks(Case):
    def check(self, text):
        self.write("docs/other.md", "# Other page\n\n## `code`, and *more*\n\n    # no heading\n\n## Twice\n## Twice\n")
        self.write("docs/page.md", text)
        return self.run_check("check-links", self.root)

    def expect_dangling(self, text, link):
        status, output = self.check(text)
        self.assertEqual(1, status, output)
        self.assertIn(link, output)

    def test_passes_links_that_lead_somewhere(self):
        status, output = self.check("# Here\n[a](other.md) [b](other.md#code-and-more) [c](#here) [d](../docs)\n"
                                    "[e](https://example.com/x#y) [f](other.md#twice-1) ![g](other.md)\n[h]: other.md\n")
        self.assertEqual(0, status, output)

    def test_finds_a_missing_file(self):
        self.expect_dangling("[a](gone.md)\n", "docs/page.md:1: gone.md")

    def test_finds_a_missing_anchor(self):
        self.expect_dangling("[a](other.md)\n[b](other.md#gone)\n", "docs/page.md:2: other.md#gone")

    def test_finds_a_missing_anchor_of_its_own_page(self):
        self.expect_dangling("# Here\n[a](#there)\n", "docs/page.md:2: #there")

    def test_finds_a_missing_file_of_a_reference(self):
        self.expect_dangling("[a]: gone.md\n", "docs/page.md:1: gone.md")

    def test_ignores_headings_in_code(self):
        self.expect_dangling("[a](other.md#no-heading)\n", "#no-heading")

    def test_ignores_links_in_code(self):
        status, output = self.check("[a](other.md)\n```cpp\n[](gone)\n```\n`[](gone)`\n\n    [](gone)\n")
        self.assertEqual(0, status, output)

    def test_refuses_documents_without_links(self):
        self.assertEqual(1, self.check("nothing\n")[0])


class CheckWords(Case):
    def check(self, text):
        return self.run_check("check-words", "--no-spelling", self.write("docs/page.md", text))

    def test_passes_plain_words(self):
        status, output = self.check("The library fails with an error.\n")
        self.assertEqual(0, status, output)

    def test_finds_an_expression_and_its_replacement(self):
        status, output = self.check("Good.\nThe list is another one than before.\n")
        self.assertEqual(1, status, output)
        self.assertIn("page.md:2: 'is another one than'", output)

    def test_finds_an_expression_across_a_line_break(self):
        status, output = self.check("No memory is to be\nhad.\n")
        self.assertEqual(1, status, output)

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
        """The verdict on an unoptimised program or library that is hardened as far as LINK says."""
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

    def expect_violation(self, line, **changed):
        status, output = self.check(**changed)
        self.assertEqual(1, status, output)
        self.assertIn(line, output)

    def test_passes_excerpts_and_complete_tables(self):
        self.assertEqual((0, "check-kit-docs: 1 excerpts, 2 operations, 0 wrong\n"), self.check())

    def test_finds_code_that_differs(self):
        self.expect_violation("docs/ipodkit.md:3: differs from examples/now_playing.cpp", block="show(1);\n")
        self.expect_violation("docs/ipodkit.md:3: differs", block="{\nshow();\n")

    def test_finds_an_operation_that_is_missing(self):
        self.expect_violation("lacks Pause()", names="`OnChange()`")
        self.expect_violation("lacks OnChange()", names="`Pause()`, OnChange()")

    def test_finds_an_excess(self):
        self.expect_violation("browse_and_jump.cpp: 34 lines, at most 30", code=self.CODE + "// no code\n\nf();\n" * 30)
        self.expect_violation("docs/ipodkit-migration.md: 702 words", names="`Pause()` `OnChange()` " + "word " * 700)


class CompareTestLists(Case):
    def build(self, name, tests):
        lines = "".join(f'add_test({test} "true")\n' for test in tests)
        self.write(f"{name}/CTestTestfile.cmake", lines)
        return self.root / name

    def check(self, native, other, excluded="", *options):
        return self.run_check("compare-test-lists", self.build("native", native), self.build("other", other),
                              self.write("excluded", excluded), *options)

    def test_passes_equal_lists(self):
        status, output = self.check(["a", "b"], ["b", "a"])
        self.assertEqual(0, status, output)
        self.assertIn("tests: 2 native, 2 here, 0 left out with a reason, 0 differences", output)

    def test_finds_a_test_that_is_missing_without_a_reason(self):
        status, output = self.check(["a", "b"], ["a"])
        self.assertEqual(1, status)
        self.assertIn("only native, without a reason: b", output)

    def test_finds_a_test_that_is_not_native(self):
        status, output = self.check(["a"], ["a", "b"])
        self.assertEqual(1, status)
        self.assertIn("not native: b", output)

    def test_reports_the_reason_of_an_exclusion(self):
        status, output = self.check(["a", "b1", "b2"], ["a"], "# comment\nb.  no such thing there\n")
        self.assertEqual(0, status, output)
        self.assertIn("left out: b. (2): no such thing there", output)

    def test_finds_an_exclusion_that_is_none_any_more(self):
        status, output = self.check(["a"], ["a"], "a  once it could not\n")
        self.assertEqual(1, status)
        self.assertIn("leaves nothing out any more: a", output)

    def test_compares_the_tests_that_the_options_leave(self):
        status, output = self.check(["a", "b"], ["a"], "", "--exclude-regex", "b")
        self.assertEqual(0, status, output)
        self.assertIn("tests: 1 native, 1 here, ", output)

    def test_compares_nothing_with_a_build_that_is_not_there(self):
        self.assertEqual(2, self.check(["a"], [])[0])
        self.assertEqual(2, self.check(["a"], ["a_NOT_BUILT"])[0])


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], "--verbose", *sys.argv[1:2]])
