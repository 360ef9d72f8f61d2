"""Checks the documentation site: usage: built_site.py SITE TAGFILE HEADER-FOLDER...

- Whatever a page refers to, in the site, is there: files, and places in them.
- What was written as code is shown as code, in the pages.
- Every class and function that the headers export has its place in the reference.
"""

import re
import sys
from html import unescape
from html.parser import HTMLParser
from pathlib import Path
from urllib.parse import unquote, urlsplit

EXPORTED = re.compile(r"^(?:class VEXA\w*_API (?P<class>\w+)|VEXA\w*_API [^;{(]*?(?P<function>\w+|operator\W+)\()",
                      re.MULTILINE)
EMPTY = {"br", "hr", "img", "input", "link", "meta"}
VERBATIM = {"code", "pre", "script", "style"}
MARK = re.compile(r"`|\\ilinebr|(?<!template)</?[a-z]+[ >]")  # a list of template parameters is no mark
TAGGED = re.compile(r"<name>(?:[^<]*::)?([^<:]+)</name>")


class Page(HTMLParser):
    """What a page refers to, the places that it has, and where its text shows marks that it should not."""

    def __init__(self, text):
        super().__init__()
        self.links, self.places, self.marks = [], set(), []
        self._verbatim = []  # what is open within shown code, its own tag first
        self.feed(text)

    def handle_starttag(self, tag, attrs):
        for name, value in attrs:
            if name in ("href", "src", "data") and value:
                self.links.append((self.getpos()[0], value))
            elif name == "id" or (name == "name" and tag == "a"):
                self.places.add(value)
        if tag not in EMPTY and (self._verbatim or tag in VERBATIM or ("class", "fragment") in attrs):
            self._verbatim.append(tag)

    def handle_endtag(self, tag):
        if self._verbatim and self._verbatim[-1] == tag:
            self._verbatim.pop()

    def handle_data(self, data):
        if not self._verbatim and MARK.search(data):
            self.marks.append(self.getpos()[0])


def pages_of(site):
    return {path.resolve(): Page(path.read_text(errors="replace")) for path in sorted(site.rglob("*.html"))}


def bare_marks(pages):
    for path, page in pages.items():
        for line in page.marks:
            yield f"{path}:{line}: a back quote or the like, which was to be read as a mark"


def dead_links(pages):
    for path, page in pages.items():
        for line, link in page.links:
            address = urlsplit(link)
            if address.scheme or address.netloc or link.startswith("javascript:"):
                continue
            target = (path.parent / unquote(address.path)).resolve() if address.path else path
            if not target.is_file():
                yield f"{path}:{line}: there is no {link}"
            elif address.fragment and target in pages and unquote(address.fragment) not in pages[target].places:
                yield f"{path}:{line}: there is no such place: {link}"


def exported_names(header):
    """The classes and functions that a header exports."""
    return [exported["class"] or exported["function"] for exported in EXPORTED.finditer(header)]


def holes(tagfile, folders):
    described = {unescape(name) for name in TAGGED.findall(tagfile.read_text())}
    for folder in folders:
        for header in sorted(folder.rglob("*.h")):
            for name in exported_names(header.read_text()):
                if name not in described:
                    yield f"{header}: the reference lacks {name}"


def main(site, tagfile, *folders):
    pages = pages_of(site)
    mistakes = [*dead_links(pages), *bare_marks(pages), *holes(tagfile, folders)]
    for mistake in mistakes:
        print(mistake)
    return 1 if mistakes else 0


if __name__ == "__main__":
    sys.exit(main(*map(Path, sys.argv[1:])))
