#!/usr/bin/env python3
"""Reads every #include of the project, and checks that the folders keep their order.

Usage: structure.py [--table] [--build FOLDER] [ROOT]

  --table          print the folders with their files, lines and arrows instead; checks nothing
  --build FOLDER   a build tree: see that no source is compiled twice in it
  ROOT             the folder of the project (default: the one that this file is part of)

The exit status is 1 when a rule is broken; each breach is one line. What the rules are: see PRODUCTS and the constants
after it.
"""

import argparse
import collections
import json
import os
import pathlib
import re
import sys

# Each product, and those whose headers its sources may include.
PRODUCTS = {
    'hostapi': (),
    'hostlibs': ('hostapi',),
    'library': ('hostapi',),
    'contract': ('hostapi',),
    'facts': (),
    'probe': ('facts', 'library', 'hostapi'),
    'layer': ('contract', 'hostapi'),
    'standin': ('facts', 'contract', 'hostapi'),
    'runner': ('standin', 'facts', 'contract', 'library', 'hostapi'),
}

# Folders from the top down: each may include only those after it.
LAYERS = {
    'runner': ('commands', 'session', 'coverage', 'trace', 'language', 'formats', 'options', 'terminal',
               'stacks', 'system', 'text'),
}

# Folders that know nothing of each other, and the few that each of them may include all the same.
SEPARATE = {
    'library': {'macro': (), 'processor': (), 'host': (), 'filesystem': (), 'textfile': ('filesystem',)},
}

# Where the compiler looks for an include that is not beside the file, by product. '.' is the root.
INCLUDE_FOLDERS = {
    'hostapi': ('hostapi',),
    'hostlibs': ('hostlibs', 'hostapi'),
    'library': ('library', 'library/include', 'hostapi'),
    'contract': ('.', 'contract/include', 'hostapi'),
    'facts': ('.',),
    'probe': ('.', 'probe', 'library/include', 'hostapi'),
    'standin': ('standin/src', '.', 'standin/include', 'contract/include', 'hostapi'),
    'layer': ('.', 'contract/include', 'hostapi'),
    'runner': ('runner', '.', 'standin/include', 'contract/include', 'library/include', 'hostapi'),
}

MOST_SOURCES = 30

# Where each source X.cpp has a test XTest.cpp in the same folder of tests/.
TESTED = ('library', 'hostlibs', 'runner/text')

SUFFIXES = ('.h', '.c', '.cpp')
INCLUDE = re.compile(r'^\s*#\s*include\s+["<]([^">]+)[">]', re.MULTILINE)


class Project:
    def __init__(self, root):
        self.root = root
        self.products = [product for product in PRODUCTS if (root / product).is_dir()]
        self.files = sorted(path.relative_to(root) for product in self.products
                            for path in (root / product).rglob('*') if path.suffix in SUFFIXES)
        known = set(self.files)
        self.includes = {file: self._includes_of(file, known) for file in self.files}

    def _includes_of(self, file, known):
        folders = [file.parent, *map(pathlib.PurePosixPath, INCLUDE_FOLDERS[file.parts[0]])]
        # What lies outside these folders is found, too, so that an include that the product may not have is told.
        folders += [pathlib.PurePosixPath(folder) for others in INCLUDE_FOLDERS.values() for folder in others]
        found = []
        for name in INCLUDE.findall((self.root / file).read_text()):
            candidates = (pathlib.Path(os.path.normpath(folder / name)) for folder in folders)
            target = next((path for path in candidates if path in known), None)
            if target:
                found.append(target)
        return found

    def sources(self):
        return [file for file in self.files if file.suffix != '.h']


def product_faults(project):
    """Includes of a product that the file's product may not know."""
    for file, targets in project.includes.items():
        product = file.parts[0]
        for target in targets:
            other = target.parts[0]
            if other != product and other not in PRODUCTS[product]:
                yield f'{file}: includes {target}, but {product}/ may include only {known_products(product)}'


def known_products(product):
    return ', '.join(f'{other}/' for other in (product, *PRODUCTS[product]))


def layer_faults(project):
    """Includes that point to a layer above."""
    for file, targets in project.includes.items():
        layers = LAYERS.get(file.parts[0], ())
        level = level_of(file, layers)
        for target in targets:
            if target.parts[0] == file.parts[0] and level_of(target, layers) < level:
                yield f'{file}: includes {target}, which is above it: {" > ".join(layers)}'


def level_of(file, layers):
    """A file that is in no layer stands above all of them."""
    return layers.index(file.parts[1]) if file.parts[1] in layers else -1


def separation_faults(project):
    """Includes between folders that know nothing of each other."""
    for file, targets in project.includes.items():
        separate = SEPARATE.get(file.parts[0], {})
        part = file.parts[1]
        for target in targets:
            other = target.parts[1] if target.parts[0] == file.parts[0] else part
            if part in separate and other in separate and other not in (part, *separate[part]):
                yield f'{file}: includes {target}, but {part}/ and {other}/ know nothing of each other'


