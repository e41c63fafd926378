# SPDX-License-Identifier: MIT
"""The checks themselves, on small trees that keep or break a convention."""

import tempfile
import unittest
from pathlib import Path

import contracts
import engine
import formatting
import includes
import licences
import sizes
import vector_code
import versions


class Tree(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = Path(folder.name)

    def write(self, name, text):
        path = self.root / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text, encoding="utf-8")


class Contracts(Tree):
    def setUp(self):
        super().setUp()
        self.write("tests/list_test.cpp", "TEST(List, Empties)\n{\n}\nTEST_P(Shapes, Hold) {}\n")

    def faults_of(self, text):
        self.write("src/foundation/list.h", text)
        return contracts.check(self.root)

    def test_existing_test_is_accepted(self):
        self.assertEqual(self.faults_of("// Contract: it empties. Test: List.Empties\n"), [])

    def test_name_may_stand_on_a_later_line(self):
        self.assertEqual(self.faults_of("/// Contract: it\n/// empties. Test:\n/// List.Empties\n"), [])

    def test_several_tests_may_be_named(self):
        self.assertEqual(self.faults_of("// Contract: it empties. Test: List.Empties, Shapes.Hold\n"), [])

    def test_comment_behind_code_is_read(self):
        self.assertEqual(len(self.faults_of("int a; ///< Contract: unset.\n")), 1)

    def test_missing_name_is_found(self):
        faults = self.faults_of("// Contract: it empties.\nint a; // Test: List.Empties\n")
        self.assertEqual(faults, ["src/foundation/list.h:1: the contract names no test"])

    def test_unknown_test_is_found(self):
        faults = self.faults_of("\n// Contract: it fills. Test: List.Fills\n")
        self.assertEqual(faults, ["src/foundation/list.h:2: there is no test List.Fills"])

    def test_each_contract_of_a_comment_needs_its_own(self):
        faults = self.faults_of("// Contract: one.\n// Contract: two. Test: List.Empties\n")
        self.assertEqual(len(faults), 1)


class Includes(Tree):
    def setUp(self):
        super().setUp()
        for name in ["common/ray.h", "src/foundation/list.h", "src/filters/tone.h", "src/umbrix/grading.h"]:
            self.write(name, "")
        self.write("src/umbrix/umbrix_options.h", "")
        self.write("src/boundary/texture_kernels.h", "")
        self.write("src/umbrixlib.h", '#include "foundation/list.h"\n')
        self.write("toolkit/files/temporary.h", "")
        self.write("toolkit/settings/preset.h", "")

    def faults_of(self, name, *lines):
        self.write(name, "".join(f"#include {line}\n" for line in lines))
        return includes.check(self.root)

    def test_rooms_below_and_the_own_one_are_accepted(self):
        lines = ['"common/ray.h"', '"foundation/list.h"', '"filters/tone.h"', "<vector>"]
        self.assertEqual(self.faults_of("src/filters/smooth.cpp", *lines), [])

    def test_room_above_is_found(self):
        faults = self.faults_of("src/filters/smooth.cpp", '"umbrix/grading.h"')
        self.assertEqual(
            faults, ["src/filters/smooth.cpp: must not include umbrix/grading.h, which is not below its room"]
        )

    def test_room_beside_is_found(self):
        self.assertEqual(len(self.faults_of("toolkit/pictures/encode.h", '"toolkit/settings/preset.h"')), 1)
        self.assertEqual(self.faults_of("toolkit/pictures/encode.h", '"toolkit/files/temporary.h"'), [])

    def test_brackets_count_like_quotes(self):
        self.assertEqual(len(self.faults_of("src/filters/smooth.cpp", "<umbrix/grading.h>")), 1)

    def test_exceptions_hold_for_their_files_only(self):
        line = '"umbrix/umbrix_options.h"'
        self.assertEqual(self.faults_of("src/boundary/gpu_library.h", line), [])
        self.assertEqual(len(self.faults_of("src/boundary/image_io.cpp", line)), 1)

    def test_undeclared_room_is_found(self):
        self.assertEqual(len(self.faults_of("src/misc/all.h")), 1)

    def test_header_that_is_not_there_is_found(self):
        self.assertEqual(len(self.faults_of("src/filters/smooth.cpp", '"filters/none.h"')), 1)
        self.write("src/filters/none.h.in", "")
        self.assertEqual(self.faults_of("src/filters/smooth.cpp", '"filters/none.h"'), [])

    def test_companions_take_declarations_and_no_code(self):
        self.assertEqual(self.faults_of("velloric/src/rays/rays.cpp", '"boundary/texture_kernels.h"'), [])
        self.assertEqual(len(self.faults_of("velloric/src/rays/rays.cpp", '"filters/tone.h"')), 1)
        self.assertEqual(len(self.faults_of("velloric/src/rays/rays.cpp", '"../../../src/filters/tone.h"')), 1)

    def test_what_is_common_knows_no_library(self):
        self.assertEqual(len(self.faults_of("common/relief.h", '"src/foundation/list.h"')), 1)

    def test_toolkit_takes_public_headers_only(self):
        self.assertEqual(self.faults_of("toolkit/base/text.h", '"umbrixlib.h"', '"foundation/list.h"'), [])
        self.assertEqual(len(self.faults_of("toolkit/base/text.h", '"filters/tone.h"')), 1)

    def test_command_line_takes_the_toolkit_only(self):
        self.assertEqual(self.faults_of("apps/umbrix/commands/map.h", '"toolkit/files/temporary.h"'), [])
        self.assertEqual(len(self.faults_of("apps/umbrix/commands/map.h", '"src/umbrixlib.h"')), 1)

    def test_circle_is_found(self):
        self.write("common/ray.h", '#include "common/relief.h"\n')
        faults = self.faults_of("common/relief.h", '"common/ray.h"')
        self.assertEqual(faults, ["common/ray.h includes common/relief.h includes common/ray.h: a circle"])

    def test_devil_outside_its_rooms_is_found(self):
        self.assertEqual(self.faults_of("src/boundary/image_io.cpp", "<IL/il.h>"), [])
        self.assertEqual(len(self.faults_of("src/umbrix/file.cpp", "<IL/il.h>")), 1)
        self.assertEqual(len(self.faults_of("toolkit/tasks/map.cpp", "<IL/il.h>")), 2)


