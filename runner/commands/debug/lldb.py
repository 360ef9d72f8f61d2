# The part of places.py for lldb.

import types

import lldb


class Lldb:
    class Error(Exception):
        pass

    def __init__(self):
        lldb.debugger.SetAsync(False)
        self.target = lldb.debugger.GetSelectedTarget()
        self.process = None
        self.throw = None
        self.leaving = None
        program = self.target.GetExecutable().GetFilename()
        self.stop = self.target.BreakpointCreateByName('vexaStandinStopHere', program)
        # The program has the environment of the user, not the folder in which lldb looks for its own modules.
        changed = {**os.environ, **SETTINGS['environment']}
        self.environment = {name: value for name, value in changed.items() if value is not None}

    # ---- Let the program run

    def run(self, place):
        for breakpoint in (self.throw, self.leaving):
            if breakpoint is not None:
                self.target.BreakpointDelete(breakpoint.GetID())
        self.throw = self.target.BreakpointCreateByName('__cxa_throw')
        self.throw.SetIgnoreCount(0xffffffff)
        self.leaving = self.target.BreakpointCreateByName('_exit')
        self.leaving.SetEnabled(place in PLACES_OF_CRASHES)
        if self.process is not None:
            self.process.Kill()
        self.environment[SETTINGS['variable']] = place
        info = self.target.GetLaunchInfo()
        info.SetEnvironmentEntries([name + '=' + value for name, value in self.environment.items()], False)
        error = lldb.SBError()
        self.process = self.target.Launch(info, error)
        if error.Fail():
            raise self.Error(error.GetCString())
        return self.news()

    def proceed(self):
        self.process.Continue()
        return self.news()

    def step(self):
        self.process.GetSelectedThread().StepOver()
        return self.news()

    def go_to_throw(self, number):
        self.throw.SetIgnoreCount(number - 1)
        return self.proceed()

    def go_to_address(self, address):
        breakpoint = self.target.BreakpointCreateByAddress(address)
        self.proceed()
        self.target.BreakpointDelete(breakpoint.GetID())

    def throws(self):
        return self.throw.GetHitCount()

    def release(self):
        self.target.BreakpointDelete(self.throw.GetID())
        self.target.BreakpointDelete(self.leaving.GetID())
        self.throw = self.leaving = None

    def news(self):
        """Why the program has stopped."""
        while self.process.GetState() == lldb.eStateStopped:
            thread = self.process.GetSelectedThread()
            if thread.GetStopReason() == lldb.eStopReasonBreakpoint:
                return self.news_of_breakpoint(thread.GetStopReasonDataAtIndex(0))
            if thread.GetStopReason() != lldb.eStopReasonSignal:
                return {'what': 'step'}
            signal = self.process.GetUnixSignals().GetSignalAsCString(thread.GetStopReasonDataAtIndex(0))
            if signal not in PASSED_SIGNALS:
                return {'what': 'signal', 'signal': signal}
            self.process.Continue()
        return {'what': 'exit', 'status': self.process.GetExitStatus()}

    def news_of_breakpoint(self, number):
        if number == self.stop.GetID():
            return json.loads(self.stop_text())
        if number == self.leaving.GetID():
            return {'what': 'leaving'}
        return {'what': 'throw' if number == self.throw.GetID() else 'step'}

    def stop_text(self):
        symbol = self.target.FindSymbols('vexaStandinStopText')[0].GetSymbol()
        error = lldb.SBError()
        text = self.process.ReadPointerFromMemory(symbol.GetStartAddress().GetLoadAddress(self.target), error)
        return self.process.ReadCStringFromMemory(text, 1 << 20, error)

    # ---- Frames and lines

    def frame(self):
        return self.process.GetSelectedThread().GetFrameAtIndex(0)

    @staticmethod
    def is_live(frame):
        return frame.IsValid()

    @staticmethod
    def line_of(frame):
        entry = frame.GetLineEntry()
        return (entry.GetFileSpec().fullpath, entry.GetLine()) if entry.IsValid() else None

    @staticmethod
    def is_before_first_line(frame):
        return True

    def is_own(self, frame):
        module, line = frame.GetModule(), self.line_of(frame)
        is_program = not module.IsValid() or module.GetFileSpec() == self.target.GetExecutable()
        return is_own_code(None if is_program else module.GetFileSpec().fullpath, None if line is None else line[0])

    def select_own(self):
        thread = self.process.GetSelectedThread()
        for number, frame in enumerate(thread):
            if self.is_own(frame):
                thread.SetSelectedFrame(number)
                return True
        return False

    def select_thread(self, number):
        self.process.SetSelectedThreadByID(number)

    # ---- What the user sees

    def show(self):
        frame = self.process.GetSelectedThread().GetSelectedFrame()
        line = self.line_of(frame)
        tell(str(frame))
        if line is not None:
            tell('{}\t{}'.format(line[1], linecache.getline(*line)))

    def show_all(self, all_threads):
        frame = self.process.GetSelectedThread().GetSelectedFrame()
        for title, command in (('Stack', 'thread backtrace' + (' all' if all_threads else '')),
                               ('Variables', 'frame variable')):
            result = lldb.SBCommandReturnObject()
            lldb.debugger.GetCommandInterpreter().HandleCommand(command, lldb.SBExecutionContext(frame), result)
            tell('\n' + title + ':\n' + (result.GetOutput() or result.GetError() or ''))

    def leave(self, status):
        if self.process is not None:
            self.process.Kill()
        sys.stdout.flush()
        os._exit(status)


def go_again(name):
    reason = DEBUG.go_again(name)
    if reason is not None:
        tell('error: ' + reason)


DEBUGGER = Lldb()
sys.modules['vexa'] = types.SimpleNamespace(opened=lambda: go_again('opened'), seen=lambda: go_again('seen'))
for name in ('opened', 'seen'):
    lldb.debugger.HandleCommand('command alias {0} script import vexa; vexa.{0}()'.format(name))
DEBUG.start()
