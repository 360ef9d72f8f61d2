"""The commands of the add-on that breaks the host's contract."""

import contextlib
import pathlib
import re
import tempfile

COMMAND = re.compile(r'^    \{"([a-z-]+)",', re.MULTILINE)
ENDLESS = 'command-timeout'  # the command that never returns


def commands(source):
    """All commands that the source of the add-on lists, but the endless one."""
    found = COMMAND.findall(pathlib.Path(source).read_text())
    assert len(found) > 90 and ENDLESS in found, f'{source}: its tables are no longer understood'
    return [command for command in found if command != ENDLESS]


@contextlib.contextmanager
def arguments(addon, command):
    """The arguments with which a host runs one command of the add-on."""
    with tempfile.NamedTemporaryFile('w', suffix='.macro') as macro:
        print('MISBEHAVING', command, file=macro, flush=True)
        yield ['--addon', addon, macro.name]
