"""Tests of built_site.py."""

import json
import tempfile
import unittest
from pathlib import Path

import built_site as site


class Pages(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        (self.folder / "other.html").write_text('<h1 id="top">x</h1><a name="old"></a>')

    def mistakes(self, text, find=site.dead_links):
        (self.folder / "page.html").write_text(text)
        return [mistake.split(": ", 1)[1] for mistake in find(site.pages_of(self.folder))]

    def test_what_is_there_may_be_referred_to(self):
        links = ("other.html", "other.html#top", "other.html#old", "#here", "https://example.org/none", "javascript:x()")
        self.assertEqual(self.mistakes("".join(f'<a id="here" href="{link}">' for link in links)), [])

    def test_a_missing_file_is_a_mistake(self):
        for tag in ('<a href="none.html">', '<img src="none.html">', '<object data="none.html">'):
            self.assertEqual(self.mistakes(tag), ["there is no none.html"])

    def test_a_missing_place_is_a_mistake(self):
        self.assertEqual(self.mistakes('<a href="other.html#none">'), ["there is no such place: other.html#none"])
        self.assertEqual(self.mistakes('<a href="#none">'), ["there is no such place: #none"])

    def test_marks_are_for_code_only(self):
        self.assertEqual(self.mistakes("<code>a`b</code><pre>`</pre>", site.bare_marks), [])
        self.assertEqual(self.mistakes('<div class="fragment"><div>`</div><br>`</div>', site.bare_marks), [])
        self.assertEqual(len(self.mistakes('<div class="fragment"></div>a `b', site.bare_marks)), 1)
        for mark in (r"\ilinebr", "@section a", "@subsection a", "@ref a", "&lt;b>"):
            self.assertEqual(len(self.mistakes(mark, site.bare_marks)), 1)

    def test_parameters_of_a_template_are_no_marks(self):
        self.assertEqual(self.mistakes("template&lt;class Work &gt;", site.bare_marks), [])


class Reference(unittest.TestCase):
    def test_what_a_header_exports_is_found(self):
        header = "class VEXA_API A;\nclass VEXASTANDIN_API B : public C {\nVEXA_HOST_API void f(int);\n" \
                 "VEXA_API std::ostream& operator<<(std::ostream&);\n/// VEXA_API in words\n"
        self.assertEqual(site.exported_names(header), ["A", "B", "f", "operator<<"])

    def test_what_the_reference_lacks_is_a_mistake(self):
        with tempfile.TemporaryDirectory() as folder:
            (Path(folder) / "a.h").write_text("class VEXA_API A;\nVEXA_API void f();\nclass VEXA_API B;\n")
            tags = Path(folder) / "tags"
            tags.write_text("<name>n::A</name><name>f</name>")
            found = [hole.split(": ")[1] for hole in site.holes(tags, [Path(folder)])]
        self.assertEqual(found, ["the reference lacks B"])


class Site(unittest.TestCase):
    """What has to be in a site, of a runner with one command."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        self.runner = self.folder / "runner"
        self.runner.write_text("#!/bin/sh\nprintf 'Commands:\\n  run  Runs\\n       it\\n\\nExamples:\\n  x\\n'\n")
        self.runner.chmod(0o755)

    def write_page(self, name, title, text=""):
        (self.folder / f"{name}.html").write_text(f'<div class="title">{title} </div>{text}')

    def write_index(self, *sections):
        (self.folder / "search-index.js").write_text(f"window.searchIndex = {json.dumps(sections)};\n")

    def found(self, mistakes):
        return [mistake.split(": ", 1)[1] for mistake in mistakes]

    def test_the_runner_has_a_page_for_each_help_and_one_for_its_manual(self):
        self.write_page("help", "Help of vexa-standin")
        self.write_page("help_run", "vexa-standin run")
        self.write_page("manual", "Manual page of vexa-standin")
        self.assertEqual(self.found(site.missing_runner_pages(self.folder, self.runner)), [])
        self.write_page("manual", "Another page")
        (self.folder / "help_run.html").unlink()
        self.assertEqual(self.found(site.missing_runner_pages(self.folder, self.runner)),
                         ["there is no page Manual page of vexa-standin", "there is no page vexa-standin run"])

    def test_a_page_of_several_sections_lists_each(self):
        sections = "".join(f'<h1><a class="anchor" id="autotoc_md{i}"></a>x</h1>' for i in range(3))
        links = "".join(f'<a href="#autotoc_md{i}">x</a>' for i in range(3))
        self.write_page("listed", "A", f'<div class="toc interactive">{links}</div>{sections}')
        self.write_page("short", "A", sections.replace("autotoc_md2", "other"))
        self.assertEqual(self.found(site.missing_section_lists(self.folder)), [])
        self.write_page("listed", "A", f'<div class="toc interactive">{links.replace("#autotoc_md2", "#x")}</div>{sections}')
        self.assertEqual(self.found(site.missing_section_lists(self.folder)),
                         ["no list on this page has its section autotoc_md2"])
        self.write_page("listed", "A", sections)
        self.assertEqual(len(self.found(site.missing_section_lists(self.folder))), 3)

    def test_the_search_has_each_rule_and_what_people_type(self):
        self.write_page("p", "A", '<a id="here"></a>')
        typed = ", ".join(site.TYPED)
        self.write_index(["p.html#here", "A", "a-rule", "x"], ["p.html", "A", "A", typed])
        self.assertEqual(self.found(site.unsearchable(self.folder, ["a-rule"])), [])
        self.write_index(["p.html#there", "A", "a-rule-x", "x"], ["p.html", "A", "A", typed.replace("style", "styles")])
        self.assertEqual(self.found(site.unsearchable(self.folder, ["a-rule"])),
                         ["no section is named after the rule a-rule", "no section has 'style'",
                          "there is no p.html#there"])


if __name__ == "__main__":
    unittest.main()
