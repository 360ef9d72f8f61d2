#!/usr/bin/env python3
"""Counts the host calls that vexa-standin attach sees, for each way in which an add-on can be built and loaded.

Usage: matrix.py RUNNER WORK HOST...

  RUNNER   the program vexa-standin
  WORK     a folder for what is built
  HOST     PLACE=PROGRAM: where the host has its functions, and its program

Prints a line for each combination of compiler, binding, load mode and host. The exit status is 1 if a call was not seen
or was seen twice. A compiler that is not installed is skipped, and named.
"""

import itertools
import pathlib
import re
import shutil
import subprocess
import sys

import attach

HERE = pathlib.Path(__file__).parent
ROOT = HERE.parent.parent
COMPILERS = ('g++', 'clang++')

# How the calls are compiled and linked, and when the loader binds them.
BINDINGS = {
    'PLT, lazy': (['-fplt'], ['-Wl,-z,lazy'], 'lazy'),
    'PLT, -z now': (['-fplt'], ['-Wl,-z,now'], 'now'),
    '-fno-plt': (['-fno-plt'], [], 'now'),
    'pointer in data': (['-DBIND_BY_POINTER'], [], 'now'),
    'dlsym': (['-DBIND_BY_DLSYM'], [], 'now'),
}
MODES = ('local', 'global', 'linked', 'late')
MADE = re.compile(r'^made (\d+) calls$', re.MULTILINE)


class Objects:
    """The shared objects of one compiler and binding."""

    def __init__(self, folder, compiler, binding):
        self.folder, self.compiler = folder, compiler
        self.compile_flags, self.link_flags, self.when = BINDINGS[binding]
        folder.mkdir(parents=True)
        self.with_calls = self._build('with-calls.so', 'AddOn.cpp', 'Calls.cpp')
        self.library = self._build('libcalls.so', 'Calls.cpp')
        self.linked = self._build('linked.so', 'AddOn.cpp', f'-L{folder}', '-lcalls', f'-Wl,-rpath,{folder}')

    def _build(self, output, *inputs):
        inputs = [HERE / 'matrix' / name if name.endswith('.cpp') else name for name in inputs]
        late = f'-DLATE_BINDING=RTLD_{self.when.upper()}'
        subprocess.run([self.compiler, '-std=c++17', '-O1', '-fPIC', '-shared', '-fvisibility=hidden', late,
                        f'-I{ROOT / "hostapi"}', *self.compile_flags, *inputs, *self.link_flags, '-ldl',
                        '-o', self.folder / output], check=True)
        return self.folder / output

    def run(self, runner, host, mode):
        """Returns the calls that were made, and those that were seen."""
        addon = self.linked if mode == 'linked' else self.with_calls
        macro = self.folder / 'matrix.macro'
        macro.write_text(f'MATRIX LOAD {self.library}\n' if mode == 'late' else 'MATRIX CALL\n')
        options = ['--bind', self.when, *(['--global'] if mode == 'global' else [])]
        run = attach.run(runner, [host, *options, '--addon', addon, macro])
        made = MADE.search(run.process.stdout)
        if run.process.returncode != 0 or not made:
            sys.exit(f'{self.folder}, {mode}: exit status {run.process.returncode}\n{run.process.stdout}'
                     f'{run.process.stderr}')
        return int(made.group(1)), run.calls


def installed_compilers():
    for compiler in COMPILERS:
        if shutil.which(compiler):
            yield compiler
        else:
            print(f'skipped: there is no {compiler} here')


def print_row(*cells):
    print('| {:8} | {:15} | {:6} | {:14} | {:>4} | {:>4} |'.format(*cells), flush=True)


def main():
    runner, work, *hosts = sys.argv[1:]
    work = pathlib.Path(work)
    shutil.rmtree(work, ignore_errors=True)
    print_row('compiler', 'binding', 'load', 'host functions', 'made', 'seen')
    print_row('---', '---', '---', '---', '---', '---')
    missed = 0
    for number, (compiler, binding) in enumerate(itertools.product(installed_compilers(), BINDINGS)):
        objects = Objects(work / str(number), compiler, binding)
        for mode, host in itertools.product(MODES, hosts):
            place, program = host.split('=', 1)
            made, seen = objects.run(runner, program, mode)
            print_row(compiler, binding, mode, place, made, seen)
            missed += made != seen
    if missed:
        print(f'In {missed} combinations the calls that were made are not those that were seen.')
    return 1 if missed else 0


if __name__ == '__main__':
    sys.exit(main())
