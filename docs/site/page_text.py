#!/usr/bin/env python3
"""Prepares a page for Doxygen: changes the form of code that contains a quote, and removes back quotes from links."""

import re
import sys

FENCE = re.compile(r"^(```.*?^```$)", re.MULTILINE | re.DOTALL)
LINK = re.compile(r"\[`([^`]*)`\]\(")
CODE = re.compile(r"(?<!`)`([^`]+)`(?!`)")


def readable(code):
    return f"`` {code[1]} ``" if "'" in code[1] else code[0]


with open(sys.argv[1], encoding="utf-8") as page:
    for number, part in enumerate(FENCE.split(page.read())):
        is_fence = number % 2 == 1
        print(part if is_fence else CODE.sub(readable, LINK.sub(r"[\1](", part)), end="")
