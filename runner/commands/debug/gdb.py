# The part of places.py for gdb.

import gdb

NEVER = 1 << 30


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


def symtab_of(frame):
    """The source file of the frame's function; None without debug information."""
    function = frame.function()
    return frame.find_sal().symtab if function is None else function.symtab


def is_own(frame):
    symtab = symtab_of(frame)
    return is_own_code(gdb.solib_name(frame.pc()), None if symtab is None else symtab.fullname())


def print_by(command):
    try:
        gdb.execute(command)
    except gdb.error as error:
        tell(str(error))


class Gdb:
    Error = gdb.error

    def __init__(self):
        self.prepare()
        self.stop = gdb.Breakpoint('vexaStandinStopHere', internal=True)
        self.throw = gdb.Breakpoint('__cxa_throw', internal=True)
        self.leaving = gdb.Breakpoint('_exit', internal=True)
        self.stop.silent = self.throw.silent = self.leaving.silent = True
        gdb.events.stop.connect(self.note_stop)
        gdb.events.exited.connect(self.note_exit)

    @staticmethod
    def prepare():
        os.environ['SHELL'] = '/bin/sh'  # gdb starts the program by it; the program itself keeps its own variable
        for setting in ('pagination off', 'confirm off', 'breakpoint pending on', 'print thread-events off',
                        'debuginfod enabled off'):
            try:
                gdb.execute('set ' + setting, to_string=True)
            except gdb.error:  # a gdb that does not know the setting
                pass
        for signal in PASSED_SIGNALS:
            gdb.execute('handle {} nostop noprint pass'.format(signal), to_string=True)

    # ---- Let the program run

    def note_stop(self, event):
        breakpoints = event.breakpoints if isinstance(event, gdb.BreakpointEvent) else ()
        if isinstance(event, gdb.SignalEvent):
            self.news = {'what': 'signal', 'signal': event.stop_signal}
        elif self.throw in breakpoints:
            self.news = {'what': 'throw'}
        elif self.leaving in breakpoints:
            self.news = {'what': 'leaving'}
        elif self.stop in breakpoints:
            self.news = json.loads(gdb.parse_and_eval('*(char **)&vexaStandinStopText').string('ascii'))
        else:
            self.news = {'what': 'step'}

    def note_exit(self, event):
        self.news = {'what': 'exit', 'status': getattr(event, 'exit_code', None)}

    def run(self, place):
        gdb.execute('set environment {} {}'.format(SETTINGS['variable'], place))
        self.throw.hit_count = 0
        self.throw.ignore_count = NEVER
        self.leaving.enabled = place in PLACES_OF_CRASHES
        self.news = {'what': 'exit', 'status': None}
        gdb.execute('run', to_string=True)
        return self.news

    def proceed(self, command='continue'):
        self.news = {'what': 'exit', 'status': None}
        with NoOutput():
            gdb.execute(command)
        return self.news

    def step(self):
        return self.proceed('next')

    def go_to_throw(self, number):
        self.throw.ignore_count = number - 1
        return self.proceed()

    def go_to_address(self, address):
        breakpoint = gdb.Breakpoint('*{}'.format(address), internal=True, temporary=True)
        self.proceed()
        if breakpoint.is_valid():
            breakpoint.delete()

    def throws(self):
        return self.throw.hit_count

    def release(self):
        self.throw.ignore_count = NEVER
        self.leaving.enabled = False

    # ---- Frames and lines

    @staticmethod
    def frame():
        return gdb.newest_frame()

    @staticmethod
    def is_live(frame):
        return frame.is_valid()

    @staticmethod
    def line_of(frame):
        """In optimized code the line of a call may be one of an inlined function, and gdb drops the line of the calling
        function that has the same address. Then the line is the last one of the function before it."""
        symtab, line = symtab_of(frame), frame.find_sal()
        while symtab is not None and line.symtab is not None:
            if line.symtab.fullname() == symtab.fullname():
                return (symtab.fullname(), line.line)
            line = gdb.find_pc_line(line.pc - 1)
        return None

    @staticmethod
    def is_before_first_line(frame):
        """Optimized code may start with the first line, and not with that of the function's head."""
        return frame.find_sal().line == frame.function().line

    @staticmethod
    def select_own():
        frame = gdb.newest_frame()
        while frame is not None:
            if is_own(frame):
                frame.select()
                return True
            frame = frame.older()
        return False

    @staticmethod
    def select_thread(number):
        for thread in gdb.selected_inferior().threads():
            if thread.ptid[1] == number:
                thread.switch()

    # ---- What the user sees

    def show(self):
        print_by('frame')
        frame = gdb.selected_frame()
        line = self.line_of(frame)
        if line is not None and frame.find_sal().symtab.fullname() != line[0]:  # gdb shows a line of an inlined function
            tell('in {}:{}\n{}\t{}'.format(*line, line[1], linecache.getline(*line)))

    @staticmethod
    def show_all(all_threads):
        tell('\nStack:')
        print_by('thread apply all -q backtrace' if all_threads else 'backtrace')
        tell('\nVariables:')
        print_by('info locals')

    @staticmethod
    def leave(status):
        gdb.execute('quit {}'.format(status))


class GoCommand(gdb.Command):
    """Runs the macro again, to another place of the same finding."""

    def __init__(self, name):
        super().__init__(name, gdb.COMMAND_RUNNING)
        self.name = name

    def invoke(self, argument, from_tty):
        reason = DEBUG.go_again(self.name)
        if reason is not None:
            raise gdb.GdbError(reason)


DEBUGGER = Gdb()
GoCommand('opened')
GoCommand('seen')
DEBUG.start()
