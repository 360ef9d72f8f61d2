#!/usr/bin/env python3
"""Compares the declarations of a host maker with those of this project.

Usage: compare.py COMPILER OURS THEIRS WORK

  COMPILER   a C++ compiler: g++ or clang++
  OURS       the folder with vexa/VexaUtil.h of this project
  THEIRS     the folder with vexa/VexaUtil.h of the host maker
  WORK       a folder for what is compiled

Prints each difference with what it means, and then notes: what differs, too, but in nothing that the library needs. The
exit status is 1 if there are differences.
"""

import pathlib
import re
import subprocess
import sys

HERE = pathlib.Path(__file__).parent
FUNCTION = re.compile(r'\b(VexaUtil\w+)\s*\(')
ENUMERATION = re.compile(r'\benum\b[^{;]*\{([^}]*)\}')

# What a difference of each kind is called, and what it means for the library and for the authors of add-ons.
MEANINGS = {
    'function': (
        'the type of the function differs',
        'Build it with VEXA_HOST_PREFIX. A build with our header passes wrong arguments.',
        'Compile the add-on with their headers, and change its calls. The stand-in host has the function with our type.'),
    'enumerator': (
        'the value of the enumerator differs',
        'Build it with VEXA_HOST_PREFIX. A build with our header takes one result for another.',
        'Compile the add-on with their headers, and do not write the number in its code.'),
    'constant': (
        'the value of the constant differs',
        'It does not use the constant.',
        'Compile the add-on with their headers. The host refuses an add-on with our version.'),
    'type': (
        'the type differs',
        'Build it with VEXA_HOST_PREFIX. A build with our header passes values of the wrong size or sign.',
        'Compile the add-on with their headers.'),
    'field': (
        'the field differs',
        'It does not use the description of an add-on.',
        'Compile the add-on with their headers. Otherwise the host reads another field.'),
    'operation': (
        'the library calls this operation, and their class does not have it in this form',
        'It does not compile with their headers before its call is changed.',
        'Change calls of this operation in the add-on, too.'),
    'slots': (
        'the virtual operations are in another order',
        'Build it with VEXA_HOST_PREFIX. A build with our headers calls the wrong operation.',
        'Compile the add-on with their headers. One that was compiled with ours calls the wrong operation.'),
    'offered': (
        'their class does not have this operation',
        'It does not need the operation.',
        'An add-on that calls the operation does not compile with their headers.'),
    'base': (
        'the base class differs',
        'It catches both.',
        'Do not rely on a handler for the base class; catch vexa::ExceptionBase by its name.'),
    'size': (
        'the size of the class differs',
        'Build it with VEXA_HOST_PREFIX.',
        'Compile the add-on with the headers of the class libraries that it runs with.'),
}
MISSING = {
    'function': (
        'they do not declare the function',
        'If it calls the function, it does not compile.',
        'An add-on that calls the function is not loaded by their host.'),
    'enumerator': (
        'they do not declare the enumerator',
        'If it uses the enumerator, it does not compile.',
        'Their host never returns this value.'),
}
ADDED = {
    'function': (
        'only they declare the function',
        'It does not call the function.',
        'An add-on that calls the function is not loaded by the stand-in host.'),
    'enumerator': (
        'only they declare the enumerator',
        'It takes the value for a failure.',
        'The stand-in host never returns this value.'),
}
NOTES = ('offered', 'base', 'size')


class Difference:
    def __init__(self, name, meaning, ours=None, theirs=None, is_note=False):
        self.name, self.meaning, self.ours, self.theirs, self.is_note = name, meaning, ours, theirs, is_note

    def __str__(self):
        title, library, add_ons = self.meaning
        return text_of(f'{self.name}: {title}', ours=self.ours, theirs=self.theirs, library=library, add_ons=add_ons)


def note_of(differences):
    """One text for all differences of the same meaning."""
    title, library, add_ons = differences[0].meaning
    names = (item.name if item.ours in (None, 'declared') else f'{item.name} (ours: {item.ours}; theirs: {item.theirs})'
             for item in differences)
    return text_of('\n    '.join([f'note: {title}', *names]), library=library, add_ons=add_ons)


def text_of(headline, **rows):
    lines = [f'    {label.replace("_", "-") + ":":9}{text}' for label, text in rows.items() if text is not None]
    return '\n'.join([headline, *lines]) + '\n'


