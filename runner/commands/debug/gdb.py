# What `vexa-standin debug` does in gdb. The line before this one sets SETTINGS, a text in JSON:
#   place     where the run stops, as session/StopPlace.h writes it
#   variable  the variable of the environment that passes the place to the run
#   addOns    the files of the add-ons
#   batch     whether gdb prints the place and ends
# The run calls vexaStandinStopHere() at the place; see session/Stopper.h. From there this script goes to the source of
# the add-on. Some places are known only after they have passed. The script then runs the program once more.

import json
import linecache
import os
import re

import gdb

SETTINGS = json.loads(SETTINGS)
NOT_REACHED, CANNOT_RUN = 1, 2
MOST_STEPS = 5000  # of a function that is stepped through to find its last line
NEVER = 1 << 30

# Objects in which no line of an add-on is, and headers whose inline functions an add-on has in it.
HOST_OBJECT = re.compile(r'/lib(vexastandin|vexautilutil_utils|vexahostlibs)\.so[.0-9]*$')
SYSTEM_FOLDERS = ('/lib/', '/lib64/', '/usr/lib/', '/usr/lib64/')
LIBRARY_HEADER = re.compile(r'^/usr/(include|lib)/|/(include|hostapi)/(vexautilutil|vexa|vexastandin)/[^.]*\.h$')
ADD_ONS = {os.path.realpath(file) for file in SETTINGS['addOns']}

# Rules about what a command returned. The add-on is not on the stack any more when they are broken.
RULES_OF_EXCEPTIONS = ('escaped-exception', 'missing-errmsg')


class Missed(Exception):
    """The place was not reached."""

    def __init__(self, reason, status=NOT_REACHED):
        super().__init__(reason)
        self.status = status


class NoOutput:
    """Drops what gdb prints at a stop, which goes straight to its standard output. A program that gdb starts meanwhile
    would print nothing."""

    def __enter__(self):
        gdb.flush()
        self.kept = os.dup(1)
        nowhere = os.open(os.devnull, os.O_WRONLY)
        os.dup2(nowhere, 1)
        os.close(nowhere)

    def __exit__(self, *_):
        gdb.flush()
        os.dup2(self.kept, 1)
        os.close(self.kept)


class Program:
    """The run: starts it, and says why it has stopped."""

    def __init__(self):
        self.stop = gdb.Breakpoint('vexaStandinStopHere', internal=True)
        self.throw = gdb.Breakpoint('__cxa_throw', internal=True)
        self.stop.silent = self.throw.silent = True
        gdb.events.stop.connect(self.note_stop)
        gdb.events.exited.connect(self.note_exit)

    def note_stop(self, event):
        if isinstance(event, gdb.SignalEvent):
            self.news = {'what': 'signal', 'signal': event.stop_signal}
        elif isinstance(event, gdb.BreakpointEvent) and self.throw in event.breakpoints:
            self.news = {'what': 'throw'}
        elif isinstance(event, gdb.BreakpointEvent) and self.stop in event.breakpoints:
            self.news = json.loads(gdb.parse_and_eval('*(char **)&vexaStandinStopText').string('ascii'))
        else:
            self.news = {'what': 'step'}

    def note_exit(self, event):
        self.news = {'what': 'exit', 'status': getattr(event, 'exit_code', None)}

    def run(self, place):
        """Starts the program, and runs it to the place."""
        gdb.execute('set environment {} {}'.format(SETTINGS['variable'], place))
        self.throw.hit_count = 0
        self.throw.ignore_count = NEVER
        return self.resume('run')

    def resume(self, command):
        self.news = {'what': 'exit', 'status': None}
        if command == 'run':
            gdb.execute(command, to_string=True)
        else:
            with NoOutput():
                gdb.execute(command)
        return self.news

    def release(self):
        """From now on the user decides where the program stops."""
        self.throw.ignore_count = NEVER


# ---- Frames and lines

def symtab_of(frame):
    """The source file of the frame's function; None without debug information."""
    function = frame.function()
    return frame.find_sal().symtab if function is None else function.symtab


def is_own(frame):
    """Whether the frame is in the source of an add-on."""
    name = gdb.solib_name(frame.pc())
    if name is None:
        return False
    if os.path.realpath(name) not in ADD_ONS and (HOST_OBJECT.search(name) or name.startswith(SYSTEM_FOLDERS)):
        return False
    symtab = symtab_of(frame)
    return symtab is None or not LIBRARY_HEADER.search(os.path.normpath(symtab.fullname()))


