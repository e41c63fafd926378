# SPDX-License-Identifier: MIT
"""The checks of the documents find what they should."""

import tempfile
import unittest
from pathlib import Path

from commands_test import commands_of
from links import faults_of_markdown, faults_of_site
from pages import blocks_of
from run_page import run_page


class PageTest(unittest.TestCase):
    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.root = Path(scratch.name)
        (self.root / "examples").mkdir()
        (self.root / "examples" / "stone").write_text("grey\n")

    def faults(self, text: str) -> list[str]:
        page = self.root / "page.md"
        page.write_text(text)
        return run_page(page, Path("/bin/echo"), self.root / "examples")[1]

    def test_commands_run_in_a_copy_of_the_examples(self):
        self.assertEqual(self.faults("```sh tested\ncat stone\nrm stone\n```\n```text printed\ngrey\n```\n"), [])
        self.assertTrue((self.root / "examples" / "stone").exists())

    def test_later_blocks_find_the_files_of_earlier_ones(self):
        self.assertEqual(self.faults("```sh tested\ntouch new\n```\n\n```sh tested\ntest -e new\n```\n"), [])

    def test_umbrix_is_the_tool(self):
        self.assertEqual(self.faults("```sh tested\numbrix map a\n```\n```text printed\nmap a\n```\n"), [])

    def test_another_exit_code_is_found(self):
        self.assertEqual(len(self.faults("```sh tested\nfalse\n```\n")), 1)
        self.assertEqual(len(self.faults("```sh tested exit=1\ntrue\n```\n")), 1)
        self.assertEqual(self.faults("```sh tested exit=1\nfalse\n```\n"), [])

    def test_a_failure_before_the_last_command_is_found(self):
        self.assertEqual(len(self.faults("```sh tested\nfalse\ntrue\n```\n")), 1)
        self.assertEqual(len(self.faults("```sh tested exit=1\nfalse\nfalse\n```\n")), 1)

    def test_another_output_is_found(self):
        self.assertEqual(len(self.faults("```sh tested\necho one\n```\n```text printed\ntwo\n```\n")), 1)

    def test_blocks_without_the_mark_do_not_run(self):
        self.assertEqual(blocks_of("```sh\nfalse\n```\n"), [])

    def test_a_mark_that_is_misspelt_is_found(self):
        with self.assertRaises(ValueError):
            blocks_of("```sh tested exit=one\nfalse\n```\n")


class LinkTest(unittest.TestCase):
    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.root = Path(scratch.name).resolve()

    def test_links_of_a_site(self):
        (self.root / "a.html").write_text(
            '<p id="here"><a href="b.html#there">b</a><a href="b.html#nowhere">b</a>'
            '<a href="#here">a</a><img src="c.png"><a href="https://example.org/none">d</a>'
        )
        (self.root / "b.html").write_text('<p id="there">')
        self.assertEqual(
            faults_of_site(self.root),
            (4, ["a.html: there is no place b.html#nowhere", "a.html: there is no c.png"]),
        )

    def test_links_of_markdown(self):
        (self.root / "docs").mkdir()
        (self.root / "README.md").write_text("[a](docs/a.md) ![b](b.png) `[c](c.md)`\n")
        (self.root / "docs" / "a.md").write_text("[up](../README.md)\n")
        self.assertEqual(faults_of_markdown(self.root), (3, ["README.md: there is no b.png"]))


class HelpTest(unittest.TestCase):
    def test_the_commands_of_the_tool(self):
        self.assertEqual(
            commands_of("Usage\n\nSubcommands:\n  map    Make\n  info   Tell\n       more\n\nExit codes\n"),
            {"map", "info"},
        )


if __name__ == "__main__":
    unittest.main()
