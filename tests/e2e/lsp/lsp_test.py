"""Tests of the language server `vexa-standin lsp`, by a scripted client."""

import json
import pathlib
import subprocess
import tempfile
import unittest

from client import DESCRIPTION, RUNNER, Server, describe, framed, lint

MACRO = 'm.macro'
UTF8 = {'general': {'positionEncodings': ['utf-16', 'utf-8']}}
PARSE_ERROR, INVALID_REQUEST, METHOD_NOT_FOUND, INVALID_PARAMS, NOT_INITIALIZED = -32700, -32600, -32601, -32602, -32002


def short(diagnostics):
    """LINE:FROM-TO CODE for each diagnostic."""
    texts = []
    for found in diagnostics:
        start, end = found['range']['start'], found['range']['end']
        texts.append(f'{start["line"]}:{start["character"]}-{end["character"]} {found["code"]}')
    return texts


class LspTest(unittest.TestCase):
    """A test with a folder that has the description of STATS."""

    maxDiff = None

    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix='lsp ')  # the blank is in each URI
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name).resolve()
        describe(self.folder)

    def serve(self, *options, **keywords):
        server = Server(self.folder, *options, **keywords)
        self.addCleanup(server.__exit__)
        return server

    def assert_error(self, reply, code, text=''):
        self.assertEqual(reply.get('error', {}).get('code'), code, reply)
        self.assertIn(text, reply['error']['message'])


class Protocol(LspTest):
    def test_says_what_it_can_do(self):
        result = self.serve().initialized
        self.assertEqual(result['serverInfo']['name'], 'vexa-standin')
        self.assertEqual(result['capabilities'], {
            'positionEncoding': 'utf-16', 'textDocumentSync': {'openClose': True, 'change': 2, 'save': True},
            'workspace': {'workspaceFolders': {'supported': True, 'changeNotifications': True}},
            'completionProvider': {'triggerCharacters': [' ', '=']}, 'hoverProvider': True,
            'documentSymbolProvider': True, 'documentFormattingProvider': True})

    def test_is_explained_by_its_help(self):
        help = subprocess.run([RUNNER, 'lsp', '--help'], capture_output=True, text=True, check=True).stdout
        for part in ('Usage: vexa-standin lsp [OPTIONS]', '--addon FILE', '--describe FILE', 'language server protocol',
                     '  1  the input ended without a request to shut down'):
            self.assertIn(part, help)

    def test_ends_with_0_after_shutdown_and_exit(self):
        self.assertEqual(self.serve().end(), 0)

    def test_takes_the_option_that_some_editors_pass(self):
        self.assertEqual(self.serve('--stdio').end(), 0)

    def test_ends_with_1_on_exit_without_shutdown(self):
        server = self.serve()
        server.send({'method': 'exit'})
        self.assertEqual(server.status(), 1)

    def test_ends_with_1_when_the_input_ends(self):
        self.assertEqual(self.serve().status(), 1)

    def test_exits_before_it_is_initialized(self):
        server = self.serve(initialize=False)
        server.send({'method': 'exit'})
        self.assertEqual(server.status(), 1)

    def test_refuses_requests_before_initialize(self):
        server = self.serve(initialize=False)
        self.assert_error(server.request('textDocument/hover', {}), NOT_INITIALIZED)
        self.assert_error(server.request('shutdown'), NOT_INITIALIZED)

    def test_ignores_notifications_before_initialize(self):
        server = self.serve(initialize=False)
        server.notify('textDocument/didOpen', {'textDocument': {'uri': 'x', 'text': 'X'}})
        self.assertIn('result', server.request('initialize', {'capabilities': {}}))
        self.assertEqual(server.notes, [])

    def test_refuses_a_second_initialize(self):
        self.assert_error(self.serve().request('initialize', {'capabilities': {}}), INVALID_REQUEST)

    def test_refuses_requests_after_shutdown(self):
        server = self.serve()
        self.assertIsNone(server.request('shutdown')['result'])
        self.assert_error(server.request('textDocument/hover', {}), INVALID_REQUEST)

    def test_refuses_unknown_methods(self):
        self.assert_error(self.serve().request('textDocument/rename', {}), METHOD_NOT_FOUND, 'textDocument/rename')

    def test_ignores_unknown_notifications_and_replies(self):
        server = self.serve()
        server.notify('$/setTrace', {'value': 'off'})
        server.send({'id': 'watch', 'result': None})
        self.assertEqual(server.end(), 0)
        self.assertEqual(server.notes, [])

    def test_refuses_wrong_parameters(self):
        server = self.serve()
        server.open(MACRO, '')
        self.assert_error(server.request('textDocument/hover', {}), INVALID_PARAMS)
        self.assert_error(server.request('textDocument/hover', []), INVALID_PARAMS)

    def test_reports_messages_that_are_no_json(self):
        server = self.serve()
        for body in (b'{', b'', b'{"a": "\xff"}', b'"\\ud800"', b'[' * 1000000):
            server.send_bytes(framed(body))
            self.assert_error(server.reply(None), PARSE_ERROR)
        self.assertEqual(server.end(), 0)

    def test_reports_messages_that_are_no_calls(self):
        server = self.serve()
        for message in ([], 1, {}, {'jsonrpc': '2.0'}, {'jsonrpc': '1.0', 'method': 'x'},
                        {'jsonrpc': '2.0', 'method': 1}, {'jsonrpc': '2.0', 'method': 'x', 'params': 1},
                        {'jsonrpc': '2.0', 'method': 'x', 'id': {}}, {'jsonrpc': '2.0', 'method': 'x', 'id': 1.5}):
            server.send_bytes(framed(json.dumps(message).encode()))
            self.assert_error(server.reply(None), INVALID_REQUEST)
        self.assertEqual(server.end(), 0)

    def test_reports_a_wrong_header_and_goes_on(self):
        server = self.serve()
        for header in (b'Content-Length: x\r\n\r\n', b'Content-Length: 99999999999999\r\n\r\n{}', b'\r\n', b'{}\r\n'):
            server.send_bytes(header)
            self.assert_error(server.reply(None), PARSE_ERROR)
            self.assertEqual(server.ask('hover', 'closed.macro'), None)
        self.assertEqual(server.end(), 0)

    def test_takes_ids_that_are_texts(self):
        server = self.serve()
        server.send({'id': 'a', 'method': 'shutdown'})
        self.assertEqual(server.reply('a'), {'jsonrpc': '2.0', 'id': 'a', 'result': None})

    def test_refuses_the_standard_input_as_description(self):
        for path in ('-', '/dev/stdin'):
            self.assertEqual(self.serve('--describe', path, initialize=False).status(), 2)


