# -*- coding: utf-8 -*-
"""The table of all figures as a page in Markdown, with the reasons where something asked for is not reached."""

import figures
from contenders import FLOOR, OURS, PLAIN, SECOND

TITLE = u"""# Benchmarks

Written by `tools/bench`; do not edit. Ours is the compiled module; *plain Python* is the same module as a plug-in author
writes it in Python 2.7 (`benchmarks/plain`, compiled to `.pyo`); *the floor* is the least that any implementation must do,
in C (`benchmarks/floor`), and for each row it is said below what that is.

![How long each takes, ours = 1](benchmarks.svg)
"""
HEAD = u"""| work | ours | plain Python | floor | plain ÷ ours | asked | ours ÷ floor | asked |
|---|--:|--:|--:|--:|--:|--:|--:|
"""
INSTRUCTIONS_HEAD = u"""| work | ours | plain Python | floor | plain ÷ ours | ours ÷ floor |
|---|--:|--:|--:|--:|--:|
"""
METHOD = u"""## How it is measured

All contenders run side by side in processes of their own and take turns, round by round; what is given is the median, and
for the ratios, which are taken pair by pair, the median and in brackets the two values between which the middle half of them
lies. Times are processor time, user and system, so that what else the machine does does not count; the load is measured in a
fresh process each time, since it happens once in a process. Before anything is measured, the results of all contenders are
compared, whole; they have to be the same.

Nothing is transferred: `urllib2.urlopen` gives the ready body. The host's functions are callables in C that give a constant.
Where host calls are not counted, what the same calls take by themselves is measured right after and taken off: for plain
Python a loop in Python that does nothing but these calls, for ours one in C. Files lie %(files)s: what
the module adds to the work on them shows most where no disk is waited for. Instructions are counted by callgrind, of the second
time that a process does the work; what the kernel does is not among them, which is why a floor of system calls is not compared with.

Memory is the highest that the process holds while it reads the catalogue, less what the result holds in the end; the body is
in it, since nobody else holds it. Less than a quarter of a megabyte is not told apart.
"""


def _number(value):
    """Three digits that count."""
    if value is None:
        return u""
    if abs(value) >= 100:
        return u"{:,.0f}".format(value)
    return u"%.*f" % (1 if abs(value) >= 10 else 2 if abs(value) >= 1 else 3, value)


def _figure(result, name):
    value = result.figure(name)
    return u"" if value is None else u"%s %s" % (_number(value), result.row.unit)


def _spread(ratios):
    if not ratios:
        return u""
    low, high = figures.quartiles(ratios)
    return u"%s (%s–%s)" % (_number(figures.median(ratios)), _number(low), _number(high))


def _asked(result, kind, form):
    for verdict in result.verdicts():
        if verdict.kind == kind:
            return form % _number(verdict.limit) + (u" ✓" if verdict.reached else u" ✗")
    return u""


def _line(*cells):
    return u"| %s |\n" % u" | ".join(cells)


def table(results):
    """The table of the times."""
    lines = []
    for result in results:
        ours = _figure(result, OURS) + (u" (%s)" % _asked(result, "itself", u"≤ %s")
                                        if result.row.itself is not None else u"")
        lines.append(_line(result.row.title, ours, _figure(result, PLAIN), _figure(result, FLOOR),
                           _spread(result.faster), _asked(result, "faster", u"≥ %s"),
                           _spread(result.over), _asked(result, "over", u"≤ %s")))
    return HEAD + u"".join(lines)


def _instructions(results):
    lines = []
    for result in results:
        if len(result.instructions) > 1:
            counts = [u"{:,}".format(result.instructions[name]) for name in (OURS, PLAIN, FLOOR)]
            over = None if result.row.in_kernel else result.instruction_ratio(OURS, FLOOR)
            lines.append(_line(*([result.row.title] + counts + [
                _number(result.instruction_ratio(PLAIN, OURS)), _number(over)])))
    return INSTRUCTIONS_HEAD + u"".join(lines)


def _growth(results):
    return u"".join(u"- %s: instructions of ours %s ×\n" % (result.row.title, _number(result.growth))
                    for result in results if result.growth is not None)


def _name(name):
    return u"second floor" if name == SECOND else u"floor"


def _what(result, name):
    return result.row.second if name == SECOND else result.row.floor


def _against_plain(result, verdict):
    said = u"plain Python takes %s times as much as ours, instead of %s." % (
        _number(verdict.value), _number(verdict.limit))
    for name in result.floors():
        ratio = result.ratio(PLAIN, name)
        said += u" It takes %s times as much as the %s itself (%s)%s." % (
            _number(ratio), _name(name), _what(result, name),
            u", so that nothing that does so much can come up to what is asked" if ratio < verdict.limit else u"")
    return said


def _against_floor(result, verdict):
    said = u"ours takes %s times as much as the floor (%s), instead of %s." % (
        _number(verdict.value), result.row.floor, _number(verdict.limit))
    if result.figure(SECOND) is not None:
        said += u" The second floor (%s) takes %s times as much as the floor; ours %s times as much as that." % (
            result.row.second, _number(result.ratio(SECOND, FLOOR)), _number(result.ratio(OURS, SECOND)))
    return said


def _by_itself(result, verdict):
    said = u"%s instead of %s." % (_figure(result, OURS), _number(verdict.limit))
    for name in result.floors():
        said += u" The %s (%s) is at %s." % (_name(name), _what(result, name), _figure(result, name))
    if result.figure(PLAIN) is not None:
        said += u" Plain Python is at %s." % _figure(result, PLAIN)
    if result.growth is not None:
        said += u" The instructions of ours are at %s %s: what grows is what memory costs, not the work." % (
            _number(result.growth), result.row.unit)
    return said


REASONS = {"faster": _against_plain, "over": _against_floor, "itself": _by_itself}


def _reason(result, verdict):
    more = u" " + result.row.more if result.row.more else u""
    return REASONS[verdict.kind](result, verdict) + more


def _missed(results):
    said = [u"- **%s**: %s\n" % (result.row.title, _reason(result, verdict))
            for result in results for verdict in result.verdicts() if not verdict.reached]
    return u"".join(said) or u"Everything that is asked for is reached.\n"


def _floors(results):
    return u"".join(u"- %s: %s.\n" % (result.row.title, result.row.floor) for result in results if result.row.floor)


def page(results, machine, files, size):
    """The page; `size` is that of the stripped module in bytes."""
    return (TITLE + u"\n" + table(results)
            + u"\nThe stripped module has {:,} bytes; {:,} are allowed.\n".format(*size)
            + u"\n## What is not reached, and how near it came\n\n" + _missed(results)
            + u"\n## Instructions\n\n" + _instructions(results) + u"\n" + _growth(results)
            + u"\n## The floors\n\n" + _floors(results)
            + u"\n" + METHOD % {"files": files}
            + u"\n## The machine\n\n" + u"".join(u"- %s\n" % line for line in machine)).encode("utf-8")
