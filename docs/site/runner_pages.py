"""Writes the help and the manual of the runner as pages for Doxygen: runner_pages.py RUNNER FOLDER

The pages are help.md, help_COMMAND.md for each command, and manual.md. mandoc makes HTML of the manual.
"""

import re
import subprocess
import sys
from pathlib import Path

COMMANDS = re.compile(r"^Commands:\n((?:  .*\n)+)", re.MULTILINE)
NOT_NEEDED = re.compile(r'</?section[^>]*>\n?|<a class="permalink"[^>]*>|</a>')
HEADING = re.compile(r"<h([12])[^>]*>([^<]*)</h\1>\n")


def output_of(*command, text=None):
    return subprocess.run(command, input=text, stdout=subprocess.PIPE, text=True, check=True).stdout


def commands_in(help_text):
    """The names of the commands that the runner's own help lists."""
    listed = COMMANDS.search(help_text)
    return re.findall(r"^  (\S+)", listed[1], re.MULTILINE) if listed else []


def help_page(name, label, help_text, after=""):
    return f"# {name} {{#{label}}}\n\n```text\n{help_text}```\n{after}"


def manual_page(manual):
    """The manual as a page. Its headings are in the form for Doxygen, so that Doxygen lists them."""
    fragment = output_of("mandoc", "-T", "html", "-O", "fragment", text=manual)
    body = fragment.partition('<div class="manual-text">\n')[2].rpartition('</div>\n<table class="foot">')[0]
    _, *parts = HEADING.split(NOT_NEEDED.sub("", body))
    page = "# Manual page of vexa-standin {#manual}\n"
    for level, title, text in zip(parts[::3], parts[1::3], parts[2::3]):
        heading = f"## {title.capitalize()}" if level == "1" else f"### {title}"
        page += f"\n{heading}\n\n\\htmlonly[block]\n{text}\\endhtmlonly\n"
    return page


def main(runner, folder):
    folder.mkdir(parents=True, exist_ok=True)
    help_text = output_of(runner, "--help")
    commands = commands_in(help_text)
    subpages = "".join(f"\n- \\subpage help_{name}" for name in commands)
    pages = {"help": help_page("Help of vexa-standin", "help", help_text, f"\nThe help of each command:\n{subpages}\n")}
    for name in commands:
        pages[f"help_{name}"] = help_page(f"vexa-standin {name}", f"help_{name}", output_of(runner, name, "--help"))
    pages["manual"] = manual_page(output_of(runner, "manual", "man"))
    for name, text in pages.items():
        (folder / f"{name}.md").write_text(text, encoding="utf-8")


if __name__ == "__main__":
    main(sys.argv[1], Path(sys.argv[2]))
