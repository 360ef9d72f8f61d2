#!/usr/bin/env python3
"""Checks that the process of a host does not grow while add-ons are loaded and unloaded under vexa-standin attach.

Usage: load.py RUNNER HOST MACRO ADDON...

  RUNNER   the program vexa-standin
  HOST     the program of the host
  MACRO    what runs after each loading

Loads and unloads 1000 times, or 10000 times with VEXA_LOAD=long, and compares the memory and the mappings of the process
at the end with those after a tenth. Does the same plainly, to show what the host itself needs. The exit status is 1 if the
process under attach has grown.

If an audit library sees what the loader binds, glibc 2.36 keeps 32 bytes for each entry of an object's table of lazily
bound functions after the object is unloaded. The check allows them, so pass add-ons without such entries (-fno-plt), too.
"""

import os
import re
import subprocess
import sys

MEASURED = re.compile(r'^after (\d+) rounds: (\d+) kB, (\d+) mappings$', re.MULTILINE)
MOST_GROWTH_KB = 256  # a process touches new pages for a while
MOST_MAPPINGS = 16  # stacks of threads come and go
KEPT_FOR_ENTRY, KEPT_FOR_OBJECT = 32, 16


def measured(command):
    result = subprocess.run(command, text=True, stdout=subprocess.PIPE, timeout=3600, check=False)
    found = [tuple(map(int, match)) for match in MEASURED.findall(result.stdout)]
    if result.returncode != 0 or len(found) != 2:
        sys.exit(f'exit status {result.returncode}: {result.stdout[-2000:]}')
    return found


def kept_by_loader(addon):
    """The bytes that the loader keeps each time when it unloads the add-on."""
    relocations = subprocess.run(['readelf', '--relocs', '--wide', addon], text=True, capture_output=True, check=True)
    entries = relocations.stdout.count('_JUMP_SLO')
    return entries * KEPT_FOR_ENTRY + KEPT_FOR_OBJECT if entries else 0


def main():
    runner, host, macro, *addons = sys.argv[1:]
    rounds = 10000 if os.environ.get('VEXA_LOAD') == 'long' else 1000
    plain = [host, '--repeat', str(rounds), *(word for addon in addons for word in ('--addon', addon)), macro]
    for name, command in {'plain': plain, 'under attach': [runner, 'attach', '--strict', '--', *plain]}.items():
        early, late = measured(command)
        for number, kilobytes, mappings in (early, late):
            print(f'{name}: after {number} rounds {kilobytes} kB in {mappings} mappings')
    kept = sum(map(kept_by_loader, addons)) * (late[0] - early[0]) // 1024
    print(f'kept by the loader: {kept} kB')
    has_grown = late[1] > early[1] + MOST_GROWTH_KB + kept or late[2] > early[2] + MOST_MAPPINGS
    return 1 if has_grown else 0


if __name__ == '__main__':
    sys.exit(main())
