"""Builds and tests mutants of the library, one at a time, in a copy of the project. scripts/mutate starts this."""

import argparse
import contextlib
import dataclasses
import fcntl
import fnmatch
import hashlib
import os
import pathlib
import re
import resource
import shutil
import signal
import subprocess
import sys
import time

from mutants import mutants_of

ROOT = pathlib.Path(__file__).resolve().parents[2]
WORK = ROOT / 'build' / 'mutate'
TREE = WORK / 'tree'
BUILD = WORK / 'build'
EQUIVALENTS = pathlib.Path(__file__).with_name('equivalents.txt')

LEAST_KILLED = 0.95
MOST_EQUIVALENT = 0.05
QUICK_COUNT = 40
NOBODY = 65534  # who runs the tests when root starts them: a mutant may remove what it should not
MEMORY = 4 << 30  # a mutant that never stops to allocate is stopped here
COMPILE_SECONDS = 300

# By the folder of a source: what is built and, in this order until one fails, run.
LIBRARY = 'vexautilutil_utils'
FAULTS = 'fault/fault_tests'
PROGRAMS = {
    'library/filesystem': (LIBRARY, ['library/filesystem/filesystem_tests', FAULTS]),
    'library/host': (LIBRARY, ['library/host/host_tests', FAULTS]),
    'hostlibs': ('vexahostlibs', ['hostlibs/hostlibs_tests', 'library/processor/processor_tests', 'library/macro/macro_tests', FAULTS]),
    'library/macro': (LIBRARY, ['library/macro/macro_tests', FAULTS]),
    'library/processor': (LIBRARY, ['library/processor/processor_tests', FAULTS]),
    'library/text': (LIBRARY, ['library/text/text_tests', 'library/macro/macro_tests', 'library/processor/processor_tests', 'library/host/host_tests', FAULTS]),
    'library/textfile': (LIBRARY, ['library/textfile/textfile_tests', 'library/textfile/line_splitter_tests', FAULTS]),
}


@dataclasses.dataclass
class Equivalent:
    file: str
    before: str
    after: str
    why: str
    above: str

    def matches(self, mutant):
        return (self.file == mutant.file and self.above in ('', mutant.above) and
                fnmatch.fnmatchcase(mutant.before, _literal(self.before)) and
                fnmatch.fnmatchcase(mutant.after, _literal(self.after)))


def _literal(pattern):
    """Only the star at either end of a line is a wildcard."""
    inner = re.sub(r'([*?[])', r'[\1]', pattern.strip('*'))
    return ('*' if pattern.startswith('*') else '') + inner + ('*' if pattern.endswith('*') else '')


def read_equivalents():
    entries = []
    for block in re.split(r'\n\s*\n', EQUIVALENTS.read_text()):
        lines = [line for line in block.splitlines() if line and not line.startswith('#')]
        if lines:
            fields = dict(line.split(' ', 1) for line in lines)
            above = fields.pop('below', '')
            if set(fields) != {'file', '-', '+', 'why'}:
                sys.exit(f'{EQUIVALENTS}: an entry has the lines file, -, + and why. This one has not:\n{block}')
            entries.append(Equivalent(fields['file'], fields['-'], fields['+'], fields['why'], above))
    return entries


def sources():
    found = []
    for folder in PROGRAMS:
        found += [str(path.relative_to(ROOT)) for path in (ROOT / folder).rglob('*.cpp')]
    return sorted(found)


def all_mutants(base):
    return [mutant for file in sources() for mutant in mutants_of(file, (base / file).read_text())]


# The copy of the project

def update_copy():
    """Makes the copy equal to the project, whatever a run before this one left in it."""
    wanted = set()
    for folder, folders, files in os.walk(ROOT):
        here = pathlib.Path(folder)
        folders[:] = [name for name in folders if name not in ('build', '.git', '__pycache__')]
        for name in files:
            relative = (here / name).relative_to(ROOT)
            wanted.add(relative)
            _copy_if_different(here / name, TREE / relative)
    for path in list(TREE.rglob('*')):
        if path.is_file() and path.relative_to(TREE) not in wanted:
            path.unlink()


