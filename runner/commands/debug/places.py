# What `vexa-standin debug` does in a debugger. The line before this one sets SETTINGS, a text in JSON:
#   place     where the run stops, as session/StopPlace.h writes it
#   variable  the variable of the environment that passes the place to the run
#   addOns    the files of the add-ons
#   batch     whether the debugger prints the place and ends
# The run calls vexaStandinStopHere() at the place; see session/Stopper.h. From there this script goes to the source of
# the add-on. Some places are known only after they have passed. The script then runs the program once more.
#
# gdb.py or lldb.py follows this file. It sets DEBUGGER, an object with these functions. Those that let the program run
# return news: a dictionary, whose `what` says why the program has stopped.
#   run(place)              start the program, and run it to the place
#   proceed(), step()       continue; step over one line
#   go_to_throw(number)     continue to an exception, counted from 1 from here on
#   go_to_address(address)  continue to an instruction
#   throws()                how many exceptions were thrown since the start
#   release()               stop nowhere any more by itself
#   frame(), is_live(frame) the innermost frame; whether it has not returned
#   line_of(frame)          its line, (file, number); None without debug information
#   is_before_first_line(frame) whether one step leads from the start of a function to its first line
#   select_own()            select the innermost frame in the source of an add-on; whether there is one
#   select_thread(id)       by the id of the system
#   show()                  print the selected frame and its line
#   show_all(all_threads)   print the stack, or those of all threads, and the variables of the selected frame
#   leave(status)           end the debugger
#   Error                   the class of its exceptions

import json
import linecache
import os
import re
import sys

SETTINGS = json.loads(SETTINGS)
NOT_REACHED, CANNOT_RUN = 1, 2
MOST_STEPS = 5000  # of a function that is stepped through to find its last line

# Objects in which no line of an add-on is, and headers whose inline functions an add-on has in it.
HOST_OBJECT = re.compile(r'/lib(vexastandin|vexautilutil_utils|vexahostlibs)\.so[.0-9]*$')
SYSTEM_FOLDERS = ('/lib/', '/lib64/', '/usr/lib/', '/usr/lib64/')
LIBRARY_HEADER = re.compile(r'^/usr/(include|lib)/|/(include|hostapi)/(vexautilutil|vexa|vexastandin)/[^.]*\.h$')
ADD_ONS = {os.path.realpath(file) for file in SETTINGS['addOns']}

# Rules about what a command returned. The add-on is not on the stack any more when they are broken.
RULES_OF_EXCEPTIONS = ('escaped-exception', 'missing-errmsg')

# Places that are reached when an add-on crashes or ends the process.
PLACES_OF_CRASHES = ('problem', 'crash')

# Signals that do not stop a program.
PASSED_SIGNALS = ('SIGPIPE', 'SIGUSR1', 'SIGUSR2', 'SIGHUP', 'SIGXFSZ')


class Missed(Exception):
    """The place was not reached."""

    def __init__(self, reason, status=NOT_REACHED):
        super().__init__(reason)
        self.status = status


def is_own_code(object_file, source):
    """Whether code is of an add-on. `object_file` is None for the program, `source` is None without debug information."""
    if object_file is None:
        return False
    is_system = HOST_OBJECT.search(object_file) or object_file.startswith(SYSTEM_FOLDERS)
    if is_system and os.path.realpath(object_file) not in ADD_ONS:
        return False
    return source is None or not LIBRARY_HEADER.search(os.path.normpath(source))


def is_brace(line):
    """Whether a line of the source is only the end of a function."""
    return line is not None and linecache.getline(*line).strip() in ('}', '};')


def tell(text):
    sys.stdout.write(text.rstrip() + '\n')
    sys.stdout.flush()


# ---- Places in a command

def enter_command(number):
    """Runs to the first instruction of the function that runs the command. Returns its frame."""
    news = DEBUGGER.run('command {}'.format(number))
    if news['what'] != 'command':
        return None
    DEBUGGER.go_to_address(news['function'])
    return DEBUGGER.frame()


def go_to_first_line(number):
    """Goes to the first line that the command runs."""
    frame = enter_command(number)
    if frame is None or DEBUGGER.line_of(frame) is None:
        return DEBUGGER.select_own()
    if DEBUGGER.is_before_first_line(frame):
        DEBUGGER.step()
    if not DEBUGGER.is_live(frame):  # the function is one line
        enter_command(number)
    return DEBUGGER.select_own()


def go_to_call(number):
    return DEBUGGER.run('call {}'.format(number))['what'] == 'call' and DEBUGGER.select_own()


def go_to_last_throw(number, throws):
    """Goes to the last exception that the command throws, of `throws` in the run until its end."""
    DEBUGGER.run('command {}'.format(number))
    left = throws - DEBUGGER.throws()
    return left > 0 and DEBUGGER.go_to_throw(left)['what'] == 'throw' and DEBUGGER.select_own()


