#!/usr/bin/env python3
"""Checks that vexa-standin attach sees the calls of all threads of an add-on, and none of the host's own calls.

Usage: callers.py RUNNER HOST PART MACRO ADDON...

  PART    a library of the host's own, which breaks the contract
  MACRO   what the add-ons run; they keep the contract

The last run has the command "THREADS CALL 1000" only, with which eight threads call at once. The exit status is 1 if there
is a finding, or if the calls that are seen are not those of the add-ons.
"""

import re
import sys
import tempfile

import attach


def seen(runner, *command):
    run = attach.run(runner, command, '--strict', '--warnings-as-errors')
    if run.process.returncode != 0 or run.log:
        sys.exit(f'{command}: exit status {run.process.returncode}\n{run.process.stdout}{run.process.stderr}{run.log}')
    return run


def main():
    runner, host, part, macro, *addons = sys.argv[1:]
    loaded = [word for addon in addons for word in ('--addon', addon)]
    alone = seen(runner, host, *loaded, macro).calls
    beside = seen(runner, host, '--part', part, *loaded, macro).calls
    print(f'calls of add-ons: {alone} seen; while the host calls, too: {beside} seen')

    with tempfile.NamedTemporaryFile('w', suffix='.macro') as call:
        print('THREADS CALL 1000', file=call, flush=True)
        run = seen(runner, host, *loaded, call.name)
    made = int(re.search(r'^made (\d+) calls$', run.process.stdout, re.MULTILINE).group(1))
    print(f'calls of eight threads: {made} made, {run.calls} seen')
    return 0 if alone == beside > 0 and run.calls == made else 1


if __name__ == '__main__':
    sys.exit(main())