def circle_faults(project):
    """Circles of files, and of folders."""
    folders = collections.defaultdict(set)
    for file, targets in project.includes.items():
        folders[file.parent].update(target.parent for target in targets if target.parent != file.parent)
    for kind, arrows in (('files', project.includes), ('folders', folders)):
        circle = first_circle(arrows)
        if circle:
            yield f'a circle of {kind}: {" -> ".join(map(str, circle))}'


def first_circle(arrows):
    """One circle of the graph, its first node repeated at the end; or none."""
    done, path = set(), []

    def visit(node):
        if node in path:
            return path[path.index(node):] + [node]
        if node in done:
            return None
        path.append(node)
        for target in sorted(arrows.get(node, ())):
            circle = visit(target)
            if circle:
                return circle
        path.pop()
        done.add(node)
        return None

    for node in sorted(arrows):
        circle = visit(node)
        if circle:
            return circle
    return None


def size_faults(project):
    """Folders with too many sources."""
    count = collections.Counter(file.parent for file in project.sources())
    for folder, sources in sorted(count.items()):
        if sources > MOST_SOURCES:
            yield f'{folder}/: has {sources} sources, more than {MOST_SOURCES}; give each subject a folder'


def test_faults(project):
    """Sources without a test of their name, where the folder wants one; the list of those that are tested otherwise."""
    excused = read_excuses(project.root / 'tests/structure/tested-otherwise.txt')
    untested = set()
    for source in project.sources():
        if any(source.is_relative_to(folder) for folder in TESTED):
            test = pathlib.Path('tests') / source.parent / f'{source.stem}Test.cpp'
            if not (project.root / test).exists():
                untested.add(str(source))
    for source in sorted(untested - excused.keys()):
        yield f'{source}: has no test of its name: tests/{source[:-len(".cpp")]}Test.cpp'
    for source in sorted(excused.keys() - untested):
        yield f'{source}: has a test of its name, so it does not belong in tested-otherwise.txt'
    for source, test in sorted(excused.items()):
        if not (project.root / test).exists():
            yield f'{source}: is tested by {test}, which does not exist'


def read_excuses(path):
    """Lines `SOURCE TEST`; after # stands a reason."""
    if not path.exists():
        return {}
    lines = (line.split('#')[0].split() for line in path.read_text().splitlines())
    return {words[0]: words[1] for words in lines if words}


def build_faults(project):
    """CMake lists that name a source of another folder."""
    for product in project.products:
        for path in sorted((project.root / product).rglob('CMakeLists.txt')):
            for name in re.findall(r'\.\./\S*\.c(?:pp)?\b', path.read_text()):
                yield f'{path.relative_to(project.root)}: compiles {name}, which belongs to another folder'


def twice_compiled(root, compile_commands):
    """Sources of the products that more than one target compiles."""
    files = [pathlib.Path(command['file']) for command in json.loads(compile_commands.read_text())]
    count = collections.Counter(file.relative_to(root) for file in files if file.is_relative_to(root))
    for file, times in sorted(count.items()):
        if times > 1 and file.parts[0] in PRODUCTS:
            yield f'{file}: is compiled {times} times; link the target that compiles it'


RULES = (product_faults, layer_faults, separation_faults, circle_faults, size_faults, test_faults, build_faults)


def faults_of(project):
    return (fault for rule in RULES for fault in rule(project))


def print_table(root):
    """The folders two levels deep, whatever products there are: what they hold, and how many others they include."""
    files = [path.relative_to(root) for path in root.rglob('*') if path.suffix in SUFFIXES and path.is_file()
             and path.relative_to(root).parts[0] not in {'build', '.git', 'tests', 'bench', 'fuzz', 'examples', 'docs'}]
    by_end = collections.defaultdict(list)
    for file in files:
        by_end[file.name].append(file)
    count, lines, arrows = collections.Counter(), collections.Counter(), collections.defaultdict(set)
    for file in files:
        text = (root / file).read_text()
        count[file.parent] += 1
        lines[file.parent] += text.count('\n')
        for name in INCLUDE.findall(text):
            ends = [path for path in by_end[pathlib.Path(name).name] if str(path).endswith('/' + name)]
            beside = file.parent / name
            target = beside if beside in files else ends[0] if len(ends) == 1 else None
            if target and target.parent != file.parent:
                arrows[file.parent].add(target.parent)
    print('| folder | files | lines | includes of other folders |\n|---|---|---|---|')
    for folder in sorted(count):
        print(f'| `{folder}/` | {count[folder]} | {lines[folder]} | {len(arrows[folder])} |')
    print(f'| all | {len(files)} | {sum(lines.values())} | {sum(map(len, arrows.values()))} |')


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument('--table', action='store_true')
    parser.add_argument('--build', type=pathlib.Path)
    parser.add_argument('root', nargs='?', type=pathlib.Path, default=pathlib.Path(__file__).resolve().parents[2])
    arguments = parser.parse_args()
    if arguments.table:
        print_table(arguments.root)
        return 0
    project = Project(arguments.root)
    faults = list(faults_of(project))
    if arguments.build:
        faults += twice_compiled(arguments.root, arguments.build / 'compile_commands.json')
    if faults:
        print(*faults, sep='\n')
    else:
        print(f'{len(project.files)} files in {len({file.parent for file in project.files})} folders keep the order.')
    return 1 if faults else 0


if __name__ == '__main__':
    sys.exit(main())