def lines_of_command(number, most):
    """Steps through the function that runs the command, for at most `most` steps. Returns the lines before each."""
    frame = enter_command(number)
    lines = []
    while frame is not None and DEBUGGER.is_live(frame) and len(lines) < most:
        lines.append(DEBUGGER.line_of(DEBUGGER.frame()))
        if DEBUGGER.step()['what'] != 'step':
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
    return DEBUGGER.select_own()


def go_to_cause(news, uses_throws, throws):
    """Goes to where the result of a command arose, which has returned by now. Returns a note on that place."""
    number, message = news['command'], news['messageCall']
    if uses_throws and go_to_last_throw(number, throws):
        return 'The last exception that the command threw:'
    if message and go_to_call(message):
        return 'The last message that the command made:'
    if go_to_return(number):
        return 'The end of the command:'
    if go_to_first_line(number):
        return 'The start of the command:'
    raise Missed(news['reason'] + '\nno code of the add-on was running then')


# ---- What the program stopped for

def show_call(news):
    if not DEBUGGER.select_own():
        raise Missed(news['reason'] + '\nno code of an add-on with debug information made this call')
    return news['reason']


def show_command(news):
    go_to_first_line(news['command'])
    return 'command {}: {}'.format(news['command'], news['reason'])


def show_finding(news):
    DEBUG.opened = news['opened']
    throws = DEBUGGER.throws()
    if DEBUGGER.select_own():
        return news['reason']
    if news['opened'] and go_to_call(news['opened']):
        return news['reason'] + 'The add-on has returned by then. The call that started it:'
    return news['reason'] + go_to_cause(news, news['rule'] in RULES_OF_EXCEPTIONS, throws)


def show_failure(news):
    return 'command {}: {}\n{}'.format(news['command'], news['reason'], go_to_cause(news, True, DEBUGGER.throws()))


def show_hang(news):
    DEBUGGER.select_thread(news['thread'])
    if not DEBUGGER.select_own():
        raise Missed(news['reason'] + '\nno code of an add-on is on the stack of its thread')
    return news['reason']


def show_signal(news):
    DEBUGGER.select_own()
    if news['signal'] == 'SIGINT':
        return 'interrupted'
    text = 'the program got the signal ' + news['signal']
    if DEBUG.place not in PLACES_OF_CRASHES + ('failure',):
        DEBUG.status = NOT_REACHED
        text += ' before it reached the place'
    return text


def show_leaving(news):
    if not DEBUGGER.select_own():
        raise Missed('the program ended before it reached the place')
    return 'the add-on ends the process'


def show_end(news):
    raise Missed(news['reason'], CANNOT_RUN if news['status'] == CANNOT_RUN else NOT_REACHED)


def show_exit(news):
    status = '' if news['status'] is None else ' with status {}'.format(news['status'])
    if news['status'] == CANNOT_RUN:
        raise Missed('the macro cannot be run', CANNOT_RUN)
    raise Missed('the program ended' + status + ' before it reached the place')


SHOW = {'call': show_call, 'command': show_command, 'finding': show_finding, 'failure': show_failure,
        'hang': show_hang, 'signal': show_signal, 'leaving': show_leaving, 'end': show_end, 'exit': show_exit}


# ---- What the user sees

class Debug:
    def __init__(self):
        self.place = SETTINGS['place']
        self.opened = 0
        self.status = 0

    def go(self, place):
        """Goes to a place, and shows it."""
        news = DEBUGGER.run(place)
        reason = SHOW[news['what']](news)
        DEBUGGER.release()
        tell(reason)
        DEBUGGER.show()
        if SETTINGS['batch']:
            DEBUGGER.show_all(news['what'] == 'hang')

    def go_again(self, name):
        """Goes to another place of the same finding: `opened` or `seen`. Returns why it cannot."""
        if name == 'opened' and not self.opened:
            return 'There is no finding that a call started.'
        try:
            self.go(self.place if name == 'seen' else 'call {}'.format(self.opened))
        except Missed as missed:
            return 'not reached: ' + str(missed)
        return None

    def start(self):
        try:
            self.go(self.place)
        except Missed as missed:
            self.leave('vexa-standin: debug: not reached: ' + str(missed), missed.status)
        except DEBUGGER.Error as error:
            self.leave('vexa-standin: debug: the debugger cannot run the macro: ' + str(error), CANNOT_RUN)
        if SETTINGS['batch'] and self.status:
            self.leave('vexa-standin: debug: not reached', self.status)
        if self.opened and not SETTINGS['batch']:
            tell("'opened' goes to the call that started this, 'seen' comes back here")

    @staticmethod
    def leave(text, status):
        tell(text)
        DEBUGGER.leave(status)


DEBUG = Debug()