class Diagnostics(LspTest):
    def test_are_published_when_a_macro_is_opened(self):
        server = self.serve()
        self.assertEqual(server.open(MACRO, 'STATS MEAN\nSTATS MEAN TIMS = 2\n'), [{
            'range': {'start': {'line': 1, 'character': 11}, 'end': {'line': 1, 'character': 15}},
            'severity': 1, 'code': 'unknown-option', 'source': 'vexa-standin',
            'message': 'MEAN has no option TIMS; did you mean TIMES?'}])

    def test_have_the_severity_of_a_warning(self):
        self.assertEqual(self.serve().open(MACRO, 'STATS load FILE="a"')[0]['severity'], 2)

    def test_name_the_version_of_the_document(self):
        server = self.serve()
        server.open(MACRO, 'X', version=7)
        server.notify('textDocument/didChange', {'textDocument': {'uri': server.uri(MACRO), 'version': 8},
                                                 'contentChanges': [{'text': 'Y'}]})
        self.assertEqual(server.publication(MACRO)['version'], 8)

    def test_follow_a_change_within_a_line(self):
        server = self.serve()
        server.open(MACRO, 'STATS MEAN TIMES = 1\n')
        self.assertEqual(short(server.change(MACRO, (0, 20, 0, 20, '0'))), ['0:19-21 value-out-of-range'])
        self.assertEqual(server.change(MACRO, (0, 20, 0, 21, '')), [])

    def test_move_with_lines_above(self):
        server = self.serve()
        server.open(MACRO, 'STATS MEAN\nSTATS X\n')
        self.assertEqual(short(server.change(MACRO, (0, 0, 0, 0, '\n\n'))), ['3:6-7 unknown-command'])
        self.assertEqual(short(server.change(MACRO, (0, 0, 3, 0, ''))), ['0:6-7 unknown-command'])

    def test_follow_several_changes_of_one_message_in_their_order(self):
        server = self.serve()
        server.open(MACRO, 'STATS MEAN\n')
        self.assertEqual(short(server.change(MACRO, (0, 6, 0, 10, 'X'), (0, 0, 0, 0, '\n'), (1, 7, 1, 7, 'Y'))),
                         ['1:6-8 unknown-command'])

    def test_follow_a_new_text(self):
        server = self.serve()
        server.open(MACRO, 'STATS X')
        self.assertEqual(short(server.change(MACRO, '# c\nSTATS Y')), ['1:6-7 unknown-command'])

    def test_are_cleared_when_the_macro_is_closed(self):
        server = self.serve()
        server.open(MACRO, 'STATS X')
        server.notify('textDocument/didClose', {'textDocument': {'uri': server.uri(MACRO)}})
        self.assertEqual(server.diagnostics(MACRO), [])

    def test_count_units_of_utf_16(self):
        server = self.serve()
        text = "STATS MEAN TITLE = 'ö€\U0001F600' X = 1"
        self.assertEqual(short(server.open(MACRO, text)), ['0:26-27 unknown-option'])
        self.assertEqual(server.change(MACRO, (0, 26, 0, 27, 'TIMES')), [])

    def test_count_bytes_if_the_editor_can(self):
        server = self.serve(capabilities=UTF8)
        self.assertEqual(server.initialized['capabilities']['positionEncoding'], 'utf-8')
        text = "STATS MEAN TITLE = 'ö€\U0001F600' X = 1"
        self.assertEqual(short(server.open(MACRO, text)), ['0:31-32 unknown-option'])
        self.assertEqual(server.change(MACRO, (0, 31, 0, 32, 'TIMES')), [])

    def test_skip_a_byte_order_mark_and_carriage_returns(self):
        self.assertEqual(short(self.serve().open(MACRO, '\ufeffSTATS X\r\nSTATS MEAN\r\n')), ['0:7-8 unknown-command'])

    def test_take_positions_past_the_end_as_the_end(self):
        server = self.serve()
        server.open(MACRO, 'STATS MEAN\n\n')
        self.assertEqual(short(server.change(MACRO, (0, 99, 0, 99, 'S'))), ['0:6-11 unknown-command'])
        self.assertEqual(short(server.change(MACRO, (99, 0, 10 ** 15, 9, 'X'), (0, 0, 1, 0, ''))), ['1:0-1 unknown-add-on'])

    def test_stay_when_a_change_is_wrong(self):
        server = self.serve()
        server.open(MACRO, 'STATS X')
        for change in ((0, -1, 0, 0, 'a'), (0, 3, 0, 2, 'a'), ('a', 0, 0, 0, 'a'), (0, 1.5, 0, 2, 'a'), (0, 0, 0, 0, 1)):
            server.notify('textDocument/didChange', {'textDocument': {'uri': server.uri(MACRO)},
                                                     'contentChanges': [server._change(change)]})
            self.assertIn('textDocument/didChange: ', server.note('window/showMessage')['params']['message'])
        self.assertEqual(short(server.change(MACRO, (0, 7, 0, 7, 'Y'))), ['0:6-8 unknown-command'])


