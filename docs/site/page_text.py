#!/usr/bin/env python3
"""Prints what Doxygen reads of a page: page_text.py RUNNER-PAGES PAGE. The first is the folder
that runner_pages.py wrote.

- Code that has a quote is written so that Doxygen reads it as code. The text of a link is in one line and has no back
  quotes.
- Shell samples are coloured.
- A page of several sections begins with a list of them.
- `vexa-standin COMMAND` links to the page with the help of that command.
"""

import html
import re
import sys
from pathlib import Path

FENCE = re.compile(r"^```(\w*)\n(.*?)^```$", re.MULTILINE | re.DOTALL)
LINK_TEXT = re.compile(r"\[[^\[\]]*\]\(")
CODE_LINK = re.compile(r"\[`([^`]*)`\]\(")
CODE = re.compile(r"(?<!`)`([^`]+)`(?!`)")
SECTION = re.compile(r"^## ", re.MULTILINE)
TITLE = re.compile(r"\A(# .*\n)")
RUNNER_COMMAND = re.compile(r"(?<![`\[])`(vexa-standin ([a-z]+)[^`\n]*)`(?![`\]])")
FEWEST_SECTIONS = 3

PROMPT = "$ "
SHELL_TOKEN = re.compile(r"""
    (?P<comment> (?<!\S)\#.* )
  | (?P<stringliteral> '[^']*' | "(?:[^"\\]|\\.)*" )
  | (?P<preprocessor> \$(?:\w+|\{[^}]*\}) )
  | (?P<keyword> (?<!\S)--?[A-Za-z][\w-]* )
  | (?P<keywordflow> (?:(?<=^)|(?<=[|;&]\ )|(?<=\$\())[\w./~@-]+(?=\s|$) )""", re.VERBOSE)


def as_html(text):
    return html.escape(text).replace("$", "&#36;")  # because Doxygen replaces $(NAME) by an environment variable


def coloured(command):
    """A line of shell as HTML, with the classes that Doxygen gives to the words of C++."""
    parts, end = [], 0
    for token in SHELL_TOKEN.finditer(command):
        parts += [as_html(command[end:token.start()]), f'<span class="{token.lastgroup}">{as_html(token[0])}</span>']
        end = token.end()
    return "".join(parts) + as_html(command[end:])


def shell_sample(text):
    """A shell sample as HTML. If any line starts with a prompt, lines without a prompt are output."""
    lines, commands = [], []
    is_session = text.startswith(PROMPT)
    continues = False
    for line in text.splitlines():
        has_prompt = line.startswith(PROMPT)
        if is_session and not has_prompt and not continues:
            lines.append(as_html(line))
            continue
        command = line[len(PROMPT):] if has_prompt else line
        commands.append(command)
        lines.append(f'<span class="prompt">{as_html(PROMPT)}</span>' * has_prompt + coloured(command))
        continues = line.endswith("\\")
    copied = as_html("\n".join(commands)).replace("\n", "&#10;")
    shown = "".join(f'<div class="line">{line or " "}</div>' for line in lines)
    return f'\\htmlonly[block]\n<div class="fragment shell" data-copy="{copied}">{shown}</div>\n\\endhtmlonly'


def sample(fence):
    """A fence in the form for Doxygen."""
    return shell_sample(fence[2]) if fence[1] == "sh" or fence[2].startswith(PROMPT) else fence[0]


def prose(text, runner_pages):
    """The text between two fences."""
    def linked(code):
        label = f"help_{code[2]}"
        return f"[{code[1]}](@ref {label})" if (runner_pages / f"{label}.md").is_file() else code[0]

    lines = [line if line.startswith("#") else RUNNER_COMMAND.sub(linked, line) for line in text.splitlines(True)]
    text = LINK_TEXT.sub(lambda link: link[0].replace("\n", " "), "".join(lines))
    text = CODE_LINK.sub(r"[\1](", text)
    return CODE.sub(lambda code: f"`` {code[1]} ``" if "'" in code[1] else code[0], text)


def page_text(text, runner_pages):
    parts, end = [], 0
    for fence in FENCE.finditer(text):
        parts += [prose(text[end:fence.start()], runner_pages), sample(fence)]
        end = fence.end()
    parts.append(prose(text[end:], runner_pages))
    page = "".join(parts)
    has_many = len(SECTION.findall(FENCE.sub("", text))) >= FEWEST_SECTIONS
    return TITLE.sub(r"\1\n[TOC]\n", page, count=1) if has_many else page


if __name__ == "__main__":
    print(page_text(Path(sys.argv[2]).read_text(encoding="utf-8"), Path(sys.argv[1])), end="")
