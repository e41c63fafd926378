# SPDX-License-Identifier: MIT
"""The checks themselves, on small trees that keep or break a convention."""

import tempfile
import unittest
from pathlib import Path

import contracts
import includes
import licences
import vector_code


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
    def faults_of(self, name, text):
        self.write(f"src/{name}", text)
        return includes.check(self.root)

    def test_earlier_and_own_folder_are_accepted(self):
        text = '#include "foundation/list.h"\n#include "filters/tone.h"\n#include <vector>\n'
        self.assertEqual(self.faults_of("filters/smooth.cpp", text), [])

    def test_later_folder_is_found(self):
        faults = self.faults_of("filters/smooth.cpp", '#include "umbrix/grading.h"\n')
        self.assertEqual(faults, ["src/filters/smooth.cpp: must not include umbrix/grading.h"])

    def test_exceptions_hold_for_their_files_only(self):
        text = '#include "umbrix/umbrix_options.h"\n'
        self.assertEqual(self.faults_of("boundary/gpu_library.h", text), [])
        self.assertEqual(len(self.faults_of("boundary/image_io.cpp", text)), 1)

    def test_unknown_folder_is_found(self):
        self.assertEqual(len(self.faults_of("filters/smooth.cpp", '#include "misc/all.h"\n')), 1)

    def test_devil_outside_the_boundary_is_found(self):
        self.assertEqual(self.faults_of("boundary/image_io.cpp", "#include <IL/il.h>\n"), [])
        self.assertEqual(len(self.faults_of("umbrix/file.cpp", "#include <IL/il.h>\n")), 1)


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