class Side:
    """The declarations in one folder."""

    def __init__(self, compiler, include, work):
        self.compiler, self.include, self.work = compiler, include, work
        work.mkdir(parents=True, exist_ok=True)
        text = self._compile('-E', '-P', include / 'vexa/VexaUtil.h').stdout
        self.names = {'function': set(FUNCTION.findall(text)), 'enumerator': enumerators(text)}

    def facts(self, names):
        """What the probe prints: values by kind and name."""
        lines = [f'{kind.upper()}({name})' for kind in names for name in sorted(names[kind])]
        (self.work / 'Names.inc').write_text('\n'.join(lines) + '\n')
        # The probe takes addresses of operations and calls none, so it needs no library.
        self._compile('-I', self.work, '-I', HERE.parent.parent / 'tests', HERE / 'Probe.cpp', '-o', self.work / 'probe',
                      '-Wl,--unresolved-symbols=ignore-all')
        printed = subprocess.run([self.work / 'probe'], text=True, capture_output=True, check=True).stdout
        facts = {}
        for line in printed.splitlines():
            kind, name, value = line.split('\t')
            facts.setdefault(kind, {})[name] = value
        facts['slots'] = slots_by_class(facts.pop('slot'))
        return facts

    def _compile(self, *arguments):
        command = [self.compiler, '-std=c++17', '-x', 'c++', '-I', self.include, *arguments]
        result = subprocess.run(command, text=True, capture_output=True, check=False)
        if result.returncode != 0:
            errors = [line for line in result.stderr.splitlines() if ' error: ' in line] or [result.stderr]
            sys.exit('\n'.join([f'{self.include}: the declarations that the library needs do not compile:', *errors[:5]]))
        return result


def enumerators(text):
    names = (entry.split('=')[0].strip() for body in ENUMERATION.findall(text) for entry in body.split(','))
    return {name for name in names if name}


def slots_by_class(slots):
    """One text a class: its virtual operations in their order."""
    classes = {}
    for name, slot in slots.items():
        owner, operation = name.split('::', 1)
        classes.setdefault(owner, []).append((int(slot), operation.split(' -> ')[0]))
    return {owner: ', '.join(f'{slot} {operation}' for slot, operation in sorted(entries))
            for owner, entries in classes.items()}


def names_differences(ours, theirs):
    """Names that only one side declares."""
    for kind in ours.names:
        for name in sorted(ours.names[kind] - theirs.names[kind]):
            yield Difference(name, MISSING[kind])
        for name in sorted(theirs.names[kind] - ours.names[kind]):
            yield Difference(name, ADDED[kind], is_note=True)


def value_differences(ours, theirs):
    """Names that both sides declare, differently."""
    for kind, meaning in MEANINGS.items():
        for name, value in ours[kind].items():
            other = theirs[kind].get(name)
            if other != value and not (kind == 'slots' and lacks_an_operation(name, theirs)):
                yield Difference(name, meaning, value, other or 'none', kind in NOTES)


def lacks_an_operation(owner, facts):
    """Then the order of the others says nothing new."""
    return any(value == 'absent' for name, value in facts['operation'].items() if name.startswith(owner + '::'))


def missing_headers(ours, theirs):
    headers = sorted(path.relative_to(ours) for path in ours.rglob('*.h') if path.name != 'Export.h')
    return [header for header in headers if not (theirs / header).is_file()]


def compared(compiler, ours, theirs, work):
    sides = Side(compiler, ours, work / 'ours'), Side(compiler, theirs, work / 'theirs')
    common = {kind: sides[0].names[kind] & sides[1].names[kind] for kind in sides[0].names}
    return [*names_differences(*sides), *value_differences(*(side.facts(common) for side in sides))]


def main():
    compiler, *folders = sys.argv[1:]
    ours, theirs, work = map(pathlib.Path, folders)
    missing = missing_headers(ours, theirs)
    if missing:
        sys.exit('\n'.join(f'{theirs / header}: this header is missing' for header in missing))
    found = compared(compiler, ours, theirs, work)
    differences = [item for item in found if not item.is_note]
    notes = {}
    for item in found:
        if item.is_note:
            notes.setdefault(item.meaning, []).append(item)
    print(*differences, *map(note_of, notes.values()), f'Differences: {len(differences)}.', sep='\n')
    return 1 if differences else 0


if __name__ == '__main__':
    sys.exit(main())