class Sizes(Tree):
    def test_small_folders_and_files_are_accepted(self):
        for number in range(sizes.MOST_FILES):
            self.write(f"src/filters/{number}.cpp", "\n" * sizes.MOST_LINES)
        self.write("src/filters/CMakeLists.txt", "")
        self.assertEqual(sizes.check(self.root), [])

    def test_full_folder_is_found(self):
        for number in range(sizes.MOST_FILES + 1):
            self.write(f"src/filters/{number}.h", "")
        self.assertEqual(
            sizes.check(self.root), ["src/filters: holds 26 source files, and more than 25 want rooms"]
        )

    def test_long_file_is_found(self):
        self.write("tests/cli/tool.h", "\n" * (sizes.MOST_LINES + 1))
        self.assertEqual(len(sizes.check(self.root)), 1)


class Engine(Tree):
    def faults_of(self, code):
        self.write("toolkit/base/text.cpp", code)
        return engine.check(self.root)

    def test_words_in_comments_are_accepted(self):
        code = '// printf("a"), --overwrite\n/* isatty(1) */\nfmt::format("a--b -- c");\n'
        self.assertEqual(self.faults_of(code), [])

    def test_members_and_longer_names_are_accepted(self):
        self.assertEqual(self.faults_of("strsignal(1); snprintf(text, 1, \"a\"); computs(2);\n"), [])

    def test_what_is_the_front_ends_is_found(self):
        for line in [
            "isatty(1);",
            'std::printf("a");',
            'std::fprintf(stderr, "a");',
            'puts("a");',
            "std::cout << 1;",
            'fmt::print("a");',
            "std::signal(SIGINT, stop);",
            'open("/proc/self/exe");',
            "#include <CLI/CLI.hpp>",
            'refuse("add --overwrite");',
            'refuse("https://a --overwrite");',
        ]:
            with self.subTest(line):
                self.assertEqual(len(self.faults_of(f"int a;\n{line}\n")), 1)

    def test_fault_names_line_and_rule(self):
        faults = self.faults_of("/* a\n*/ isatty(1);\n")
        self.assertEqual(
            faults,
            ["toolkit/base/text.cpp:2: asks whether there is a terminal, which is the front end's: isatty"],
        )


