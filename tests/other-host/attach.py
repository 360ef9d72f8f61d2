"""Runs a program under vexa-standin attach, and returns what attach saw."""

import collections
import pathlib
import re
import subprocess
import tempfile

FINDING = re.compile(r' \[([a-z-]+)\]$', re.MULTILINE)
CALL = re.compile(r'"name":"VexaUtil\w+","cat":"call","ph":"B"')

# The finished process, the text of the findings, and the number of calls; none if they were not traced.
Run = collections.namedtuple('Run', 'process log calls')


def run(runner, command, *options, is_traced=True, **settings):
    """Runs `command` under attach with these options. The settings are those of subprocess.run()."""
    with tempfile.TemporaryDirectory() as folder:
        log, trace = pathlib.Path(folder) / 'log', pathlib.Path(folder) / 'trace'
        options = [*options, '--log', log, *(['--trace', trace] if is_traced else [])]
        settings = {'text': True, 'errors': 'replace', 'capture_output': True, 'timeout': 300, **settings}
        process = subprocess.run([runner, 'attach', *options, '--', *command], check=False, **settings)
        return Run(process, text_of(log), len(CALL.findall(text_of(trace))) if is_traced else None)


def text_of(path):
    return path.read_text() if path.exists() else ''


def rules_of(text):
    """The rules of the findings in a text."""
    return set(FINDING.findall(text))
