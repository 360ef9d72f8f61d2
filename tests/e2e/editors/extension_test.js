// Usage: node extension_test.js EXTENSION SERVER
// Runs the extension with a stand-in for the module `vscode` and with a server that gives fixed answers.
'use strict';

const assert = require('assert');
const Module = require('module');
const path = require('path');

const [extension, server] = process.argv.slice(2);
const document = {languageId: 'vexa-macro', uri: {toString: () => 'file:///a.macro'}, version: 1,
                  getText: () => 'STATS MEEN'};
const providers = {};
const diagnostics = new Map();
const none = () => ({dispose() {}});
const vscode = {
  Range: class { constructor(...numbers) { this.numbers = numbers; } },
  Uri: {parse: text => text},
  Diagnostic: class { constructor(range, message, severity) { Object.assign(this, {range, message, severity}); } },
  MarkdownString: class { constructor(value) { this.value = value; } },
  CompletionItem: class { constructor(label, kind) { Object.assign(this, {label, kind}); } },
  Hover: class { constructor(contents) { this.contents = contents; } },
  window: {showWarningMessage: message => { throw new Error(message); }},
  workspace: {
    workspaceFolders: undefined, textDocuments: [document],
    getConfiguration: () => ({get: () => ['python3', server]}),
    onDidOpenTextDocument: none, onDidChangeTextDocument: none, onDidCloseTextDocument: none,
  },
  languages: {
    createDiagnosticCollection: () => ({set: (uri, all) => diagnostics.set(uri, all), dispose() {}}),
    registerCompletionItemProvider: (_, provider) => { providers.completion = provider; return none(); },
    registerHoverProvider: (_, provider) => { providers.hover = provider; return none(); },
  },
};
const load = Module._load;
Module._load = (name, ...more) => (name === 'vscode' ? vscode : load(name, ...more));

async function test() {
  const context = {subscriptions: []};
  await require(path.join(extension, 'extension.js')).activate(context);
  const place = {line: 0, character: 8};
  const items = await providers.completion.provideCompletionItems(document, place);
  assert.deepStrictEqual(items.map(item => [item.label, item.kind, item.insertText, item.range.numbers]),
                         [['TIMES', 9, 'TIMES = ', [0, 6, 0, 10]]]);
  const hover = await providers.hover.provideHover(document, place);
  assert.strictEqual(hover.contents.value, 'how often: größer');
  const [shown] = diagnostics.get('file:///a.macro');
  assert.deepStrictEqual([shown.message, shown.severity, shown.code, shown.range.numbers],
                         ['no command STATS MEEN', 0, 'unknown-command', [0, 6, 0, 10]]);
  context.subscriptions.forEach(subscription => subscription.dispose());
}

test().catch(error => {
  console.error(error);
  process.exit(1);
});
