"""The commands of the add-on that breaks the host's contract, and how a host runs one of them."""

import pathlib
import re
import subprocess
import tempfile

COMMAND = re.compile(r'^    \{"([a-z-]+)",', re.MULTILINE)
ENDLESS = 'command-timeout'  # the command that never returns


def commands(source):
    """All commands that the source of the add-on lists, but the endless one."""
    found = COMMAND.findall(pathlib.Path(source).read_text())
    assert len(found) > 90 and ENDLESS in found, f'{source}: its tables are no longer understood'
    return [command for command in found if command != ENDLESS]


def run(program, addon, command, *options):
    """Runs `command` of the add-on in a host: `program` with its first arguments."""
    with tempfile.NamedTemporaryFile('w', suffix='.macro') as macro:
        print('MISBEHAVING', command, file=macro, flush=True)
        return subprocess.run([*program, '--addon', addon, *options, macro.name], text=True, errors='replace',
                              capture_output=True, timeout=60, check=False)
