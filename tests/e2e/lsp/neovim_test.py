"""Tests of the language server in neovim, with the setup that docs/editors.md shows.

Usage: neovim_test.py SETUP [TEST...]

SETUP is the setup, a file in Lua. The file with the same stem and the ending `.expected` has what the screen shows.
The exit status is 77 if neovim is missing or older than 0.7.
"""

import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import time
import unittest

from client import RUNNER, SECONDS, describe

SETUP = pathlib.Path(sys.argv[1]).resolve()
EXPECTED = SETUP.with_suffix('.expected')
MACRO = 'STATS LOAD FILE="wake.txt" HEADER=TRUE\nSTATS  MEAN TIMS = 2\n'
SCREEN = r'''join(map(range(1, 3), {_, r -> join(map(range(1, 76), {_, c -> screenstring(r, c)}), '')}), "\n")'''


def why_not():
    """Why neovim cannot be tested; empty if it can."""
    if not shutil.which('nvim'):
        return 'neovim is not installed: apt-get install neovim'
    version = subprocess.run(['nvim', '--version'], capture_output=True, text=True, check=True).stdout.split('\n')[0]
    numbers = tuple(map(int, re.findall(r'\d+', version)[:2]))
    return '' if numbers >= (0, 7) else f'{version} is older than 0.7'


class Neovim(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        folder = pathlib.Path(folder.name)
        describe(folder)
        (folder / 'sweep.macro').write_text(MACRO)
        self.socket = str(folder / 'socket')
        path = f'{pathlib.Path(RUNNER).resolve().parent}:{os.environ["PATH"]}'
        self.editor = subprocess.Popen(
            ['nvim', '--clean', '--headless', '--listen', self.socket, '-c', f'luafile {SETUP}',
             '-c', 'edit sweep.macro'], cwd=folder, stdin=subprocess.DEVNULL,
            stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
            env={**os.environ, 'PATH': path, 'HOME': str(folder), 'XDG_STATE_HOME': str(folder)})
        self.addCleanup(self.stop)
        # Without the socket, the program that asks would start an editor of its own.
        deadline = time.monotonic() + SECONDS
        while not pathlib.Path(self.socket).exists() and time.monotonic() < deadline:
            time.sleep(0.05)
        self.wait_for('luaeval("#vim.diagnostic.get(0)")', '1')

    def stop(self):
        self.editor.kill()
        self.editor.wait()

    def ask(self, expression):
        done = subprocess.run(['nvim', '--server', self.socket, '--remote-expr', expression], text=True,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=SECONDS)
        return done.stdout  # neovim 0.7 prints the value on the standard error output

    def type(self, keys):
        subprocess.run(['nvim', '--server', self.socket, '--remote-send', keys], check=True, timeout=SECONDS,
                       stdout=subprocess.DEVNULL)

    def wait_for(self, expression, value):
        deadline = time.monotonic() + SECONDS
        found = ''
        while found != value:
            self.assertLess(time.monotonic(), deadline, f'{expression} is {found}')
            time.sleep(0.05)
            found = self.ask(expression)

    def wait_for_screen(self, lines):
        deadline = time.monotonic() + SECONDS
        shown = []
        while shown != lines:
            self.assertLess(time.monotonic(), deadline, '\n'.join(shown))
            time.sleep(0.05)
            shown = [line.rstrip() for line in self.ask(SCREEN).split('\n')]

    def test_marks_a_mistake_and_loses_the_mark_when_it_is_corrected(self):
        self.type(':2s/TIMS/TIMES/<CR>')
        self.wait_for('luaeval("#vim.diagnostic.get(0)")', '0')

    def test_completes_an_option(self):
        self.type('GoSTATS MEAN T<C-x><C-o>')
        self.wait_for('pumvisible()', '1')
        offered = self.ask('''join(map(complete_info(['items']).items, {_, item -> item.word}), '|')''')
        self.assertEqual(offered, 'TIMES = |TITLE = ')
        self.type('<C-y>3')
        self.wait_for('getline(3)', 'STATS MEAN TIMES = 3')

    def test_shows_the_screen_of_the_page(self):
        self.type(':set signcolumn=yes completeopt=menu<CR>GoSTATS MEAN T<C-x><C-o>')
        self.wait_for('pumvisible()', '1')
        self.type('<C-y>3<Esc>')
        self.wait_for('[execute("redraw!"), screenstring(2, 1)][1]', 'E')
        self.wait_for_screen(EXPECTED.read_text().splitlines())

    def test_formats_the_macro(self):
        self.type(':2s/TIMS/TIMES/<CR>')
        self.wait_for('luaeval("#vim.diagnostic.get(0)")', '0')
        self.type(':lua (vim.lsp.buf.format or vim.lsp.buf.formatting_sync)()<CR>')
        self.wait_for('getline(2)', 'STATS MEAN TIMES = 2')


if __name__ == '__main__':
    REASON = why_not()
    if REASON:
        print(REASON)
        sys.exit(77)
    unittest.main(argv=[sys.argv[0], *sys.argv[2:]])
