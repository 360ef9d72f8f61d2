"""Tests of what docs/site/ makes: the text that Doxygen reads, the pages of the runner, the index of the search."""

import sys
import tempfile
import unittest
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "docs" / "site"))

import page_text
import runner_pages
import search_index

NOWHERE = Path("/nowhere")


class Pages(unittest.TestCase):
    def text(self, page, runner_pages_folder=NOWHERE):
        return page_text.page_text(page, runner_pages_folder)

    def test_code_with_a_quote_stands_between_two_back_quotes(self):
        self.assertEqual(self.text("`it's` and `this`"), "`` it's `` and `this`")

    def test_the_text_of_a_link_is_in_one_line_without_back_quotes(self):
        self.assertEqual(self.text("[`run`](run.md), [Two\nlines](a.md)"), "[run](run.md), [Two lines](a.md)")

    def test_a_page_of_several_sections_begins_with_a_list(self):
        self.assertEqual(self.text("# T\n\n## A\n## B\n## C\n"), "# T\n\n[TOC]\n\n## A\n## B\n## C\n")
        self.assertNotIn("[TOC]", self.text("# T\n\n## A\n## B\n```text\n## C\n```\n"))

    def test_a_command_of_the_runner_leads_to_its_help(self):
        with tempfile.TemporaryDirectory() as folder:
            (Path(folder) / "help_run.md").touch()
            text = self.text("# `vexa-standin run`\n`vexa-standin run A` `vexa-standin walk`\n", Path(folder))
        self.assertEqual(text, "# `vexa-standin run`\n[vexa-standin run A](@ref help_run) `vexa-standin walk`\n")

    def test_a_fence_of_another_language_stays(self):
        self.assertEqual(self.text("```cpp\nauto a = `'`;\n```\n"), "```cpp\nauto a = `'`;\n```\n")


class ShellSamples(unittest.TestCase):
    def test_words_are_coloured(self):
        for command, html in {
                "ls -l --all": '<span class="keywordflow">ls</span> <span class="keyword">-l</span> '
                               '<span class="keyword">--all</span>',
                "a | b": '<span class="keywordflow">a</span> | <span class="keywordflow">b</span>',
                "# it's": '<span class="comment"># it&#x27;s</span>',
                " <'x y'": ' &lt;<span class="stringliteral">&#x27;x y&#x27;</span>',
                " ${A}x": ' <span class="preprocessor">&#36;{A}</span>x',
                " a-b#c": " a-b#c"}.items():
            self.assertEqual(page_text.coloured(command), html)

    def test_a_session_copies_its_commands_and_shows_its_output(self):
        sample = page_text.page_text("```\n$ run \\\n  on\nout\n$ next\n```\n", NOWHERE)
        self.assertIn('data-copy="run \\&#10;  on&#10;next"', sample)
        self.assertIn('<div class="line">out</div>', sample)
        self.assertEqual(sample.count('<span class="prompt">'), 2)

    def test_each_line_of_a_script_is_a_command(self):
        sample = page_text.page_text("```sh\na\nb\n```\n", NOWHERE)
        self.assertIn('data-copy="a&#10;b"', sample)
        self.assertIn('<div class="line"><span class="keywordflow">b</span></div>', sample)

    def test_doxygen_sees_no_variable(self):
        self.assertNotIn("$", page_text.page_text("```sh\nrun \"$(nproc)\" $A\n```\n", NOWHERE))


class RunnerPages(unittest.TestCase):
    def test_the_commands_are_those_of_the_help(self):
        help_text = "Options:\n  --help  Help\n\nCommands:\n  new  Make\n  run  Run\n       on\n\nExamples:\n  x\n"
        self.assertEqual(runner_pages.commands_in(help_text), ["new", "run"])


class SearchIndex(unittest.TestCase):
    def sections(self, contents):
        with tempfile.TemporaryDirectory() as folder:
            page = Path(folder) / "p.html"
            page.write_text(f'<p>menu</p><div class="title">A  page</div><div class="contents">{contents}</div><p>x</p>')
            return list(search_index.sections_of(page))

    def test_a_section_has_an_address_a_heading_and_its_text(self):
        self.assertEqual(self.sections('<p>One<br/>two</p><h1><a id="s"></a>A <b>b</b></h1><p>c</p><p>d</p>'), [
            ["p.html", "A page", "A page", "One two"], ["p.html#s", "A page", "A b", "c d"]])

    def test_an_anchor_before_a_heading_is_its_address(self):
        self.assertEqual(self.sections('<a id="s"></a><h2>f()</h2>x')[1], ["p.html#s", "A page", "f()", "x"])

    def test_a_heading_without_an_anchor_is_no_section(self):
        self.assertEqual(self.sections("One<h2>Parts</h2>"), [["p.html", "A page", "A page", "One"]])

    def test_what_is_no_text_is_left_out(self):
        self.assertEqual(self.sections('<script>a</script><div class="toc"><h3>b</h3></div><i class="ttc">c</i>d')[0][3], "d")

    def member(self, anchor, kind=""):
        return f'<table class="memberdecls"><tr class="memitem:m{kind}"><td class="memItemLeft">{anchor}int</td>' \
               '<td><b>f</b> (int)</td></tr><tr class="memdesc:m"><td>Does.</td></tr></table>'

    def test_a_member_in_a_list_is_a_section(self):
        self.assertEqual(self.sections(self.member('<a id="m"></a>'))[1:], [["p.html#m", "A page", "f()", "Does."]])

    def test_a_member_that_is_described_elsewhere_is_none(self):
        self.assertEqual(self.sections(self.member(""))[1:], [])

    def test_an_inherited_member_is_none(self):
        self.assertEqual(self.sections(self.member('<a id="m"></a>', " inherit"))[1:], [])

    def test_the_description_of_a_member_replaces_its_place_in_the_list(self):
        self.assertEqual(self.sections(self.member("") + '<a id="m"></a><h2>f()</h2>More.')[1:],
                         [["p.html#m", "A page", "f()", "More."]])

    def test_guides_come_first_and_listings_are_left_out(self):
        with tempfile.TemporaryDirectory() as folder:
            for name in ("classA.html", "classA-members.html", "functions_a.html", "a_8h_source.html", "md_b.html"):
                (Path(folder) / name).touch()
            names = [page.name for page in search_index.pages_to_search(Path(folder))]
        self.assertEqual(names, ["md_b.html", "classA.html"])


if __name__ == "__main__":
    unittest.main()