class FindsDescriptions(LspTest):
    UNKNOWN = ['0:0-5 unknown-add-on']

    def test_beside_the_macro(self):
        (self.folder / 'sub').mkdir()
        describe(self.folder / 'sub', 'other', addon='OTHER')
        server = self.serve()
        self.assertEqual(server.open('sub/m.macro', 'OTHER MEAN\nSTATS MEAN'), [])
        self.assertEqual(short(server.open(MACRO, 'OTHER MEAN')), self.UNKNOWN)

    def test_in_the_folders_of_the_workspace(self):
        with tempfile.TemporaryDirectory() as elsewhere:
            describe(elsewhere, 'other', addon='OTHER')
            server = self.serve(initialize=False)
            folders = [{'uri': pathlib.Path(elsewhere).resolve().as_uri(), 'name': 'a'}]
            server.request('initialize', {'capabilities': {}, 'rootUri': None, 'workspaceFolders': folders})
            self.assertEqual(server.open(MACRO, 'OTHER MEAN\nSTATS MEAN'), [])

    def test_in_folders_that_the_editor_opens_and_closes(self):
        with tempfile.TemporaryDirectory() as elsewhere:
            describe(elsewhere, 'other', addon='OTHER')
            folder = {'uri': pathlib.Path(elsewhere).resolve().as_uri(), 'name': 'a'}
            server = self.serve()
            self.assertEqual(short(server.open(MACRO, 'OTHER MEAN')), self.UNKNOWN)
            for added, removed, found in (([folder], [], []), ([], [folder], self.UNKNOWN)):
                server.notify('workspace/didChangeWorkspaceFolders', {'event': {'added': added, 'removed': removed}})
                self.assertEqual(short(server.diagnostics(MACRO)), found)

    def test_of_the_command_line_first(self):
        (self.folder / 'build').mkdir()
        commands = [{**DESCRIPTION['commands'][0], 'name': 'NEW'}]
        file = describe(self.folder / 'build', commands=commands)
        for option in (('--describe', str(file)), ('--addon', 'build/stats.so')):
            self.assertEqual(self.serve(*option).open(MACRO, 'STATS NEW'), [])
        self.assertEqual(short(self.serve().open(MACRO, 'STATS NEW')), ['0:6-9 unknown-command'])

    def test_without_any_it_says_so_once(self):
        (self.folder / 'stats.commands.json').unlink()
        server = self.serve()
        self.assertEqual(server.open(MACRO, 'STATS MEAN'), [])
        self.assertIn('No description was found', server.note('window/showMessage')['params']['message'])
        server.open('n.macro', 'STATS MEAN')
        self.assertEqual(server.end(), 0)
        self.assertEqual(server.notes, [])

    def test_for_a_macro_that_is_no_file(self):
        server = self.serve()
        server.notify('textDocument/didOpen', {'textDocument': {'uri': 'untitled:1', 'text': 'STATS X'}})
        found = server.note('textDocument/publishDiagnostics')['params']
        self.assertEqual((found['uri'], short(found['diagnostics'])), ('untitled:1', ['0:6-7 unknown-command']))

    def test_again_when_the_editor_saw_a_change(self):
        server = self.serve(capabilities={'workspace': {'didChangeWatchedFiles': {'dynamicRegistration': True}}})
        watch = server.note('client/registerCapability')['params']['registrations'][0]
        self.assertEqual(watch['method'], 'workspace/didChangeWatchedFiles')
        self.assertEqual(watch['registerOptions'], {'watchers': [{'globPattern': '**/*.commands.json'}]})
        server.open(MACRO, 'OTHER MEAN')
        describe(self.folder, 'other', addon='OTHER')
        server.notify('workspace/didChangeWatchedFiles', {'changes': []})
        self.assertEqual(server.diagnostics(MACRO), [])
        (self.folder / 'other.commands.json').unlink()
        server.notify('workspace/didChangeWatchedFiles', {'changes': []})
        self.assertEqual(short(server.diagnostics(MACRO)), self.UNKNOWN)

    def test_again_when_a_macro_is_saved(self):
        server = self.serve()
        server.open(MACRO, 'OTHER MEAN')
        describe(self.folder, 'other', addon='OTHER')
        server.notify('textDocument/didSave', {'textDocument': {'uri': server.uri(MACRO)}})
        self.assertEqual(server.diagnostics(MACRO), [])

    def test_and_keeps_the_last_one_that_was_right(self):
        server = self.serve()
        server.open(MACRO, 'STATS MEAN\nSTATS X')
        (self.folder / 'stats.commands.json').write_text('{"addon": 1}')
        server.notify('workspace/didChangeWatchedFiles', {'changes': []})
        self.assertIn('stats.commands.json: /addon: ', server.note('window/showMessage')['params']['message'])
        self.assertEqual(short(server.diagnostics(MACRO)), ['1:6-7 unknown-command'])

    def test_and_says_which_one_cannot_be_read(self):
        server = self.serve('--describe', 'missing.json')
        server.open(MACRO, '')
        self.assertIn('missing.json: cannot be read', server.note('window/showMessage')['params']['message'])


