"""Edits a macro at random in the language server, and compares its mistakes with those of `vexa-standin lint`."""

import pathlib
import random
import tempfile
import unittest

from client import Server, describe, lint

COMPARED_EACH = 250
MOST_LINES = 40
PIECES = ['STATS', 'MEAN', 'LOAD', 'TIMES', 'TITLE', 'ZONES', 'LOUD', 'MODE', 'FILE', 'HEADER', ' = ', '=', ' ', '  ',
          '\t', '\n', '\n', '\r\n', '\r', "'", '"', '[1-3]', '[', ']', "'fast'", '1', '99', 'TRUE', '#', '\\', '\0',
          'ö', '€', '\U0001F600', '\ufeff', '\u202e', 'STATS MEAN TIMES = 3\n', 'STATS LOAD FILE="a b"\n',
          "STATS MEAN TITLE = 'ö€\U0001F600' LOUD = T\n"]


class Macro:
    """The text as an editor has it, which counts columns in units of UTF-16 or in bytes."""

    def __init__(self, encoding):
        self.lines = ['']
        self.encoding = encoding

    def text(self):
        return '\n'.join(self.lines)

    def column(self, line, index):
        size = len(self.lines[line][:index].encode(self.encoding))
        return size // 2 if self.encoding == 'utf-16-le' else size

    def replace(self, begin, end, text):
        (first, from_index), (last, to_index) = begin, end
        changed = self.lines[first][:from_index] + text + self.lines[last][to_index:]
        self.lines[first:last + 1] = changed.split('\n')

    def columns_of(self, mistake):
        line = mistake['line'] - 1
        return [self.column(line, mistake[name] - 1) for name in ('column', 'endColumn')]


def random_place(macro, chance):
    line = chance.randint(0, len(macro.lines) - 1)
    return line, chance.randint(0, len(macro.lines[line]))


def random_end(macro, chance, begin):
    """Mostly a few characters after the begin, sometimes in one of the next lines."""
    line, index = begin
    if chance.random() < 0.9:
        return line, min(index + chance.choice((0, 0, 0, 1, 3)), len(macro.lines[line]))
    line = min(line + chance.randint(0, 2), len(macro.lines) - 1)
    return max(begin, (line, chance.randint(0, len(macro.lines[line]))))


def random_edit(macro, chance):
    """Changes the macro, and returns the change for the server."""
    text = ''.join(chance.choices(PIECES, k=chance.randint(0, 4)))
    if chance.random() < 0.002:
        macro.lines = (text * chance.randint(0, 20)).split('\n')
        return macro.text()
    begin = random_place(macro, chance)
    end = random_end(macro, chance, begin)
    if len(macro.lines) > MOST_LINES:
        begin, end, text = (0, 0), begin, ''
    columns = [macro.column(*begin), macro.column(*end)]
    places = [begin[0], columns[0], end[0], columns[1]]
    if end[1] == len(macro.lines[end[0]]) and chance.random() < 0.1:
        places[3] += chance.randint(1, 1000000)
    macro.replace(begin, end, text)
    return (*places, text)


class RandomEdits(unittest.TestCase):
    def compare(self, encoding, capabilities, seed, edits):
        chance = random.Random(seed)
        macro = Macro(encoding)
        with tempfile.TemporaryDirectory() as folder:
            folder = pathlib.Path(folder).resolve()
            describe(folder)
            compared = 0
            with Server(folder, capabilities=capabilities) as server:
                server.open('m.macro', '')
                for edit in range(1, edits + 1):
                    found = server.change('m.macro', random_edit(macro, chance), version=edit)
                    if edit % COMPARED_EACH:
                        continue
                    expected = lint(folder, macro.text())
                    compared += len(expected)
                    self.assertEqual(
                        [(each['range']['start']['line'], each['range']['start']['character'],
                          each['range']['end']['character'], each['code'], each['message'],
                          {1: 'error', 2: 'warning'}[each['severity']]) for each in found],
                        [(each['line'] - 1, *macro.columns_of(each), each['rule'], each['message'], each['severity'])
                         for each in expected], f'after {edit} edits with seed {seed}')
                self.assertEqual(server.end(), 0)
        self.assertGreater(compared, 200)

    def test_leave_the_mistakes_of_lint_with_columns_in_utf_16(self):
        self.compare('utf-16-le', {}, 18, 10000)

    def test_leave_the_mistakes_of_lint_with_columns_in_utf_8(self):
        self.compare('utf-8', {'general': {'positionEncodings': ['utf-8']}}, 81, 3000)


if __name__ == '__main__':
    unittest.main()
