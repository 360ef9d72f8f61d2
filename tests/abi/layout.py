#!/usr/bin/env python3
"""Lists the fields and virtual operations of the classes that a library shows, from its description by abidw.

Usage: layout.py DESCRIPTION...

Fields stand by their offset in bits, virtual operations by their slot, counted from 0 behind the two of the destructor
wherever that stands. Only the namespaces of this project count.
"""
import sys
import xml.etree.ElementTree as xml


def classes(node, path=()):
    """Yields each defined class with its full name."""
    for child in node:
        if child.tag == "namespace-decl":
            yield from classes(child, path + (child.get("name"),))
        elif child.tag == "class-decl":
            name = path + (child.get("name"),)
            if child.get("is-declaration-only") != "yes":
                yield "::".join(name), child
            for member in child.iter("member-type"):
                yield from classes(member, name)
        elif child.tag == "abi-instr":
            yield from classes(child, path)


def lines_of(node):
    """The lines of one class: its size, its bases, its fields, its virtual operations."""
    yield f"    {node.get('size-in-bits')} bits"
    for member in node.findall("data-member"):
        offset = member.get("layout-offset-in-bits")
        if offset is not None:
            yield f"    at {offset}: {member.find('var-decl').get('name')}"
    slots = {}
    for member in node.findall("member-function"):
        slot = member.get("vtable-offset")
        if slot is not None:
            function = member.find("function-decl")
            slots.setdefault(int(slot), function.get("mangled-name") or function.get("name"))
    for slot in sorted(slots):
        yield f"    slot {slot}: {slots[slot]}"


def main():
    table = {}
    for description in sys.argv[1:]:
        for name, node in classes(xml.parse(description).getroot()):
            if name.startswith("vexa::") and "::::" not in name:  # unnamed namespaces are nobody else's
                table.setdefault(name, set()).add("\n".join(lines_of(node)))
    for name in sorted(table):
        print(name)
        print(max(table[name], key=len))


main()
