#!/usr/bin/env python3
"""Each rule of structure.py is seen to be broken by a small project that breaks it, and only it."""

import json
import pathlib
import tempfile
import unittest

import structure


class StructureTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = pathlib.Path(folder.name)

    def write(self, path, *included, text=''):
        file = self.root / path
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_text(''.join(f'#include "{name}"\n' for name in included) + text)

    def faults(self):
        return list(structure.faults_of(structure.Project(self.root)))

    def assert_only_fault(self, *parts):
        faults = self.faults()
        self.assertEqual(len(faults), 1, faults)
        for part in parts:
            self.assertIn(part, faults[0])

    def test_includes_that_point_down_pass(self):
        self.write('hostapi/vexa/VexaUtil.h')
        self.write('contract/Rules.h', 'vexa/VexaUtil.h')
        self.write('standin/src/Host.cpp', 'contract/Rules.h')
        self.write('runner/terminal/Console.h')
        self.write('runner/commands/ListCommand.cpp', 'terminal/Console.h')
        self.assertEqual(self.faults(), [])

    def test_a_product_may_not_include_one_that_it_does_not_know(self):
        self.write('standin/src/Strings.h')
        self.write('contract/StringRules.cpp', 'Strings.h')
        self.assert_only_fault('contract/StringRules.cpp', 'includes standin/src/Strings.h',
                               'may include only contract/, hostapi/')

    def test_a_layer_may_not_include_one_above_it(self):
        self.write('runner/session/AddOns.h')
        self.write('runner/formats/MacroFile.cpp', 'session/AddOns.h')
        self.assert_only_fault('runner/formats/MacroFile.cpp', 'includes runner/session/AddOns.h', 'above')

    def test_a_layer_may_not_include_the_main_program(self):
        self.write('runner/Main.h')
        self.write('runner/commands/ListCommand.cpp', 'Main.h')
        self.assert_only_fault('includes runner/Main.h')

    def test_parts_of_the_library_know_nothing_of_each_other(self):
        self.write('library/host/Lock.h')
        self.write('library/macro/Command.h', 'host/Lock.h')
        self.assert_only_fault('library/macro/Command.h', 'macro/ and host/ know nothing of each other')

    def test_the_text_file_reader_may_open_its_file_through_the_file_system(self):
        self.write('library/filesystem/Opening.h')
        self.write('library/textfile/Reader.h', 'filesystem/Opening.h')
        self.assertEqual(self.faults(), [])

    def test_files_may_not_include_each_other_in_a_circle(self):
        self.write('standin/src/A.h', 'B.h')
        self.write('standin/src/B.h', 'C.h')
        self.write('standin/src/C.h', 'A.h')
        self.assert_only_fault('a circle of files', 'A.h -> standin/src/B.h -> standin/src/C.h -> standin/src/A.h')

    def test_folders_may_not_include_each_other_in_a_circle(self):
        self.write('standin/src/Host.h', 'objects/Set.h')
        self.write('standin/src/objects/Set.h')
        self.write('standin/src/objects/Mutex.h', '../Threads.h')
        self.write('standin/src/Threads.h')
        self.assert_only_fault('a circle of folders', 'standin/src -> standin/src/objects -> standin/src')

    def test_a_folder_may_not_have_more_than_thirty_sources(self):
        for number in range(30):
            self.write(f'standin/src/Source{number}.cpp')
            self.write(f'standin/src/Source{number}.h')
        self.assertEqual(self.faults(), [])
        self.write('standin/src/OneMore.cpp')
        self.assert_only_fault('standin/src/: has 31 sources')

    def test_a_source_needs_a_test_of_its_name_where_the_folder_wants_one(self):
        self.write('library/macro/Option.cpp')
        self.assert_only_fault('library/macro/Option.cpp', 'tests/library/macro/OptionTest.cpp')
        self.write('tests/library/macro/OptionTest.cpp')
        self.assertEqual(self.faults(), [])

    def test_a_source_may_be_listed_with_the_test_that_it_has_instead(self):
        self.write('library/macro/Option.cpp')
        self.write('tests/library/macro/AllOptionsTest.cpp')
        self.write('tests/structure/tested-otherwise.txt',
                   text='library/macro/Option.cpp tests/library/macro/AllOptionsTest.cpp  # with its kin\n')
        self.assertEqual(self.faults(), [])

    def test_a_test_that_a_source_has_instead_must_exist(self):
        self.write('library/macro/Option.cpp')
        self.write('tests/structure/tested-otherwise.txt', text='library/macro/Option.cpp tests/Gone.cpp\n')
        self.assert_only_fault('is tested by tests/Gone.cpp, which does not exist')

    def test_a_source_with_a_test_of_its_name_is_not_listed(self):
        self.write('library/macro/Option.cpp')
        self.write('tests/library/macro/OptionTest.cpp')
        self.write('tests/structure/tested-otherwise.txt',
                   text='library/macro/Option.cpp tests/library/macro/OptionTest.cpp\n')
        self.assert_only_fault('library/macro/Option.cpp', 'has a test of its name')

    def test_a_folder_may_not_compile_a_source_of_another(self):
        self.write('runner/trace/CMakeLists.txt', text='add_library(trace ../system/LiveFile.cpp)\n')
        self.assert_only_fault('runner/trace/CMakeLists.txt', '../system/LiveFile.cpp')

    def test_two_targets_may_not_compile_the_same_source(self):
        commands = [{'file': str(self.root / 'library/text/Number.cpp'), 'output': f'{target}/Number.cpp.o'}
                    for target in ('library.dir', 'tests.dir')]
        commands.append({'file': str(self.root / 'library/text/Word.cpp'), 'output': 'library.dir/Word.cpp.o'})
        self.write('build/compile_commands.json', text=json.dumps(commands))
        faults = list(structure.twice_compiled(self.root, self.root / 'build/compile_commands.json'))
        self.assertEqual(len(faults), 1, faults)
        self.assertIn('library/text/Number.cpp: is compiled 2 times', faults[0])


if __name__ == '__main__':
    unittest.main()
