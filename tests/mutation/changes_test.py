# SPDX-License-Identifier: MIT
"""The changes that scripts/mutate.sh makes, on single lines."""

import unittest

from changes import changes_of


def made(text):
    return sorted(change.made_in(text) for change in changes_of(text))


class Changes(unittest.TestCase):
    def test_operators_become_their_neighbours(self):
        self.assertEqual(made("a < b"), ["a <= b"])
        self.assertEqual(made("a += b"), ["a -= b"])
        self.assertEqual(made("a && !b"), ["a && b", "a || !b"])
        self.assertEqual(made("++i"), ["--i"])

    def test_constants_become_the_next(self):
        self.assertEqual(made("a = 7;"), ["a = 8;"])
        self.assertEqual(made("a = 0x1fU;"), ["a = 0x20U;"])
        self.assertEqual(made("a = 0.5F;"), ["a = 1.5F;"])
        self.assertEqual(made("a = 16'384;"), ["a = 16385;"])
        self.assertEqual(made("a = true;"), ["a = false;"])

    def test_roundings_go_the_other_way(self):
        self.assertEqual(made("std::ceil(a)"), ["std::floor(a)"])
        self.assertEqual(made("hn::Floor(a)"), ["hn::Ceil(a)"])

    def test_names_and_types_stay(self):
        self.assertEqual(made("std::vector<int> const& a2, char* b, T&& c"), [])

    def test_comments_texts_and_declarations_stay(self):
        for text in ("// a < 1", "/* a < 1\n 2 */", '"a < 1 \\" 2"', 'R"x(a < 1 " 2)x"', "'1'", "#define A 1", "static_assert(a < 1);"):
            self.assertEqual(made(text), [], text)


if __name__ == "__main__":
    unittest.main()
