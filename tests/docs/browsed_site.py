"""Looks at the documentation site in Chromium: browsed_site.py SITE

- The search finds what people type, the best section first.
- The search and the copy buttons work by keyboard. Of a shell session the commands are copied.
- On a phone and on a small desktop, nothing on a page is cut: it fits, wraps, or scrolls in a box of its own.
"""

import html
import re
import subprocess
import sys
import tempfile
from pathlib import Path

PROBES = Path(__file__).resolve().parent
KEYS = """slash goes to: field
results are shown: true
down goes to: result
up goes to: field
results are shown after Escape: false
the button has the focus: true
copied: {copied}
the button says: Copied"""
COPIED = {  # of the first sample of a page
    "md_docs_contract.html": r'"vexa-standin run [^\\$"]*"',  # a session, of which the output is not copied
    "md_docs_commands.html": r'"(?!.*Definition: ).*;\\n.*"',  # C++, of which the tooltips are not copied
}
LISTING = re.compile(r"_source\.html$|^(dir_|functions|globals)")  # they look all the same
WIDTHS = (390, 1280)
SEARCHES = {  # what is typed, and a heading among the first three; None when nothing is to be found
    "unbalanced-lock": "unbalanced-lock",
    "lock": "unbalanced-lock",
    "locking unbalanced": "unbalanced-lock",
    "style": "vexa-standin style",
    "VexaUtilLockStart": "VexaUtilLockStart()",
    "--resume": "vexa-standin run",
    "lock nosuchword": None,
}
RESULT = re.compile(r"<li><a [^>]*><strong>(.*?)</strong>", re.DOTALL)
REPORT = re.compile(r"<pre>(.*?)</pre>", re.DOTALL)


def page_in_browser(address):
    """The HTML of a page after its scripts ran."""
    with tempfile.TemporaryDirectory() as profile:
        command = ["chromium", "--headless", "--no-sandbox", "--disable-gpu", "--allow-file-access-from-files",
                   f"--user-data-dir={profile}", "--virtual-time-budget=120000", "--dump-dom", address]
        return subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True, check=True,
                              timeout=300).stdout


def search_mistakes(site):
    for typed, heading in SEARCHES.items():
        page = page_in_browser(f"{(site / 'index.html').as_uri()}?search={typed.replace(' ', '+')}")
        found = [html.unescape(result) for result in RESULT.findall(page)]
        if (heading is None and found) or (heading and heading not in found[:3]):
            yield f"the search for {typed} should find {heading} first, but found {found[:3]}"


def report_of(probe):
    return html.unescape(REPORT.search(page_in_browser(f"{PROBES.as_uri()}/{probe}"))[1])


def key_mistakes(site):
    for page, copied in COPIED.items():
        report = report_of(f"keys_probe.html#{(site / page).as_uri()}")
        found = re.search("copied: (.*)", report)
        if not found or not re.fullmatch(copied, found[1]) or report != KEYS.format(copied=found[1]):
            yield f"{page} should answer the keyboard by:\n{KEYS.format(copied=copied)}\nbut answers:\n{report}"


def layout_mistakes(pages):
    addresses = ",".join(page.as_uri() for page in pages)
    for width in WIDTHS:
        report = report_of(f"layout_probe.html?{width}#{addresses}").splitlines()
        seen = sum(line.endswith(": seen") for line in report)
        if seen != len(pages):
            yield f"only {seen} of {len(pages)} pages were seen {width} pixels wide"
        yield from (f"{width} pixels wide, it is cut: {line}" for line in report if not line.endswith(": seen"))


def main(site):
    pages = [page for page in sorted(site.glob("*.html")) if not LISTING.search(page.name)]
    mistakes = [*search_mistakes(site), *key_mistakes(site), *layout_mistakes(pages)]
    for mistake in mistakes:
        print(mistake)
    return 1 if mistakes else 0


if __name__ == "__main__":
    sys.exit(main(Path(sys.argv[1]).resolve()))
