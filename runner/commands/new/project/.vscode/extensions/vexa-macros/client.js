// Talks to a language server over the standard input and output of a process: JSON-RPC messages, each after a header
// with its length in bytes.
'use strict';

const {spawn} = require('child_process');

// Returns the messages in `data`, a buffer, and the bytes of an incomplete one.
function splitMessages(data) {
  const messages = [];
  for (;;) {
    const headerEnd = data.indexOf('\r\n\r\n');
    if (headerEnd < 0) return {messages, rest: data};
    const length = Number(/Content-Length: *(\d+)/i.exec(data.toString('ascii', 0, headerEnd))[1]);
    const end = headerEnd + 4 + length;
    if (data.length < end) return {messages, rest: data};
    messages.push(JSON.parse(data.toString('utf8', headerEnd + 4, end)));
    data = data.subarray(end);
  }
}

class Client {
  // `onNotification(method, params)` is called for each message that is no answer, `onEnd(reason)` when the server ends.
  constructor([program, ...args], folder, onNotification, onEnd) {
    this.waiting = new Map();
    this.lastId = 0;
    this.process = spawn(program, args, {cwd: folder, stdio: ['pipe', 'pipe', 'ignore']});
    let rest = Buffer.alloc(0);
    this.process.stdout.on('data', data => {
      const split = splitMessages(Buffer.concat([rest, data]));
      rest = split.rest;
      for (const message of split.messages) this.receive(message, onNotification);
    });
    const end = reason => {
      for (const {reject} of this.waiting.values()) reject(new Error(reason));
      this.waiting.clear();
      onEnd(reason);
    };
    this.process.on('error', error => end(error.message));
    this.process.on('exit', code => end(`the server ended with status ${code}`));
    this.process.stdin.on('error', () => {});
  }

  receive(message, onNotification) {
    const request = this.waiting.get(message.id);
    if (message.method !== undefined) return onNotification(message.method, message.params);
    if (request === undefined) return;
    this.waiting.delete(message.id);
    if (message.error) request.reject(new Error(message.error.message));
    else request.resolve(message.result);
  }

  send(message) {
    const body = Buffer.from(JSON.stringify({jsonrpc: '2.0', ...message}));
    this.process.stdin.write(Buffer.concat([Buffer.from(`Content-Length: ${body.length}\r\n\r\n`), body]));
  }

  notify(method, params) { this.send({method, params}); }

  request(method, params) {
    const id = ++this.lastId;
    return new Promise((resolve, reject) => {
      this.waiting.set(id, {resolve, reject});
      this.send({id, method, params});
    });
  }
}

module.exports = {Client, splitMessages};
