"""Writes the text of the site, section by section, for search.js: search_index.py SITE

SITE/search-index.js holds a list of [address, page, heading, text].
"""

import json
import re
import sys
from html.parser import HTMLParser
from pathlib import Path

LISTING = re.compile(r"_source\.html$|-members\.html$|^(annotated|classes|dir_\w+|files|hierarchy|namespaces|pages)\.html$"
                     r"|^(functions|globals|namespacemembers)(_.*)?\.html$")
GUIDE = re.compile(r"^(index|md_\w+|help\w*|manual)\.html$")
HEADING = re.compile(r"^h[1-6]$")
VOID = {"br", "col", "hr", "img", "input", "link", "meta", "wbr"}
IGNORED = {"memberdecls", "memItemLeft", "toc", "ttc", "permalink", "mlabels"}
MEMBER_ROW = re.compile(r"^mem(item|desc):(\w+)$")  # in a list of members: the declaration, and its description
PARAMETERS = re.compile(r" ?\(.*")


class Sections(HTMLParser):
    """The sections of a page. Each starts at a heading, and is addressed by the last anchor before or in it."""

    def __init__(self, text):
        super().__init__()
        self.title = ""
        self.found = []          # [place, heading, text]
        self.places = {""}       # the start of the page, and each anchor
        self._open = [("", "")]  # the open elements, each with the kind of its text
        self._place = ""
        self.feed(text)

    def handle_starttag(self, tag, attrs):
        attributes = dict(attrs)
        classes = set((attributes.get("class") or "").split())
        if tag in VOID:
            self._add(" ")
            return
        place = attributes.get("id", "")
        role = self._role(tag, classes)
        self._open.append((tag, role))
        self.places.add(place)
        if role == "heading" and HEADING.match(tag):
            self.found.append([place or self._place, "", ""])
            self._place = ""
        elif role == "heading" and place:
            self.found[-1][0] = place
        elif place and tag == "a":
            self._place = place

    def _role(self, tag, classes):
        parent = self._open[-1][1]
        row = next(filter(None, map(MEMBER_ROW.match, classes)), None)
        if row and "inherit" not in classes:
            if row[1] == "desc":
                return "text"
            self.found.append([row[2], "", ""])
            return "heading"
        if tag == "div" and "title" in classes:
            return "title"
        if tag == "div" and "contents" in classes:
            self.found.append(["", self.title.strip(), ""])
            return "text"
        if classes & IGNORED or tag in ("script", "style"):
            return ""
        return "heading" if HEADING.match(tag) and parent == "text" else parent

    def handle_endtag(self, tag):
        while len(self._open) > 1 and tag in (name for name, _ in self._open):
            if self._open.pop()[0] == tag:
                break
        if tag not in ("a", "b", "code", "em", "i", "span", "strong"):
            self._add(" ")

    def handle_data(self, data):
        self._add(data)

    def _add(self, data):
        role = self._open[-1][1]
        if role == "title":
            self.title += data
        elif role == "heading":
            self.found[-1][1] += data
        elif role == "text":
            self.found[-1][2] += data


def as_words(text):
    return " ".join(text.split())


def sections_of(path):
    """The sections of a page."""
    page = Sections(path.read_text(encoding="utf-8", errors="replace"))
    # If a member is listed and later described at the same place, takes the description. Skips a member that is listed
    # without a place, because another page describes it, and a heading without a place, which only separates lists.
    found = {}
    for place, heading, text in page.found:
        if place in page.places and (place or not found):
            found[place] = (heading, text)
    for place, (heading, text) in found.items():
        address = f"{path.name}#{place}" if place else path.name
        yield [address, as_words(page.title), PARAMETERS.sub("()", as_words(heading)), as_words(text)]


def pages_to_search(site):
    pages = [path for path in sorted(site.glob("*.html")) if not LISTING.search(path.name)]
    return sorted(pages, key=lambda path: not GUIDE.match(path.name))


def main(site):
    sections = [section for path in pages_to_search(site) for section in sections_of(path)]
    lines = ",\n".join(json.dumps(section, ensure_ascii=False) for section in sections)
    (site / "search-index.js").write_text(f"window.searchIndex = [\n{lines}\n];\n", encoding="utf-8")


if __name__ == "__main__":
    main(Path(sys.argv[1]))
