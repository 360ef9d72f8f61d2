"""A client of the language server `vexa-standin lsp`, for tests."""

import json
import os
import pathlib
import select
import subprocess
import time

RUNNER = os.environ.get('VEXA_STANDIN', 'vexa-standin')
SECONDS = 60  # after which a missing answer is a failure

DESCRIPTION = {'addon': 'STATS', 'commands': [
    {'name': 'MEAN', 'kind': 'processor', 'purpose': 'Prints the mean.', 'options': [
        {'name': 'TIMES', 'type': 'Int64', 'default': 1, 'min': 1, 'max': 9, 'help': 'how often'},
        {'name': 'TITLE', 'type': 'String', 'help': 'a title'},
        {'name': 'ZONES', 'type': 'Set', 'min': 1, 'max': 8, 'help': 'the zones'},
        {'name': 'LOUD', 'type': 'Boolean', 'help': 'in capitals'},
        {'name': 'MODE', 'type': 'Choice', 'values': ['fast', 'slow'], 'help': 'the mode'}],
     'examples': ['MEAN TIMES = 2']},
    {'name': 'LOAD', 'kind': 'command', 'purpose': 'Loads a file.', 'options': [
        {'name': 'HEADER', 'type': 'Boolean', 'help': 'whether the file has a header'},
        {'name': 'FILE', 'type': 'String', 'required': True, 'help': 'the file'}]}]}


def describe(folder, name='stats', **changes):
    """Writes a description into the folder, which is DESCRIPTION with changed members."""
    path = pathlib.Path(folder, name + '.commands.json')
    path.write_text(json.dumps({**DESCRIPTION, **changes}))
    return path


def framed(body):
    return b'Content-Length: %d\r\n\r\n' % len(body) + body


def position(line, character):
    return {'line': line, 'character': character}


class Server:
    """A running server. It counts as failed if an answer is late, or if it prints what is no message."""

    def __init__(self, folder, *options, capabilities=None, initialize=True):
        self.folder = pathlib.Path(folder)
        self.process = subprocess.Popen([RUNNER, 'lsp', *options], cwd=folder, stdin=subprocess.PIPE,
                                        stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        self.bytes = b''
        self.notes = []  # notifications and requests of the server that were not looked at
        self.next_id = 0
        if initialize:
            self.initialized = self.request('initialize', {
                'processId': None, 'rootUri': self.uri(''), 'capabilities': capabilities or {}})['result']
            self.notify('initialized', {})

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.process.kill()
        self.process.wait()
        for stream in (self.process.stdin, self.process.stdout, self.process.stderr):
            stream.close()

    def uri(self, name):
        return (self.folder / name).as_uri()

    # ---- Messages

    def send_bytes(self, data):
        self.process.stdin.write(data)
        self.process.stdin.flush()

    def send(self, message):
        self.send_bytes(framed(json.dumps({'jsonrpc': '2.0', **message}).encode()))

    def notify(self, method, params):
        self.send({'method': method, 'params': params})

    def request(self, method, params=None):
        self.next_id += 1
        self.send({'id': self.next_id, 'method': method, **({} if params is None else {'params': params})})
        return self.reply(self.next_id)

    def reply(self, id):
        return self._wait(lambda message: 'method' not in message and message['id'] == id)

    def note(self, method):
        """The next notification or request of the server with this method."""
        for i, note in enumerate(self.notes):
            if note['method'] == method:
                return self.notes.pop(i)
        return self._wait(lambda message: message.get('method') == method)

    def _wait(self, fits):
        while True:
            message = self._read()
            if fits(message):
                return message
            assert 'method' in message, f'unexpected answer {message}'
            self.notes.append(message)

    def _read(self):
        header = self._take_until(b'\r\n\r\n')
        name, length = header.split(b': ')
        assert name == b'Content-Length', header
        body = self._take(int(length))
        return json.loads(body)

    def _take_until(self, end):
        while end not in self.bytes:
            self._fill()
        taken, self.bytes = self.bytes.split(end, 1)
        return taken

    def _take(self, count):
        while len(self.bytes) < count:
            self._fill()
        taken, self.bytes = self.bytes[:count], self.bytes[count:]
        return taken

    def _fill(self):
        deadline = time.monotonic() + SECONDS
        assert select.select([self.process.stdout], [], [], deadline - time.monotonic())[0], 'no answer'
        more = os.read(self.process.stdout.fileno(), 1 << 20)
        assert more, f'the server ended: {self.process.stderr.read().decode()}'
        self.bytes += more

    # ---- Documents

    def open(self, name, text, version=1):
        self.notify('textDocument/didOpen', {'textDocument': {
            'uri': self.uri(name), 'languageId': 'macro', 'version': version, 'text': text}})
        return self.diagnostics(name)

    def change(self, name, *changes, version=2):
        """Each change is the whole text, or a tuple: line, character, line, character, text."""
        self.notify('textDocument/didChange', {
            'textDocument': {'uri': self.uri(name), 'version': version},
            'contentChanges': [self._change(change) for change in changes]})
        return self.diagnostics(name)

    @staticmethod
    def _change(change):
        if isinstance(change, str):
            return {'text': change}
        *places, text = change
        return {'range': {'start': position(*places[:2]), 'end': position(*places[2:])}, 'text': text}

    def publication(self, name):
        params = self.note('textDocument/publishDiagnostics')['params']
        assert params['uri'] == self.uri(name), params
        return params

    def diagnostics(self, name):
        return self.publication(name)['diagnostics']

    def ask(self, method, name, line=0, character=0):
        reply = self.request('textDocument/' + method, {
            'textDocument': {'uri': self.uri(name)}, 'position': position(line, character), 'options': {}})
        assert 'result' in reply, reply
        return reply['result']

    def end(self):
        """Ends the session as an editor does, and returns the exit status."""
        self.request('shutdown')
        self.send({'method': 'exit'})
        return self.status()

    def status(self):
        self.process.stdin.close()
        status = self.process.wait(SECONDS)
        assert self.bytes + self.process.stdout.read() == b'', 'more was printed'
        return status


def lint(folder, text, *options):
    """The mistakes that `vexa-standin lint` finds in the text, as JSON objects."""
    macro = pathlib.Path(folder, 'linted.macro')
    report = pathlib.Path(folder, 'linted.jsonl')
    macro.write_bytes(text.encode())
    done = subprocess.run([RUNNER, 'lint', macro, '--describe', pathlib.Path(folder, 'stats.commands.json'),
                           '--json', report, *options], capture_output=True, timeout=SECONDS)
    assert done.returncode in (0, 1), done.stderr
    return [json.loads(line) for line in report.read_text().splitlines()]
