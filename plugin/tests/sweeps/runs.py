"""Runs of operations: what comes of one, and whether it leaves references behind."""

import contextlib
import gc
import sys
import types

import points
import recording_host

HOST = recording_host.HOST
SETTLING = 4
references = getattr(sys, "gettotalrefcount", lambda: 0)


@contextlib.contextmanager
def printing_to(output):
    """Has `output` be the standard output."""
    real, sys.stdout = sys.stdout, output
    try:
        yield
    finally:
        sys.stdout = real


class Run(object):
    """One run of an operation that was prepared, and what came of it.

    The n-th point of the kind fails for `failing`: "call" for what the host records, else the kinds of `points`.
    """

    def __init__(self, world, operation, prepared, kind="host", failing=0, error=None, further=False):
        self.error = error
        if kind == "call":
            HOST.fail_at, HOST.error = failing - 1, error
            kind, failing = "host", 0
        with printing_to(world.output):
            self.take(points.run(prepared[0], prepared[1], kind, failing, further, error))
        HOST.fail_at = HOST.error = None
        self.calls = map(without_screens, HOST.calls)
        self.loaded = sorted(getattr(sys.modules.get("Morvesk"), "__dict__", []))
        operation.finish(world)

    def take(self, outcome):
        """Notes what came of the run; keeps no traceback, whose frames would keep this run."""
        self.raised, value, self.counted, self.failed, self.about = outcome
        self.is_the_error, self.entries, self.widgets, self.errno = False, [], (), None
        if self.raised:
            kind, raised, trace = value
            self.value = (kind, str(raised))
            self.errno = getattr(raised, "errno", None)
            self.is_the_error = raised is self.error
            self.entries = entries(trace)
        elif isinstance(value, types.ModuleType):
            self.value = sorted((name, getattr(member, "__module__", None)) for name, member in vars(value).items())
        else:
            self.value = without_screens(value)
            if isinstance(value, recording_host.Screen):
                self.widgets = sorted(value)

    @property
    def outcome(self):
        """What a caller sees."""
        return self.raised, self.value


def without_screens(value):
    """A value with words in the place of screens and what belongs to them: each construction makes another one."""
    if type(value) in (list, tuple):
        return type(value)([without_screens(item) for item in value])
    if type(value) is dict:
        return dict((key, without_screens(item)) for key, item in value.items())
    if isinstance(value, recording_host.Screen):
        return "a screen"
    if isinstance(value, recording_host.Console):
        return "a console"
    if isinstance(value, types.MethodType):
        return "a screen's " + value.__name__
    if isinstance(value, recording_host.Made):
        return without_screens(value.made)
    return value


def entries(trace):
    """The names of the module's functions in a traceback, outermost first."""
    names = []
    while trace is not None:
        code = trace.tb_frame.f_code
        if code.co_filename.startswith("plugin/src/") or code.co_filename.endswith("plain/Morvesk.py"):
            names.append(code.co_name)
        trace = trace.tb_next
    return names


def left_over(world, operation, attempt):
    """Has `attempt` run what is prepared; gives the number of references that it leaves behind each time, and what is
    prepared for the next run.

    The first attempts may fill caches of the interpreter.
    """
    # Both hold an integer at all times, as each is an object with references of its own.
    before = after = 0
    prepared = operation(world)
    for _ in range(SETTLING):
        before = references()
        attempt(prepared)
        prepared = operation(world)
        after = references()
        if before == after:
            break
        prepared = None
        operation.finish(world)
        gc.collect()
        prepared = operation(world)
    return after - before, prepared
