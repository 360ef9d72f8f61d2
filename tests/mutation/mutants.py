"""Small changes to a C++ source, each of which a test should notice.

    for mutant in mutants_of("library/macro/MacroTokens.cpp", text): build_and_test(mutant.text)

There is no parser here. What a token is follows from how clang-format lays the sources out: an operator with two
operands stands between blanks, a template argument list does not. A guess that is wrong makes a mutant that does not
compile, and such a one is not counted.
"""

import dataclasses
import re

TOKEN = re.compile(r'''
    (?P<directive>^[ \t]*\#(?:[^\n\\]|\\.|\\\n)*)
  | (?P<comment>//[^\n]*|/\*.*?\*/)
  | (?P<raw>(?:u8|[LuU])?R"(?P<mark>[^(\s]*)\(.*?\)(?P=mark)")
  | (?P<string>"(?:[^"\\\n]|\\.)*")
  | (?P<char>'(?:[^'\\\n]|\\.)+')
  | (?P<number>\d(?:[\w.']|[eE][+-](?=\d))*)
  | (?P<word>[A-Za-z_]\w*)
  | (?P<operator><<=|>>=|\.\.\.|->|::|<<|>>|<=|>=|==|!=|&&|\|\||\+\+|--|[-+*/%&|^]=|[^\s\w])
''', re.VERBOSE | re.MULTILINE | re.DOTALL)

BINARY = {
    '<': ('<=', '>='), '<=': ('<', '>'), '>': ('>=', '<='), '>=': ('>', '<'), '==': ('!=',), '!=': ('==',),
    '&&': ('||',), '||': ('&&',),
    '+': ('-',), '-': ('+',), '*': ('/',), '/': ('*',), '%': ('*',),
    '&': ('|',), '|': ('&',), '^': ('|',), '<<': ('>>',), '>>': ('<<',),
    '+=': ('=', '-='), '-=': ('=', '+='), '*=': ('=', '/='), '/=': ('=', '*='), '|=': ('=', '&='), '&=': ('=', '|='),
}
STEPS = {'++': '--', '--': '++'}
UNARY = {'!', '~', '-'}
JUMPS = {'break': 'continue', 'continue': 'break'}
WORDS = {'true': 'false', 'false': 'true'}
NOT_A_BODY = re.compile(r'\b(?:namespace|class|struct|union|enum)\b(?![^{]*\)\s*$)')
BEFORE_A_BODY = {')', ']', 'else', 'do', 'try', 'const', 'noexcept', 'override', 'mutable', 'final'}
# With {} instead, these are no new mutants.
DEFAULTS = {'{}', 'false', 'true', '0', '0.0', 'nullptr', 'std::nullopt', '""'}
NO_ACTIONS = {'return', 'throw', 'break', 'continue', 'using', 'typedef', 'static_assert', 'public', 'private', 'else'}
BEFORE_PARENTHESES = {'if', 'while', 'switch', 'for'}


@dataclasses.dataclass(frozen=True)
class Token:
    kind: str
    text: str
    begin: int
    end: int


@dataclasses.dataclass(frozen=True)
class Mutant:
    file: str
    line: int
    above: str  # the line before those that differ; all of these with single blanks
    before: str
    after: str
    text: str  # the whole source with the change


def tokens_of(text):
    tokens = []
    for match in TOKEN.finditer(text):
        kind = 'raw' if match['raw'] is not None else match.lastgroup
        if kind not in ('comment', 'directive'):
            tokens.append(Token(kind, match[0], match.start(), match.end()))
    return tokens


def mutants_of(file, text):
    """The mutants in the order of their places, none twice."""
    source = Source(text)
    edits = set(source.operators()) | set(source.constants()) | set(source.conditions()) | set(source.statements())
    return [_mutant(file, text, *edit) for edit in sorted(edits) if text[edit[0]:edit[1]] != edit[2]]


