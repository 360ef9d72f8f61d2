"""Tests of built_site.py."""

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
        self.assertEqual(len(self.mistakes(r"\ilinebr", site.bare_marks)), 1)
        self.assertEqual(len(self.mistakes("a &lt;code&gt;", site.bare_marks)), 1)

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


if __name__ == "__main__":
    unittest.main()
