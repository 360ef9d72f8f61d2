#!/usr/bin/env python3
"""Compares the rules that vexa-standin attach reports in the other host with those that the stand-in reports.

Usage: rules.py RUNNER SOURCE ADDON HOST...

  RUNNER   the program vexa-standin
  SOURCE   the source of the misbehaving add-on
  ADDON    the misbehaving add-on
  HOST     PLACE=PROGRAM: where the host has its functions, and its program

Each command of the add-on that breaks a rule, and each that keeps it, runs in the stand-in and under attach in each
host. A line for each rule says how many of its commands each of them reports, and how many findings the commands have
that keep the rule. The exit status is 1 if a host reports other rules than the stand-in, except those that attach cannot
see (`vexa-standin explain --attach`).
"""

import re
import subprocess
import sys

import attach
import behaviours

LISTED = re.compile(r'^  ([a-z-]+)  ', re.MULTILINE)
NEVER_REPORTED = re.compile(r'^([a-z-]+)\n  Never reported:', re.MULTILINE)
TWIN = '-twin'

# A command that breaks a rule which attach cannot see, and the other rule that its call then breaks, too.
SEEN_INSTEAD = {'string-overrun': {'string-unterminated'}}


def rules_of_standin(runner, addon, command):
    with behaviours.arguments(addon, command) as arguments:
        result = subprocess.run([runner, 'run', *arguments], text=True, errors='replace', capture_output=True, timeout=60,
                                check=False)
    return attach.rules_of(result.stderr)


def rules_of_attach(runner, host, addon, command):
    with behaviours.arguments(addon, command) as arguments:
        run = attach.run(runner, [host, *arguments], is_traced=False)
    if run.process.returncode not in (0, 1):
        sys.exit(f'{command}: exit status {run.process.returncode}\n{run.process.stdout}{run.process.stderr}')
    return attach.rules_of(run.log)


def explained(runner, *arguments):
    return subprocess.run([runner, 'explain', *arguments], text=True, capture_output=True, check=True).stdout


def tried_by(rule, commands):
    """The commands that are named after the rule: those that break it, and those that keep it."""
    named = [command for command in commands if command == rule or command.startswith(rule + '-')]
    return [name for name in named if not name.endswith(TWIN)], [name for name in named if name.endswith(TWIN)]


def expected(command, standin, unseen):
    """The rules that attach has to report."""
    return standin - unseen | (SEEN_INSTEAD.get(command, set()) if standin & unseen else set())


def cell(rule, commands, found):
    return f'{sum(rule in found[command] for command in commands)} of {len(commands)}' if commands else '-'


def main():
    runner, source, addon, *hosts = sys.argv[1:]
    commands = behaviours.commands(source)
    found = {'stand-in': {command: rules_of_standin(runner, addon, command) for command in commands}}
    for host in hosts:
        place, program = host.split('=', 1)
        found['attach, ' + place] = {command: rules_of_attach(runner, program, addon, command) for command in commands}
    unseen = set(NEVER_REPORTED.findall(explained(runner, '--attach')))

    print('|', ' | '.join(['rule', *found, 'findings of twins']), '|')
    print('|---' * (len(found) + 2) + '|')
    for rule in LISTED.findall(explained(runner)):
        breaking, keeping = tried_by(rule, commands)
        of_twins = sum(len(by_command[command]) for by_command in found.values() for command in keeping)
        cells = [cell(rule, breaking, by_command) for by_command in found.values()]
        print('|', ' | '.join([rule + (' (never reported by attach)' if rule in unseen else ''), *cells, str(of_twins)]), '|')

    standin = found.pop('stand-in')
    faults = [f'{command}: {name} reports {sorted(by_command[command])}, the stand-in {sorted(standin[command])}'
              for name, by_command in found.items() for command in commands
              if by_command[command] != expected(command, standin[command], unseen)]
    faults += [f'{command}: the stand-in reports {sorted(standin[command])}'
               for command in commands if command.endswith(TWIN) and standin[command]]
    print('\n'.join(['', *faults, f'{len(commands)} commands, {len(faults)} faults.']))
    return 1 if faults else 0


if __name__ == '__main__':
    sys.exit(main())
