"""Checks the documentation site: usage: built_site.py SITE TAGFILE RUNNER HEADER-FOLDER...

- Whatever a page refers to, in the site, is there: files, and places in them.
- What was written as code is shown as code, in the pages.
- Every class and function that the headers export has its place in the reference.
- Each page with several sections begins with a list of them.
- The help of each command of the runner is a page, and so is the manual.
- The search knows a section for each rule of the contract, and for words that people type.
"""

import json

import re
import subprocess
import sys
from html import unescape
from html.parser import HTMLParser
from pathlib import Path
from urllib.parse import unquote, urlsplit

EXPORTED = re.compile(r"^(?:class VEXA\w*_API (?P<class>\w+)|VEXA\w*_API [^;{(]*?(?P<function>\w+|operator\W+)\()",
                      re.MULTILINE)
EMPTY = {"br", "hr", "img", "input", "link", "meta"}
VERBATIM = {"code", "pre", "script", "style"}
MARK = re.compile(r"`|\\ilinebr|(?<!template)</?(?!const )[a-z]+[ >]|@(?:sub)*section|@ref")  # lists of template arguments are no marks
SECTION = re.compile(r'<h1><a class="anchor" id="(autotoc_md\d+)"')
SECTION_LIST = re.compile(r'<div class="toc.*?</div>', re.DOTALL)
FEWEST_SECTIONS = 3
TITLE = re.compile(r'<div class="title">(.*?)\s*</div>')
COMMANDS = re.compile(r"^Commands:\n((?:  .*\n)+)", re.MULTILINE)
RULES = re.compile(r"^  ([a-z-]+) ", re.MULTILINE)
TYPED = ("style", "lock", "progress", "mutex", "exit status")
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
        classes = (dict(attrs).get("class") or "").split()
        if tag not in EMPTY and (self._verbatim or tag in VERBATIM or "fragment" in classes):
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


def missing_section_lists(site):
    for path in sorted(site.glob("*.html")):
        text = path.read_text(errors="replace")
        sections = SECTION.findall(text)
        listed = SECTION_LIST.search(text)
        for section in sections if len(sections) >= FEWEST_SECTIONS else ():
            if not listed or f'href="#{section}"' not in listed[0]:
                yield f"{path}: no list on this page has its section {section}"


def output_of(*command):
    return subprocess.run(command, stdout=subprocess.PIPE, text=True, check=True).stdout


def missing_runner_pages(site, runner):
    """The pages that the runner's commands lack."""
    commands = re.findall(r"^  (\S+)", COMMANDS.search(output_of(runner, "--help"))[1], re.MULTILINE)
    titles = {"help": "Help of vexa-standin", "manual": "Manual page of vexa-standin",
              **{f"help_{command}": f"vexa-standin {command}" for command in commands}}
    for name, title in titles.items():
        page = site / f"{name}.html"
        found = TITLE.search(page.read_text()) if page.is_file() else None
        if not found or found[1] != title:
            yield f"{page}: there is no page {title}"


def unsearchable(site, rules):
    """What the index of the search lacks."""
    index = site / "search-index.js"
    sections = json.loads(index.read_text().removeprefix("window.searchIndex = ").removesuffix(";\n"))
    headings = {heading for _, _, heading, _ in sections}
    texts = [f"{heading} {text}".lower() for _, _, heading, text in sections]
    for rule in rules:
        if rule not in headings:
            yield f"{index}: no section is named after the rule {rule}"
    for typed in TYPED:
        if not any(re.search(rf"\b{typed}\b", text) for text in texts):
            yield f"{index}: no section has '{typed}'"
    pages = pages_of(site)
    for address, *_ in sections:
        name, _, place = address.partition("#")
        page = pages.get((site / name).resolve())
        if not page or (place and place not in page.places):
            yield f"{index}: there is no {address}"


def main(site, tagfile, runner, *folders):
    pages = pages_of(site)
    rules = RULES.findall(output_of(runner, "explain"))
    mistakes = [*dead_links(pages), *bare_marks(pages), *holes(tagfile, folders), *missing_section_lists(site),
                *missing_runner_pages(site, runner), *unsearchable(site, rules)]
    for mistake in mistakes:
        print(mistake)
    return 1 if mistakes else 0


if __name__ == "__main__":
    sys.exit(main(*map(Path, sys.argv[1:])))