def select_own():
    """Selects the innermost frame in the source of an add-on. Returns whether there is one."""
    frame = gdb.newest_frame()
    while frame is not None:
        if is_own(frame):
            frame.select()
            return True
        frame = frame.older()
    return False


def is_brace(line):
    """Whether a line of the source, (file, number), is only the end of a function."""
    return line is not None and linecache.getline(*line).strip() in ('}', '};')


def line_of(frame):
    """The line of the frame, (file, number), in the file of its function; None without debug information. In optimized
    code the line of a call may be one of an inlined function. Then the line is the last one before it."""
    sal, symtab = frame.find_sal(), symtab_of(frame)
    if symtab is None or sal.symtab is None:
        return None
    if sal.symtab.fullname() == symtab.fullname():
        return (symtab.fullname(), sal.line)
    block = gdb.block_for_pc(frame.pc() - 1)
    while block is not None and block.function is None:
        block = block.superblock
    start = block.start if block is not None else 0
    before = [entry for entry in symtab.linetable() if start <= entry.pc < frame.pc() and entry.line]
    return (symtab.fullname(), max(before, key=lambda entry: entry.pc).line) if before else None


# ---- Places in a command

def enter_command(number):
    """Runs to the first instruction of the function that runs the command. Returns its frame."""
    news = PROGRAM.run('command {}'.format(number))
    if news['what'] != 'command':
        return None
    breakpoint = gdb.Breakpoint('*{}'.format(news['function']), internal=True, temporary=True)
    PROGRAM.resume('continue')
    if breakpoint.is_valid():
        breakpoint.delete()
    return gdb.newest_frame()


def go_to_first_line(number):
    """Goes to the first line that the command runs."""
    frame = enter_command(number)
    if frame is None or line_of(frame) is None:
        return select_own()
    PROGRAM.resume('next')
    if not frame.is_valid():  # the function is one line
        enter_command(number)
    return select_own()


def go_to_last_throw(number, throws):
    """Goes to the last exception that the command throws, of `throws` in the run until its end."""
    PROGRAM.run('command {}'.format(number))
    left = throws - PROGRAM.throw.hit_count
    if left <= 0:
        return False
    PROGRAM.throw.ignore_count = left - 1
    return PROGRAM.resume('continue')['what'] == 'throw' and select_own()


def lines_of_command(number, most):
    """Steps through the function that runs the command, for at most `most` steps. Returns the lines before each."""
    frame = enter_command(number)
    lines = []
    while frame is not None and frame.is_valid() and len(lines) < most:
        lines.append(line_of(gdb.newest_frame()))
        if PROGRAM.resume('next')['what'] != 'step':
            break
    return lines


def go_to_return(number):
    """Goes to the line where the function that runs the command returns."""
    lines = lines_of_command(number, MOST_STEPS)
    if not lines or lines[0] is None or len(lines) == MOST_STEPS:
        return False
    while len(lines) > 1 and is_brace(lines[-1]):
        lines.pop()
    lines_of_command(number, len(lines) - 1)
    return select_own()


def go_to_cause(news, uses_throws, throws):
    """Goes to where the result of a command arose, which has returned by now. Returns a note on that place."""
    number, message = news['command'], news['messageCall']
    if uses_throws and go_to_last_throw(number, throws):
        return 'The last exception that the command threw:'
    if message and PROGRAM.run('call {}'.format(message))['what'] == 'call' and select_own():
        return 'The last message that the command made:'
    if go_to_return(number):
        return 'The end of the command:'
    if go_to_first_line(number):
        return 'The start of the command:'
    raise Missed(news['reason'] + '\nno code of the add-on was running then')


# ---- What the program stopped for

def show_call(news):
    if not select_own():
        raise Missed(news['reason'] + '\nno code of an add-on with debug information made this call')
    return news['reason']


def show_command(news):
    go_to_first_line(news['command'])
    return 'command {}: {}'.format(news['command'], news['reason'])


def show_finding(news):
    DEBUG.opened = news['opened']
    throws = PROGRAM.throw.hit_count
    if select_own():
        return news['reason']
    if news['opened'] and PROGRAM.run('call {}'.format(news['opened']))['what'] == 'call' and select_own():
        return news['reason'] + 'The add-on has returned by then. The call that started it:'
    return news['reason'] + go_to_cause(news, news['rule'] in RULES_OF_EXCEPTIONS, throws)


