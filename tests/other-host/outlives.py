#!/usr/bin/env python3
"""Checks that the other host outlives each command of the misbehaving add-on, and runs it.

Usage: outlives.py HOST SOURCE ADDON
"""

import subprocess
import sys

import behaviours

# What fails, fails with these words; everything else is done.
MESSAGES = {
    'string-overrun': 'text',
    'string-overrun-twin': 'text',
    'string-unterminated': 'text',
    'string-unterminated-twin': 'no',
    'foreign-errmsg': '(its message is no string of the host)',
    'foreign-errmsg-twin': "the host's text",
    'use-after-free-errmsg': '(its message is no string of the host)',
    'missing-errmsg': '(no message)',
    'missing-errmsg-twin': 'no such zone',
    'escaped-exception': 'the add-on ',  # aborted, or threw: the guards differ
}


def run(host, addon, command):
    with behaviours.arguments(addon, command) as arguments:
        return subprocess.run([host, *arguments], text=True, errors='replace', capture_output=True, timeout=60, check=False)


def fault_of(command, result):
    """What is wrong with this run; none if all is well."""
    message = MESSAGES.get(command)
    if result.returncode != (0 if message is None else 1):
        return f'exit status {result.returncode}: {result.stderr}'
    expected = 'MISBEHAVING: done' if message is None else f'MISBEHAVING: failed: {message}'
    return None if expected in result.stdout else f'no "{expected}" in: {result.stdout}'


def main():
    host, source, addon = sys.argv[1:]
    faults = 0
    for command in behaviours.commands(source):
        fault = fault_of(command, run(host, addon, command))
        if fault:
            print(f'{command}: {fault}')
            faults += 1
    return 1 if faults else 0


if __name__ == '__main__':
    sys.exit(main())