class Features(LspTest):
    def completion(self, line, character=None, capabilities=None):
        server = self.serve(capabilities=capabilities)
        server.open(MACRO, '\n' + line)
        return server.ask('completion', MACRO, 1, len(line.encode('utf-16-le')) // 2 if character is None else character)

    def labels(self, line):
        return [item['label'] for item in self.completion(line)]

    def test_completes_ids_commands_options_and_values(self):
        for line, labels in (('', ['STATS']), ('st', ['STATS']), ('STATS ', ['MEAN', 'LOAD']), ('STATS l', ['LOAD']),
                             ('STATS LOAD ', ['FILE=', 'HEADER=']), ('STATS LOAD FILE="a" ', ['HEADER=']),
                             ('STATS MEAN LOUD = ', ['TRUE', 'FALSE']), ('STATS MEAN MODE = ', ["'fast'", "'slow'"]),
                             ('STATS MEAN ZONES = ', ['[1-8]']), ('STATS MEAN TIMES = ', ['1', '9']),
                             ('STATS MEAN TIMES = 1 ', ['TITLE =', 'ZONES =', 'LOUD =', 'MODE =']),
                             ('# S', []), ('OTHER ', [])):
            self.assertEqual(self.labels(line), labels, line)

    def test_replaces_what_was_typed_of_the_word(self):
        item = self.completion("STATS MEAN TITLE = '\U0001F600' ti")[0]
        self.assertEqual(item, {
            'label': 'TIMES =', 'filterText': 'TIMES = ', 'kind': 10, 'sortText': '000000',
            'textEdit': {'range': {'start': {'line': 1, 'character': 24}, 'end': {'line': 1, 'character': 26}},
                         'newText': 'TIMES = '},
            'documentation': {'kind': 'plaintext', 'value': 'TIMES\n\nhow often\n\nType: Int64, 1 to 9\n\n'
                                                            'Without the option: 1\n'}})

    def test_completes_before_the_end_of_the_line(self):
        items = self.completion('STATS M TIMES = 1', 7)
        self.assertEqual([item['textEdit']['newText'] for item in items], ['MEAN'])

    def test_completes_past_the_end_as_at_the_end(self):
        self.assertEqual(len(self.completion('ST', 99)), 1)

    def test_shows_help_as_text_or_markdown(self):
        for formats, kind, start in ((['plaintext'], 'plaintext', 'STATS LOAD '),
                                     (['markdown', 'plaintext'], 'markdown', '```\nSTATS LOAD ')):
            server = self.serve(capabilities={'textDocument': {'hover': {'contentFormat': formats}}})
            server.open(MACRO, '\ufeffSTATS LOAD FILE="a"')
            hover = server.ask('hover', MACRO, 0, 8)
            self.assertEqual(hover['contents']['kind'], kind)
            self.assertTrue(hover['contents']['value'].startswith(start), hover)
            self.assertIn('Loads a file.', hover['contents']['value'])
            self.assertEqual(hover['range'], {'start': {'line': 0, 'character': 7}, 'end': {'line': 0, 'character': 11}})
            self.assertIsNone(server.ask('hover', MACRO, 0, 0))

    def test_marks_code_only_in_markdown(self):
        for formats, value in ((['plaintext'], '1'), (['markdown'], '`1`')):
            server = self.serve(capabilities={'textDocument': {'hover': {'contentFormat': formats}}})
            server.open(MACRO, 'STATS MEAN TIMES = 2')
            help = server.ask('hover', MACRO, 0, 12)['contents']['value']
            self.assertIn(f'Without the option: {value}\n', help)

    def test_lists_the_commands_of_a_macro(self):
        server = self.serve(capabilities={'textDocument': {'documentSymbol': {'hierarchicalDocumentSymbolSupport': True}}})
        server.open(MACRO, '# c\n STATS MEAN TIMES = 1\r\n\nOTHER')
        start, end = ({'line': 1, 'character': column} for column in (0, 21))
        self.assertEqual(server.ask('documentSymbol', MACRO)[0], {
            'name': 'STATS MEAN', 'kind': 12, 'range': {'start': start, 'end': end},
            'selectionRange': {'start': {'line': 1, 'character': 1}, 'end': {'line': 1, 'character': 11}}})
        self.assertEqual([symbol['name'] for symbol in server.ask('documentSymbol', MACRO)], ['STATS MEAN', 'OTHER'])

    def test_lists_the_commands_for_older_editors(self):
        server = self.serve()
        server.open(MACRO, 'OTHER X')
        self.assertEqual(server.ask('documentSymbol', MACRO), [{
            'name': 'OTHER X', 'kind': 12, 'location': {'uri': server.uri(MACRO), 'range': {
                'start': {'line': 0, 'character': 0}, 'end': {'line': 0, 'character': 7}}}}])

    def test_formats_lines_without_mistakes(self):
        server = self.serve()
        server.open(MACRO, "# c  \r\nSTATS  MEAN   TITLE =  'a  b' \nSTATS  X  \nSTATS MEAN")
        edits = server.ask('formatting', MACRO)
        self.assertEqual([(edit['range']['start']['line'], edit['newText']) for edit in edits],
                         [(0, '# c'), (1, "STATS MEAN TITLE = 'a  b'")])
        self.assertEqual(edits[0]['range']['end']['character'], 5, 'the carriage return stays')
        server.change(MACRO, *((edit['range']['start']['line'], 0, edit['range']['end']['line'],
                                edit['range']['end']['character'], edit['newText']) for edit in edits))
        self.assertEqual(server.ask('formatting', MACRO), [])

    def test_answers_nothing_about_a_macro_that_is_not_open(self):
        server = self.serve()
        for method in ('completion', 'hover', 'documentSymbol', 'formatting'):
            self.assertIsNone(server.ask(method, 'closed.macro'))


class Limits(LspTest):
    MEGABYTE = 1 << 20

    def test_a_macro_of_more_than_4_megabytes_is_not_checked(self):
        server = self.serve()
        self.assertEqual(len(server.open(MACRO, 'X\n' + '#' * (4 * self.MEGABYTE - 1))), 1)
        self.assertEqual(server.change(MACRO, (1, 0, 1, 0, '#')), [])
        self.assertIn('too large to be checked', server.note('window/showMessage')['params']['message'])
        self.assertIsNone(server.ask('hover', MACRO))
        self.assertEqual(len(server.open(MACRO, 'X')), 1, 'a smaller one is checked again')

    def test_memory_is_bounded_when_an_editor_opens_macros_for_ever(self):
        server = self.serve()
        text = 'X\n' * 90000
        refused = 0
        for i in range(40):
            refused += server.open(f'{i}.macro', text) == []
        self.assertGreater(refused, 5)
        self.assertEqual(len(server.change('0.macro', 'X')), 1, 'those that were taken work')
        self.assertEqual(server.end(), 0)

    def test_a_macro_of_more_than_100000_lines_is_not_checked(self):
        server = self.serve()
        self.assertEqual(len(server.open(MACRO, 'X' + '\n' * 99999)), 1)
        self.assertEqual(server.change(MACRO, (1, 0, 1, 0, '\n')), [])
        self.assertIn('too large to be checked', server.note('window/showMessage')['params']['message'])

    def test_the_first_1000_mistakes_are_shown(self):
        found = self.serve().open(MACRO, 'X\n' * 1500)
        self.assertEqual(short(found[-1:]), ['999:0-1 unknown-add-on'])

    def test_a_line_with_very_many_mistakes_is_answered(self):
        server = self.serve()
        self.assertEqual(len(server.open(MACRO, 'STATS MEAN' + ' a = 1' * 1000)), 1000)

    def test_it_finds_what_lint_finds_in_odd_bytes(self):
        text = 'STATS MEAN\x00\nSTATS MEAN\rTIMES = 1\nSTATS MEAN TITLE = \'\u202e\x7f\n'
        found = self.serve().open(MACRO, text)
        self.assertEqual([each['message'] for each in found], [each['message'] for each in lint(self.folder, text)])
        self.assertEqual(len(found), 3)


if __name__ == '__main__':
    unittest.main()