class Formatting(Tree):
    def setUp(self):
        super().setUp()
        self.write(".clang-format", "BasedOnStyle: LLVM\n")

    def test_formatted_sources_are_accepted(self):
        self.write("src/filters/a.cpp", "int a = 1;\n")
        self.assertEqual(formatting.check(self.root), [])

    def test_each_other_source_is_found(self):
        for number in range(5):
            self.write(f"src/filters/{number}.cpp", "int  a=1;\n" if number in (1, 4) else "int a = 1;\n")
        faults = formatting.check(self.root)
        self.assertEqual([fault.split(":")[0] for fault in faults], ["src/filters/1.cpp", "src/filters/4.cpp"])


class VectorCode(Tree):
    SOURCE = '#define HWY_TARGET_INCLUDE "{}"\n{}'
    LOCAL = "namespace a::HWY_NAMESPACE {\nnamespace {\n"
    SHARED = "namespace a::HWY_NAMESPACE {\n\nvoid add();\n"

    def faults_of(self, included, text):
        self.write("src/filters/sum.cpp", self.SOURCE.format(included, text))
        return vector_code.check(self.root)

    def test_unnamed_namespace_is_accepted(self):
        self.assertEqual(self.faults_of("filters/sum.cpp", self.LOCAL), [])

    def test_named_namespace_alone_is_found(self):
        faults = self.faults_of("filters/sum.cpp", self.SHARED)
        self.assertEqual(faults, ["src/filters/sum.cpp: its vector code is in no unnamed namespace"])

    def test_file_that_is_compiled_instead_is_read(self):
        self.write("src/filters/sum-inl.h", self.LOCAL)
        self.assertEqual(self.faults_of("sum-inl.h", ""), [])
        self.write("src/filters/sum-inl.h", self.SHARED)
        self.assertEqual(len(self.faults_of("sum-inl.h", "")), 1)

    def test_other_sources_are_left_alone(self):
        self.write("src/filters/plain.cpp", self.SHARED)
        self.assertEqual(vector_code.check(self.root), [])


class Versions(Tree):
    def setUp(self):
        super().setUp()
        self.write("CMakeLists.txt", "project(UmbrixLib VERSION 1.2.3 LANGUAGES CXX)\n")

    def faults_with(self, log, **texts):
        self.write("CHANGELOG.md", log)
        for name, text in texts.items():
            self.write(f"docs/{name}.md", text)
        return versions.check(self.root)

    def test_number_in_one_place_is_accepted(self):
        log = "## [1.2.3] - unreleased\n\n## [1.2.2] - 2026-01-02\n"
        self.assertEqual(self.faults_with(log, tools="Version 1.2.30, 11.2.3 and 1.2.3.4 of others.\n"), [])

    def test_log_of_another_version_is_found(self):
        self.assertEqual(len(self.faults_with("## [1.2.2] - 2026-01-02\n")), 1)
        self.assertEqual(len(self.faults_with("# Changelog\n")), 1)

    def test_second_place_is_found(self):
        faults = self.faults_with("## [1.2.3] - 2026-01-02\n", install="Get umbrix-1.2.3.tar.gz\n")
        self.assertEqual(faults, ["docs/install.md: repeats the version 1.2.3 of CMakeLists.txt"])


class Licences(Tree):
    def setUp(self):
        super().setUp()
        self.write("CMakeLists.txt", f"# {licences.LICENCE}\n")

    def test_first_line_and_line_after_the_interpreter_are_accepted(self):
        self.write("src/a.cpp", f"// {licences.LICENCE}\n")
        self.write("scripts/a.sh", f"#!/bin/sh\n# {licences.LICENCE}\n")
        self.assertEqual(licences.check(self.root), [])

    def test_missing_line_is_found(self):
        self.write("src/a.cpp", f"#pragma once\n// {licences.LICENCE}\n")
        self.write(".ci/run", "#!/bin/sh\n")
        self.write("src/CMakeLists.txt", "")
        self.assertEqual(len(licences.check(self.root)), 3)

    def test_pictures_need_none(self):
        self.write("examples/a.png", "")
        self.assertEqual(licences.check(self.root), [])


if __name__ == "__main__":
    unittest.main()
