#!/usr/bin/env python3
"""Runs the probe in the other host, and lets the stand-in answer as that host does.

Usage: other_host.py OTHER-HOST RUNNER PROBE SECOND-PROBE README

README has the table of the facts in which the other host differs from the stand-in on purpose. The exit status is 1 if
one of these holds; each is printed:
- the differences that `compare-hosts` finds are not those of the table, or are fewer than twelve
- after `--host`, there is a difference that the runner did not name as one that it cannot imitate, or it named one that
  is none
"""

import json
import pathlib
import re
import subprocess
import sys
import tempfile

LEAST_DIFFERENCES = 12

MACRO = """\
VEXAPROBE WRITE FILE = 'other.json' RISKY = TRUE SETTING = 'Text Height'
VEXAPROBE2 WATCH FILE = 'other.json'
VEXAPROBE FAIL
VEXAPROBE NOTE TEXT = 'after the failure'
"""


def main(other_host, runner, probe, second_probe, readme):
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        (folder / 'probe.macro').write_text(MACRO)
        run(folder, [other_host, '--addon', probe, '--addon', second_probe, 'probe.macro'], 1)  # FAIL fails
        run(folder, [runner, 'probe', '-o', 'standin.json'], 0)
        notes = run(folder, [runner, 'probe', '--host', 'other.json', '-o', 'imitated.json'], 0).stderr
        named = set(re.findall(r'^other\.json: not imitated: (\S+) = ', notes, re.MULTILINE))
        before = differences(folder, runner, 'standin.json')
        after = differences(folder, runner, 'imitated.json')
    expected = facts_of_table(readme)
    problems = []
    if before != expected:
        problems.append(f'differences that are not in {readme}, or the reverse: {sorted(before ^ expected)}')
    if len(before) < LEAST_DIFFERENCES:
        problems.append(f'only {len(before)} differences, expected {LEAST_DIFFERENCES}')
    if after != named:
        problems.append(f'different after --host: {sorted(after)}, but named as not imitated: {sorted(named)}')
    print(f'{len(before)} differences; after --host {len(after)}: {", ".join(sorted(after))}')
    print('\n'.join(problems), file=sys.stderr)
    return 1 if problems else 0


def run(folder, command, status):
    result = subprocess.run(command, cwd=folder, capture_output=True, text=True, check=False)
    if result.returncode != status:
        sys.exit(f'{command}: exit status {result.returncode}, expected {status}\n{result.stdout}{result.stderr}')
    return result


def differences(folder, runner, standin):
    """The names of the facts in which the stand-in's facts differ from those of the other host."""
    run(folder, [runner, 'compare-hosts', standin, 'other.json', '--json', 'differences.json'], 1)
    return {difference['fact'] for difference in json.loads((folder / 'differences.json').read_text())['differences']}


def facts_of_table(readme):
    """The facts in the first column of the table, up to its empty row."""
    rows = pathlib.Path(readme).read_text().split('| fact |')[1].split('| | | |')[0]
    return set(re.findall(r'^\| `([\w.]+)` \|', rows, re.MULTILINE))


if __name__ == '__main__':
    sys.exit(main(*sys.argv[1:]))
