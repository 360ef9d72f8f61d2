// Shows what the language server says about macro files: mistakes, completion and help. It needs no other package.
'use strict';

const vscode = require('vscode');
const {Client} = require('./client');

const kLanguage = 'vexa-macro';

const rangeOf = ({start, end}) => new vscode.Range(start.line, start.character, end.line, end.character);
const placeOf = (document, position) => ({textDocument: {uri: document.uri.toString()}, position});
const textOf = contents => (typeof contents === 'string' ? contents : contents.value);

function showDiagnostics(collection, {uri, diagnostics}) {
  collection.set(vscode.Uri.parse(uri), diagnostics.map(({range, message, severity, code}) => {
    const shown = new vscode.Diagnostic(rangeOf(range), message, (severity || 1) - 1);
    shown.source = 'vexa-standin';
    shown.code = code;
    return shown;
  }));
}

function completionItem(item) {
  const shown = new vscode.CompletionItem(item.label, (item.kind || 1) - 1);
  shown.detail = item.detail;
  if (item.documentation) shown.documentation = new vscode.MarkdownString(textOf(item.documentation));
  shown.insertText = item.textEdit ? item.textEdit.newText : item.insertText;
  if (item.textEdit) shown.range = rangeOf(item.textEdit.range);
  shown.filterText = item.filterText;
  shown.sortText = item.sortText;
  return shown;
}

async function activate(context) {
  const folder = vscode.workspace.workspaceFolders && vscode.workspace.workspaceFolders[0].uri;
  const collection = vscode.languages.createDiagnosticCollection(kLanguage);
  const server = vscode.workspace.getConfiguration('vexa-macros').get('server');
  let isEnding = false;
  const client = new Client(server, folder && folder.fsPath, (method, params) => {
    if (method === 'textDocument/publishDiagnostics') showDiagnostics(collection, params);
  }, reason => {
    if (!isEnding) vscode.window.showWarningMessage(`${server.join(' ')}: ${reason}`);
  });
  await client.request('initialize', {processId: process.pid, rootUri: folder && folder.toString(), capabilities: {}});
  client.notify('initialized', {});
  const isMacro = document => document.languageId === kLanguage;
  const opened = document => isMacro(document) && client.notify('textDocument/didOpen', {textDocument: {
    uri: document.uri.toString(), languageId: kLanguage, version: document.version, text: document.getText()}});
  vscode.workspace.textDocuments.forEach(opened);
  context.subscriptions.push(
    collection,
    {dispose: () => { isEnding = true; client.process.kill(); }},
    vscode.workspace.onDidOpenTextDocument(opened),
    vscode.workspace.onDidChangeTextDocument(({document}) => isMacro(document) && client.notify(
      'textDocument/didChange', {textDocument: {uri: document.uri.toString(), version: document.version},
        contentChanges: [{text: document.getText()}]})),
    vscode.workspace.onDidCloseTextDocument(document => isMacro(document) && client.notify(
      'textDocument/didClose', {textDocument: {uri: document.uri.toString()}})),
    vscode.languages.registerCompletionItemProvider(kLanguage, {provideCompletionItems: async (document, position) =>
      [].concat((await client.request('textDocument/completion', placeOf(document, position))) || [])
        .flatMap(list => list.items || list).map(completionItem)}, ' ', '=', "'"),
    vscode.languages.registerHoverProvider(kLanguage, {provideHover: async (document, position) => {
      const hover = await client.request('textDocument/hover', placeOf(document, position));
      return hover && new vscode.Hover(new vscode.MarkdownString(textOf(hover.contents)));
    }}));
}

module.exports = {activate};
