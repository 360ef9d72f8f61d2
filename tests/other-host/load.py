#!/usr/bin/env python3
"""Checks that the process of a host does not grow while add-ons are loaded and unloaded under vexa-standin attach.

Usage: load.py RUNNER HOST MACRO ADDON...

  RUNNER   the program vexa-standin
  HOST     the program of the host
  MACRO    what runs after each loading

Loads and unloads 1000 times, or 10000 times with VEXA_LOAD=long, and compares the memory and the mappings of the process
at the end with those after a tenth. Does the same plainly, to show what the host itself needs. The exit status is 1 if the
process under attach has grown.
"""

import os
import re
import subprocess
import sys

MEASURED = re.compile(r'^after (\d+) rounds: (\d+) kB, (\d+) mappings$', re.MULTILINE)
MOST_GROWTH_KB = 256  # a process touches new pages for a while
MOST_MAPPINGS = 16  # stacks of threads come and go


def measured(command):
    result = subprocess.run(command, text=True, stdout=subprocess.PIPE, timeout=3600, check=False)
    found = [tuple(map(int, match)) for match in MEASURED.findall(result.stdout)]
    if result.returncode != 0 or len(found) != 2:
        sys.exit(f'exit status {result.returncode}: {result.stdout[-2000:]}')
    return found


def main():
    runner, host, macro, *addons = sys.argv[1:]
    rounds = 10000 if os.environ.get('VEXA_LOAD') == 'long' else 1000
    plain = [host, '--repeat', str(rounds), *(word for addon in addons for word in ('--addon', addon)), macro]
    for name, command in {'plain': plain, 'under attach': [runner, 'attach', '--strict', '--', *plain]}.items():
        early, late = measured(command)
        for number, kilobytes, mappings in (early, late):
            print(f'{name}: after {number} rounds {kilobytes} kB in {mappings} mappings')
    has_grown = late[1] > early[1] + MOST_GROWTH_KB or late[2] > early[2] + MOST_MAPPINGS
    return 1 if has_grown else 0


if __name__ == '__main__':
    sys.exit(main())
