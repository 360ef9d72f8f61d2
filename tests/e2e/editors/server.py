#!/usr/bin/env python3
"""A language server that gives fixed answers, in pieces, so that a client has to put its messages together."""

import json
import sys
import time


def send(message):
    body = json.dumps({'jsonrpc': '2.0', **message}, ensure_ascii=False).encode()
    data = b'Content-Length: %d\r\n\r\n' % len(body) + body
    for piece in (data[:7], data[7:-3], data[-3:]):
        sys.stdout.buffer.write(piece)
        sys.stdout.buffer.flush()
        time.sleep(0.01)


RANGE = {'start': {'line': 0, 'character': 6}, 'end': {'line': 0, 'character': 10}}
RESULTS = {
    'initialize': {'capabilities': {}},
    'textDocument/completion': {'items': [{'label': 'TIMES', 'kind': 10, 'textEdit': {'newText': 'TIMES = ', 'range': RANGE}}]},
    'textDocument/hover': {'contents': {'kind': 'markdown', 'value': 'how often: größer'}},
}
while header := sys.stdin.buffer.readline():
    sys.stdin.buffer.readline()
    message = json.loads(sys.stdin.buffer.read(int(header.split(b':')[1])))
    if message['method'] == 'textDocument/didOpen':
        document = message['params']['textDocument']
        send({'method': 'textDocument/publishDiagnostics',
              'params': {'uri': document['uri'], 'diagnostics': [
                  {'range': RANGE, 'message': 'no command ' + document['text'], 'severity': 1, 'code': 'unknown-command'}]}})
    if 'id' in message:
        send({'id': message['id'], 'result': RESULTS[message['method']]})
