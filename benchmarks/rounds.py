"""Rounds: every contender once, in turn, so that what the machine does meanwhile meets all of them."""

import figures
from processes import Process, of_all


class Different(Exception):
    """The contenders did not do the same work."""


class Series(object):
    """A figure of each contender, round by round."""

    def __init__(self, names):
        self.values = dict((name, []) for name in names)

    def add(self, name, value):
        """Notes the contender's figure of this round."""
        self.values[name].append(value)

    def median(self, name):
        """The contender's median, None where it did not take part."""
        return figures.median(self.values[name]) if name in self.values else None

    def ratios(self, name, base):
        """How many times the figure of `base` the figure of `name` was, round by round."""
        if name not in self.values or base not in self.values:
            return []
        return figures.ratios(self.values[name], self.values[base])


def _in_turn(contestants, number):
    shift = number % len(contestants)
    return contestants[shift:] + contestants[:shift]


def _prepare(processes, work, arguments):
    """Everybody does the work once before anything is measured, and it has to be the same work."""
    number = [process.ask("prepare", work, arguments) for process in processes][0]
    digests = dict((process.name, process.ask("digest", number)) for process in processes)
    if len(set(digests.values())) > 1:
        raise Different("%s%r: the results of the contenders differ: %r" % (work, tuple(arguments), digests))
    return number


def times(place, names, works, rounds, generations, order="time"):
    """Runs works, pairs of name and arguments, so many rounds in so many generations of fresh processes.

    Gives a Series for each of the works; in every round the works follow one another in the same processes. The first
    time in a process is not counted.
    """
    series = [Series(names) for _ in works]
    for _ in range(generations):
        with of_all(place, names) as processes:
            numbers = [_prepare(processes, *work) for work in works]
            for process in processes:
                for index in numbers:
                    process.ask(order, index)
            for number in range(rounds):
                for process in _in_turn(processes, number):
                    for index, one in zip(numbers, series):
                        one.add(process.name, process.ask(order, index))
    return series


def fresh(place, names, rounds, *order):
    """Has an order carried out by a fresh process each time."""
    series = Series(names)
    for number in range(rounds):
        for name in _in_turn(list(names), number):
            with Process(place, name) as process:
                series.add(name, process.ask(*order))
    return series