def _copy_if_different(source, target):
    content = source.read_bytes()
    if target.is_file() and target.read_bytes() == content:
        return
    target.parent.mkdir(parents=True, exist_ok=True)
    target.write_bytes(content)  # with a new time, so that it is built again
    shutil.copymode(source, target)


@contextlib.contextmanager
def changed_file(file, text):
    path = TREE / file
    original = path.read_bytes()
    path.write_text(text)
    try:
        yield
    finally:
        path.write_bytes(original)


# Building and testing

def run(command, seconds, confined=False):
    """True when a command succeeds, and in time."""
    def limit():
        resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
        if confined:
            resource.setrlimit(resource.RLIMIT_AS, (MEMORY, MEMORY))

    user = NOBODY if confined and os.geteuid() == 0 else None
    groups = None if user is None else []
    with open(WORK / 'last.log', 'wb') as log:
        process = subprocess.Popen(command, cwd=BUILD, stdin=subprocess.DEVNULL, stdout=log, stderr=log,
                                   start_new_session=True, preexec_fn=limit,
                                   user=user, group=user, extra_groups=groups,
                                   env=os.environ | {'RC_PARAMS': 'seed=1', 'LC_ALL': 'C.UTF-8'})
        try:
            return process.wait(seconds) == 0
        except subprocess.TimeoutExpired:
            return False
        finally:
            with contextlib.suppress(ProcessLookupError):
                os.killpg(process.pid, signal.SIGKILL)
            process.wait()


def build(targets):
    return run(['ninja', *targets], COMPILE_SECONDS)


def folder_of(file):
    return next(folder for folder in PROGRAMS if file.startswith(f'{folder}/'))


def targets_of(folder):
    library, programs = PROGRAMS[folder]
    return [library, *(program.rsplit('/', 1)[1] for program in programs)]


class Suite:
    """The test programs of the folders, with the time that each takes when nothing is changed."""

    def __init__(self, folders):
        self.seconds = {}
        targets = sorted({target for folder in folders for target in targets_of(folder)})
        if not run(['ninja', *targets], 3600):
            sys.exit(f'The project does not build:\n{(WORK / "last.log").read_text()[-3000:]}')
        for program in sorted({program for folder in folders for program in PROGRAMS[folder][1]}):
            start = time.monotonic()
            if not self._passes(program, 600):
                sys.exit(f'{program} fails without any change:\n{(WORK / "last.log").read_text()[-3000:]}')
            self.seconds[program] = time.monotonic() - start

    def notices(self, folder):
        return not all(self._passes(program, 10 + 5 * self.seconds[program]) for program in PROGRAMS[folder][1])

    @staticmethod
    def _passes(program, seconds):
        path = BUILD / 'tests' / program
        return run([str(path), '--gtest_fail_fast', '--gtest_brief=1'], seconds, confined=True)


def verdict(mutant, suite):
    folder = folder_of(mutant.file)
    with changed_file(mutant.file, mutant.text):
        if not build(targets_of(folder)):
            return 'does not compile'
        return 'killed' if suite.notices(folder) else 'survived'


# The report

def show(mutant):
    print(f'{mutant.file}:{mutant.line}\n  - {mutant.before}\n  + {mutant.after}', flush=True)


def judge(chosen, equivalents, suite):
    counts = dict.fromkeys(('killed', 'survived', 'equivalent', 'does not compile'), 0)
    by_folder = {}
    for number, mutant in enumerate(chosen, 1):
        outcome = verdict(mutant, suite)
        if outcome == 'survived' and any(entry.matches(mutant) for entry in equivalents):
            outcome = 'equivalent'
        if outcome == 'survived':
            print(f'\nSurvivor (mutant {number} of {len(chosen)}):')
            show(mutant)
        counts[outcome] += 1
        folder = by_folder.setdefault(folder_of(mutant.file), dict.fromkeys(counts, 0))
        folder[outcome] += 1
        if sys.stdout.isatty():
            print(f'\r{number}/{len(chosen)}', end='', flush=True)
    return counts, by_folder


def line_of(name, counts):
    scored = counts['killed'] + counts['survived']
    share = f'{100 * counts["killed"] / scored:5.1f} %' if scored else '    - '
    return (f'{name:19}{counts["killed"]:6} of {scored:4} killed {share}, {counts["survived"]} survived, '
            f'{counts["equivalent"]} equivalent, {counts["does not compile"]} did not compile')