def _mutant(file, text, begin, end, replacement):
    changed = text[:begin] + replacement + text[end:]
    first = text.rfind('\n', 0, begin) + 1
    rest = len(text) - text.find('\n', end)
    before, after = (' '.join(t[first:len(t) - rest].split()) for t in (text, changed))
    above = ' '.join(text[text.rfind('\n', 0, max(first - 1, 0)) + 1:first].split())
    return Mutant(file, text.count('\n', 0, begin) + 1, above, before, after, changed)


class Source:
    """Finds the edits: triples of begin, end and replacement."""

    def __init__(self, text):
        self.text = text
        self.tokens = tokens_of(text)
        self.in_template = self._template_arguments()
        self.partner = self._brackets()
        self.bodies = self._bodies()

    # What stands where

    def _blank_at(self, at):
        return self.text[at] in ' \n'

    def _is_binary(self, token):
        return self._blank_at(token.begin - 1) and self._blank_at(token.end)

    def _template_arguments(self):
        """The indices of the tokens within < and >."""
        inside, open_at = set(), []
        for i, token in enumerate(self.tokens):
            previous = self.tokens[i - 1] if i > 0 else token
            opens = previous.text == 'template' or (
                previous.kind == 'word' and previous.text != 'operator' and previous.end == token.begin)
            if token.text == '<' and opens:
                open_at.append(i)
            elif token.text in ('>', '>>') and open_at and not self._blank_at(token.begin - 1):
                for _ in token.text:
                    if open_at:
                        inside.update(range(open_at.pop(), i + 1))
        return inside

    def _brackets(self):
        """From the index of each opening bracket to that of the closing one, and back."""
        partner, stack = {}, []
        for i, token in enumerate(self.tokens):
            if token.kind == 'operator' and token.text in '([{':
                stack.append(i)
            elif token.kind == 'operator' and token.text in ')]}' and stack:
                partner[i] = stack.pop()
                partner[partner[i]] = i
        return partner

    def _bodies(self):
        """The indices of the braces that hold statements."""
        bodies = set()
        begin = 0
        for i, token in enumerate(self.tokens):
            if token.text in (';', '}') or token.kind == 'directive':
                begin = i + 1
            elif token.text == '{':
                head = self.text[self.tokens[begin].begin:token.begin]
                before = self.tokens[i - 1].text if i > 0 else ''
                starts_statement = i == begin and i > 0
                if not NOT_A_BODY.match(head) and (before in BEFORE_A_BODY or starts_statement):
                    bodies.add(i)
                begin = i + 1
        return bodies

    # Operators

    def operators(self):
        for i, token in enumerate(self.tokens):
            if token.kind != 'operator' or i in self.in_template or self.tokens[i - 1].text == 'operator':
                continue
            if token.text in BINARY and self._is_binary(token):
                if not (token.text == '+' and self._joins_text(i)):
                    for other in BINARY[token.text]:
                        yield token.begin, token.end, other
            elif token.text in STEPS:
                yield token.begin, token.end, STEPS[token.text]
            elif token.text in UNARY and not self._blank_at(token.end) and self.tokens[i - 1].text != '::':
                yield token.begin, token.end, ''

    def _joins_text(self, i):
        return any(self.tokens[at].kind in ('string', 'char') for at in (i - 1, i + 1))

    # Constants

    def constants(self):
        for i, token in enumerate(self.tokens):
            if i in self.in_template:
                continue
            if token.kind == 'number':
                yield from ((token.begin, token.end, other) for other in _other_numbers(token.text))
            elif token.kind == 'char':
                yield token.begin, token.end, "'?'" if token.text == "'~'" else "'~'"
            elif token.kind == 'string':
                yield token.begin, token.end, '""'
                yield token.end - 1, token.end - 1, '~'
            elif token.text in WORDS:
                yield token.begin, token.end, WORDS[token.text]

    # Conditions

    def conditions(self):
        for i, token in enumerate(self.tokens):
            following = self.tokens[i + 1].text if i + 1 < len(self.tokens) else ''
            if token.text in ('if', 'while') and following == '(':
                condition = (self.tokens[i + 1].end, self.tokens[self.partner[i + 1]].begin)
                yield *condition, 'false'
                if token.text == 'if':
                    yield *condition, 'true'
            elif token.text == 'for' and following == '(':
                yield from self._loop_condition(i + 1)
            elif token.text == '?' and self._is_binary(token):
                yield token.begin, token.begin, '|| true '
                yield token.begin, token.begin, '&& false '

    def _loop_condition(self, opening):
        ends = [i for i in range(opening + 1, self.partner[opening])
                if self.tokens[i].text == ';' and self._opening_before(i) == opening]
        if len(ends) == 2:
            yield self.tokens[ends[0]].end, self.tokens[ends[1]].begin, ' false'

    def _opening_before(self, index):
        """The bracket that a token stands in."""
        i = index - 1
        while i >= 0 and not (i in self.partner and self.partner[i] > i):
            i = self.partner[i] - 1 if i in self.partner else i - 1
        return i

    # Statements

    def statements(self):
        for body in sorted(self.bodies):
            previous = None
            for begin, end in self._statements_in(body):
                yield from self._changed_statement(begin, end)
                follows = previous is not None and begin == previous[1] + 1
                if follows and self._is_action(*previous) and self._is_action(begin, end):
                    yield self._swapped(previous, (begin, end))
                previous = (begin, end)

    def _statements_in(self, body):
        """The simple statements of a block, and those that hang on its conditions: pairs of token indices."""
        i, begin = body + 1, body + 1
        while i < self.partner[body]:
            text = self.tokens[i].text
            if text in BEFORE_PARENTHESES and self.tokens[i + 1].text == '(':
                i = begin = self.partner[i + 1] + 1
            elif text in ('else', 'do', 'try'):
                i = begin = i + 1
            elif text == ':' and self.tokens[begin].text in ('case', 'default'):
                i = begin = i + 1
            elif text == ';':
                yield begin, i
                i = begin = i + 1
            elif text == '{' and i in self.bodies and self.tokens[i - 1].text != ']' and not self._in_expression(begin, i):
                i = begin = self.partner[i] + 1
            elif text in '([{' and i in self.partner:
                i = self.partner[i] + 1
            else:
                i += 1

    def _in_expression(self, begin, brace):
        """Whether the brace is that of a lambda: what is before it began neither a block nor a catch."""
        return begin < brace and self.tokens[begin].text != 'catch'

    def _span(self, statement):
        return self.tokens[statement[0]].begin, self.tokens[statement[1]].end

    def _is_action(self, first, last):
        """Whether a statement does something: neither a declaration, which others need, nor a jump."""
        if self.tokens[first].text in NO_ACTIONS:
            return False
        words = [i for i in range(first, last) if i not in self.in_template and self.tokens[i].text not in ('*', '&')]
        for one, other in zip(words, words[1:]):
            if self.tokens[one].kind == 'word' and self.tokens[other].kind == 'word':
                return False
            if self.tokens[one].text in ('(', '=', '['):
                return True
        return True

    def _changed_statement(self, first, last):
        if first == last:
            return
        begin, end = self._span((first, last))
        word = self.tokens[first].text
        if word == 'return':
            value = self.text[self.tokens[first].end:self.tokens[last].begin].strip()
            if value not in DEFAULTS:
                yield begin, end, 'return {};' if value else ';'
        elif word in JUMPS:
            yield begin, end, JUMPS[word] + ';'
            yield begin, end, ';'
        elif word == 'throw' or self._is_action(first, last):
            yield begin, end, ';'

    def _swapped(self, one, other):
        (begin, middle), (again, end) = self._span(one), self._span(other)
        return begin, end, self.text[again:end] + self.text[middle:again] + self.text[begin:middle]


def _other_numbers(number):
    digits = number.replace("'", '')
    if re.fullmatch(r'\d+', digits):
        return {str(int(digits) + 1), '0' if int(digits) != 0 else '1'}
    if re.fullmatch(r'\d+\.\d*', digits):
        return {str(float(digits) + 1)}
    return set()
