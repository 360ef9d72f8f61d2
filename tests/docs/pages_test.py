"""Tests of pages.py."""

import tempfile
import unittest
from pathlib import Path

import pages


def fence(before, text, language="cpp"):
    return f"Words\n\n{before}\n```{language}\n{text}```\n"


class Fences(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.samples = Path(folder.name)
        (self.samples / "s.cpp").write_text("int a;\n    // [part]\n    int b;\n    // [other]\n    // [part]\n")

    def mistakes(self, text):
        return [mistake for _, mistake in pages.fence_mistakes(text, self.samples)]

    def test_a_region_is_shown_without_its_indentation_and_marks(self):
        self.assertEqual(self.mistakes(fence("<!-- sample: s.cpp part -->", "int b;\n")), [])

    def test_a_file_is_shown_without_marks(self):
        self.assertEqual(self.mistakes(fence("<!-- sample: s.cpp -->", "int a;\n    int b;\n")), [])

    def test_a_fence_that_differs_is_a_mistake(self):
        self.assertIn("differs", self.mistakes(fence("<!-- sample: s.cpp part -->", "int c;\n"))[0])

    def test_cpp_without_a_sample_is_a_mistake(self):
        self.assertIn("without a sample", self.mistakes(fence("", "int b;\n"))[0])

    def test_another_language_needs_no_sample(self):
        self.assertEqual(self.mistakes(fence("", "a: b\n", "text")), [])

    def test_another_language_that_names_a_sample_has_to_show_it(self):
        self.assertIn("differs", self.mistakes(fence("<!-- sample: s.cpp part -->", "a: b\n", "text"))[0])

    def test_a_missing_file_or_region_is_a_mistake(self):
        self.assertIn("there is no", self.mistakes(fence("<!-- sample: t.cpp -->", "int b;\n"))[0])
        self.assertIn("no region", self.mistakes(fence("<!-- sample: s.cpp b -->", "int b;\n"))[0])

    def test_the_line_is_told(self):
        self.assertEqual([line for line, _ in pages.fence_mistakes(fence("", "int b;\n"), self.samples)], [4])

    def test_a_page_is_renewed(self):
        old, new = (fence("<!-- sample: s.cpp part -->", text) for text in ("int c;\n", "int b;\n"))
        self.assertEqual(pages.renewed(old, self.samples), new)
        self.assertEqual(pages.renewed(fence("", "int c;\n"), self.samples), fence("", "int c;\n"))


class Excerpts(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.project = Path(folder.name)
        (self.project / "s.cpp").write_text("int a;\n    int b;\nint c;\n")

    def mistakes(self, text):
        return [mistake for _, mistake in pages.excerpt_mistakes(text, self.project)]

    def test_lines_of_the_file_are_no_mistake(self):
        self.assertEqual(self.mistakes(fence("<!-- excerpt: s.cpp -->", "    int b;\nint c;\n")), [])

    def test_lines_that_the_file_does_not_have_are_a_mistake(self):
        self.assertIn("no such lines", self.mistakes(fence("<!-- excerpt: s.cpp -->", "int a;\nint c;\n"))[0])

    def test_a_part_of_a_line_is_a_mistake(self):
        self.assertIn("no such lines", self.mistakes(fence("<!-- excerpt: s.cpp -->", "int b;\n"))[0])

    def test_a_missing_file_is_a_mistake(self):
        self.assertIn("there is no", self.mistakes(fence("<!-- excerpt: t.cpp -->", "int a;\n"))[0])

    def test_a_fence_without_an_excerpt_is_no_mistake(self):
        self.assertEqual(self.mistakes(fence("", "int d;\n")), [])

    def test_an_excerpt_needs_no_sample(self):
        self.assertEqual(list(pages.fence_mistakes(fence("<!-- excerpt: s.cpp -->", "int a;\n"), self.project)), [])


class Commands(unittest.TestCase):
    def mistakes(self, text):
        return list(pages.command_mistakes(text, {"run": "  --strict  Fail\n  --no-strict"}.get))

    def test_known_ones_are_no_mistake(self):
        self.assertEqual(self.mistakes("    $ ~/vexa/bin/vexa-standin run a.macro --strict\n"), [])

    def test_names_of_options_may_have_digits(self):
        self.assertEqual(list(pages.command_mistakes("vexa-standin run --offset1 2\n", {"run": "--offset1 N"}.get)), [])

    def test_unknown_ones_are(self):
        self.assertEqual(self.mistakes("vexa-standin walk\n"), [(1, "the runner has no command walk")])
        self.assertEqual(self.mistakes("\n$ vexa-standin run --str\n"), [(2, "run has no option --str")])


class Links(unittest.TestCase):
    def mistakes(self, text):
        return [mistake for _, mistake in pages.link_mistakes(text, Path(__file__).parent)]

    def test_a_file_and_an_address_are_no_mistake(self):
        self.assertEqual(self.mistakes("[a](pages.py#top), [b](https://example.org), `[c](none)`"), [])

    def test_a_missing_file_is(self):
        self.assertEqual(self.mistakes("[a](none.md)"), ["it links to none.md, which is not there"])


if __name__ == "__main__":
    unittest.main()