def show_failure(news):
    return 'command {}: {}\n{}'.format(news['command'], news['reason'],
                                       go_to_cause(news, True, PROGRAM.throw.hit_count))


def show_hang(news):
    for thread in gdb.selected_inferior().threads():
        if thread.ptid[1] == news['thread']:
            thread.switch()
    if not select_own():
        raise Missed(news['reason'] + '\nno code of an add-on is on the stack of its thread')
    return news['reason']


def show_signal(news):
    select_own()
    if news['signal'] == 'SIGINT':
        return 'interrupted'
    text = 'the program got the signal ' + news['signal']
    if DEBUG.place not in ('problem', 'crash', 'failure'):
        DEBUG.status = NOT_REACHED
        text += ' before it reached the place'
    return text


def show_end(news):
    raise Missed(news['reason'], CANNOT_RUN if news['status'] == CANNOT_RUN else NOT_REACHED)


def show_exit(news):
    status = '' if news['status'] is None else ' with status {}'.format(news['status'])
    if news['status'] == CANNOT_RUN:
        raise Missed('the macro cannot be run', CANNOT_RUN)
    raise Missed('the program ended' + status + ' before it reached the place')


SHOW = {'call': show_call, 'command': show_command, 'finding': show_finding, 'failure': show_failure,
        'hang': show_hang, 'signal': show_signal, 'end': show_end, 'exit': show_exit}


# ---- What the user sees

def tell(text):
    gdb.write(text.rstrip() + '\n')
    gdb.flush()


def print_by(command):
    try:
        gdb.execute(command)
    except gdb.error as error:
        tell(str(error))


class Debug:
    def __init__(self):
        self.place = SETTINGS['place']
        self.opened = 0
        self.status = 0

    def go(self, place):
        """Goes to a place, and shows it."""
        news = PROGRAM.run(place)
        reason = SHOW[news['what']](news)
        PROGRAM.release()
        tell(reason)
        print_by('frame')
        self.show_line()
        if SETTINGS['batch']:
            tell('\nStack:')
            print_by('thread apply all -q backtrace' if news['what'] == 'hang' else 'backtrace')
            tell('\nVariables:')
            print_by('info locals')

    @staticmethod
    def show_line():
        """Shows the line in the add-on's file, where gdb shows one of an inlined function."""
        frame = gdb.selected_frame()
        line = line_of(frame)
        if line is not None and frame.find_sal().symtab.fullname() != line[0]:
            tell('in {}:{}\n{}\t{}'.format(*line, line[1], linecache.getline(*line)))

    def start(self):
        try:
            self.go(self.place)
        except Missed as missed:
            self.leave('vexa-standin: debug: not reached: ' + str(missed), missed.status)
        except gdb.error as error:
            self.leave('vexa-standin: debug: gdb cannot run the macro: ' + str(error), CANNOT_RUN)
        if SETTINGS['batch'] and self.status:
            self.leave('vexa-standin: debug: not reached', self.status)
        if self.opened and not SETTINGS['batch']:
            tell("'opened' goes to the call that started this, 'seen' comes back here")

    @staticmethod
    def leave(text, status):
        tell(text)
        gdb.execute('quit {}'.format(status))


class GoCommand(gdb.Command):
    """Runs the macro again, to another place of the same finding."""

    def __init__(self, name, place):
        super().__init__(name, gdb.COMMAND_RUNNING)
        self.place = place

    def invoke(self, argument, from_tty):
        place = self.place()
        if place is None:
            raise gdb.GdbError('There is no finding that a call started.')
        try:
            DEBUG.go(place)
        except Missed as missed:
            raise gdb.GdbError('not reached: ' + str(missed))


def prepare():
    os.environ['SHELL'] = '/bin/sh'  # gdb starts the program by it; the program itself keeps its own variable
    for setting in ('pagination off', 'confirm off', 'breakpoint pending on', 'print thread-events off',
                    'debuginfod enabled off'):
        try:
            gdb.execute('set ' + setting, to_string=True)
        except gdb.error:  # a gdb that does not know the setting
            pass
    for signal in ('SIGPIPE', 'SIGUSR1', 'SIGUSR2', 'SIGHUP', 'SIGXFSZ'):
        gdb.execute('handle {} nostop noprint pass'.format(signal), to_string=True)


prepare()
PROGRAM = Program()
DEBUG = Debug()
GoCommand('opened', lambda: 'call {}'.format(DEBUG.opened) if DEBUG.opened else None)
GoCommand('seen', lambda: DEBUG.place)
DEBUG.start()
