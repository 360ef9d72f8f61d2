#!/usr/bin/env python3
"""Checks that the example add-ons keep the contract under vexa-standin attach, and that attach changes nothing.

Usage: examples.py RUNNER EXAMPLES HOST ADDON...

  RUNNER     the program vexa-standin
  EXAMPLES   the folder with the examples
  HOST       the program of the host
  ADDON      FOLDER=FILE: the folder of an example, and its add-on

Runs each macro of each example in the host, plainly and under attach. Output, exit status and written files must be the
same, and attach must see calls, but have no finding. The exit status is 1 if one of them is not so.
"""

import contextlib
import pathlib
import shutil
import subprocess
import sys
import tempfile

import attach


@contextlib.contextmanager
def copy_of(example):
    with tempfile.TemporaryDirectory() as folder:
        copy = pathlib.Path(folder) / 'example'
        shutil.copytree(example, copy)
        yield copy


def effects(process, folder):
    """What a finished process has printed and left."""
    files = {path.relative_to(folder): path.read_bytes() for path in sorted(folder.rglob('*')) if path.is_file()}
    return {'exit status': process.returncode, 'output': process.stdout, 'errors': process.stderr, 'files': files}


def trial(runner, host, addon, example, macro):
    """One macro, plainly and under attach. Returns the number of faults."""
    command = [host, '--addon', addon, macro.name]
    with copy_of(example) as folder:
        plain = subprocess.run(command, cwd=folder, text=True, capture_output=True, timeout=300, check=False)
        before = effects(plain, folder)
    with copy_of(example) as folder:
        run = attach.run(runner, command, '--strict', cwd=folder)
        after = effects(run.process, folder)
    differences = [part for part in before if before[part] != after[part]]
    print(f'{example.name}/{macro.name}: exit status {before["exit status"]}, {len(before["output"].splitlines())} lines, '
          f'{"other " + ", ".join(differences) if differences else "the same"} under attach, {run.calls} calls seen, '
          f'{len(attach.rules_of(run.log))} rules broken')
    for part in differences:
        print(f'  plain {part}: {before[part]!r}\n  under attach: {after[part]!r}')
    print(run.log, end='')
    return len(differences) + len(attach.rules_of(run.log)) + (run.calls == 0)


def main():
    runner, examples, host, *addons = sys.argv[1:]
    faults = 0
    for entry in addons:
        name, addon = entry.split('=', 1)
        example = pathlib.Path(examples) / name
        macros = sorted(example.glob('*.macro'))
        assert macros, f'{example} has no macro'
        faults += sum(trial(runner, host, addon, example, macro) for macro in macros)
    return 1 if faults else 0


if __name__ == '__main__':
    sys.exit(main())
