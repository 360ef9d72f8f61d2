#!/usr/bin/env python3
"""Checks that vexa-standin attach sees the calls of all threads of an add-on, and none of the host's own calls.

Usage: callers.py RUNNER HOST PART MACRO ADDON THREADS

  PART      a library of the host's own, which breaks the contract
  MACRO     what ADDON runs
  THREADS   an add-on whose command "CALL N" calls from eight threads

Neither must have findings. The exit status is 1 if they have, or if the calls that are seen are not those of the add-on.
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
    runner, host, part, macro, addon, threads = sys.argv[1:]
    alone = seen(runner, host, '--addon', addon, macro).calls
    beside = seen(runner, host, '--part', part, '--addon', addon, macro).calls
    print(f'calls of the add-on: {alone} seen; while the host calls, too: {beside} seen')

    with tempfile.NamedTemporaryFile('w', suffix='.macro') as call:
        print('THREADS CALL 1000', file=call, flush=True)
        run = seen(runner, host, '--addon', threads, call.name)
    made = int(re.search(r'^made (\d+) calls$', run.process.stdout, re.MULTILINE).group(1))
    print(f'calls of eight threads: {made} made, {run.calls} seen')
    return 0 if alone == beside > 0 and run.calls == made else 1


if __name__ == '__main__':
    sys.exit(main())
