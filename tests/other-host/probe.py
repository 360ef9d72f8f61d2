#!/usr/bin/env python3
"""Checks that the probe keeps the contract in the other host: vexa-standin attach has no finding.

Usage: probe.py RUNNER HOST PROBE SECOND-PROBE

The exit status is 1 if there is a finding, or if fewer calls are seen than the probe has questions.
"""

import json
import pathlib
import sys
import tempfile

import attach

MACRO = """\
VEXAPROBE WRITE FILE = 'facts.json' SETTING = 'Text Height'
VEXAPROBE2 WATCH FILE = 'facts.json'
VEXAPROBE FAIL
VEXAPROBE NOTE TEXT = 'after the failure'
"""


def main():
    runner, host, *probes = sys.argv[1:]
    with tempfile.TemporaryDirectory() as folder:
        macro = pathlib.Path(folder) / 'probe.macro'
        macro.write_text(MACRO)
        command = [host, *(word for probe in probes for word in ('--addon', probe)), macro]
        run = attach.run(runner, command, '--strict', '--warnings-as-errors', cwd=folder)
        facts = json.loads((pathlib.Path(folder) / 'facts.json').read_text())['facts']
    answers = sum(fact['answer'] is not None for fact in facts.values())
    print(f'{answers} answers from {run.calls} calls\n{run.log}', end='')
    has_failed_once = run.process.returncode == 1 and run.process.stdout.count(': failed: ') == 1  # by FAIL
    return 0 if has_failed_once and not attach.rules_of(run.log) and run.calls > answers > 0 else 1


if __name__ == '__main__':
    sys.exit(main())
