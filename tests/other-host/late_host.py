#!/usr/bin/env python3
"""Checks vexa-standin attach in a host that loads its functions while it runs: Python, with libotherhost.so.

Usage: late_host.py RUNNER LIBRARY ADDON

  RUNNER    the program vexa-standin
  LIBRARY   libotherhost.so
  ADDON     the misbehaving add-on

The exit status is 1 if a command has other findings than the rule after which it is named, or if its twin has one.
"""

import ctypes
import sys

import attach

COMMANDS = ('unbalanced-lock', 'double-free', 'null-handle', 'duplicate-argument', 'leaked-set', 'missing-errmsg')


class Description(ctypes.Structure):
    """VexaAddOn_s."""
    _fields_ = [('apiVersion', ctypes.c_uint32), ('id', ctypes.c_char_p), ('title', ctypes.c_char_p),
                ('execute', ctypes.CFUNCTYPE(ctypes.c_int, ctypes.c_char_p, ctypes.POINTER(ctypes.c_void_p))),
                ('shutdown', ctypes.CFUNCTYPE(None))]


def be_the_host(library, addon, command):
    ctypes.CDLL(library, mode=ctypes.RTLD_GLOBAL)
    entry = ctypes.CDLL(addon).vexaAddOn
    entry.restype = ctypes.POINTER(Description)
    identity = ctypes.create_string_buffer(1)
    description = entry(identity).contents
    message = ctypes.c_void_p()
    description.execute(command.encode(), ctypes.byref(message))
    description.shutdown()


def main():
    runner, library, addon = sys.argv[1:]
    faults = 0
    for command in [*COMMANDS, *(command + '-twin' for command in COMMANDS)]:
        run = attach.run(runner, [sys.executable, '-B', __file__, '--host', library, addon, command])
        found = attach.rules_of(run.log)
        expected = set() if command.endswith('-twin') else {command}
        print(f'{command}: {run.calls} calls seen, findings: {", ".join(sorted(found)) or "none"}')
        if run.process.returncode != 0 or found != expected or run.process.stderr:
            print(f'  expected: {expected}; exit status {run.process.returncode}; {run.process.stderr}')
            faults += 1
    return 1 if faults else 0


if __name__ == '__main__':
    if sys.argv[1] == '--host':
        be_the_host(*sys.argv[2:])
    else:
        sys.exit(main())