def report(counts, by_folder):
    print()
    for folder in sorted(by_folder):
        print(line_of(folder, by_folder[folder]))
    print(line_of('all', counts))
    scored = counts['killed'] + counts['survived']
    if scored == 0:
        return 'nothing was tested'
    if counts['killed'] < LEAST_KILLED * scored:
        return f'less than {LEAST_KILLED:.0%} were killed'
    return None


def stale_entries(equivalents, mutants):
    return [entry for entry in equivalents if not any(entry.matches(mutant) for mutant in mutants)]


def check_equivalents(equivalents, mutants):
    """What is wrong with the list of equivalents, given every mutant there is."""
    stale = stale_entries(equivalents, mutants)
    for entry in stale:
        print(f'No mutant is like this entry:\n  {entry.file}\n  - {entry.before}\n  + {entry.after}')
    listed = sum(any(entry.matches(mutant) for entry in equivalents) for mutant in mutants)
    print(f'{len(mutants)} mutants; the list of equivalents names {listed}, {100 * listed / len(mutants):.1f} %')
    if stale:
        return 'the list of equivalents has entries that no mutant is like'
    if listed > MOST_EQUIVALENT * len(mutants):
        return f'more than {MOST_EQUIVALENT:.0%} of the mutants are listed as equivalents'
    return None


def arguments():
    parser = argparse.ArgumentParser(prog='scripts/mutate', add_help=False)
    parser.add_argument('--max', type=int)
    parser.add_argument('--seed', type=int, default=1)
    parser.add_argument('--files', default='', type=re.compile)
    parser.add_argument('--quick', action='store_true')
    parser.add_argument('--list', action='store_true')
    return parser.parse_args()


def choose(mutants, options):
    count = QUICK_COUNT if options.quick and options.max is None else options.max
    if count is None or count >= len(mutants):
        return mutants
    # By what a mutant is, not by its number: a change elsewhere in the sources then leaves the others picked.
    def rank(i):
        mutant = mutants[i]
        text = '\n'.join((str(options.seed), mutant.file, mutant.above, mutant.before, mutant.after))
        return hashlib.sha256(text.encode()).digest()

    return [mutants[i] for i in sorted(sorted(range(len(mutants)), key=rank)[:count])]


def configure():
    # No debug information, and no linking of the programs when only the library changes: the fastest turn-around.
    command = ['cmake', '-G', 'Ninja', '-S', str(TREE), '-B', str(BUILD), '-DCMAKE_BUILD_TYPE=Debug',
               '-DCMAKE_CXX_FLAGS_DEBUG=-O0', '-DCMAKE_LINK_DEPENDS_NO_SHARED=ON', '-DCMAKE_CXX_COMPILER=g++']
    BUILD.mkdir(exist_ok=True)
    if not run(command, 600):
        sys.exit(f'The copy cannot be configured:\n{(WORK / "last.log").read_text()[-3000:]}')


def main():
    options = arguments()
    if options.list:
        chosen, _, wrong = pick(ROOT, options)
        for mutant in chosen:
            show(mutant)
        return wrong
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(143))  # so that the source is put back
    TREE.mkdir(parents=True, exist_ok=True)
    with open(WORK / 'lock', 'w') as lock:
        try:
            fcntl.flock(lock, fcntl.LOCK_EX | fcntl.LOCK_NB)
        except BlockingIOError:
            sys.exit(f'Another run is at work in {WORK}')
        return mutate(options)


def pick(base, options):
    """The mutants to look at, the list of equivalents, and what is wrong with that."""
    mutants = all_mutants(base)
    equivalents = read_equivalents()
    wrong = check_equivalents(equivalents, mutants)
    chosen = choose([mutant for mutant in mutants if options.files.search(mutant.file)], options)
    return chosen, equivalents, wrong


def mutate(options):
    update_copy()
    chosen, equivalents, wrong = pick(TREE, options)
    configure()
    suite = Suite({folder_of(mutant.file) for mutant in chosen})
    print(f'Testing {len(chosen)} of them', flush=True)
    return report(*judge(chosen, equivalents, suite)) or wrong


if __name__ == '__main__':
    sys.exit(main())
