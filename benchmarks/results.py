"""What was measured for a row, and whether that is what it shall be."""

import figures
from contenders import FLOOR, OURS, PLAIN, SECOND


class Verdict(object):
    """A figure and its limit."""

    def __init__(self, kind, value, limit, reached):
        self.kind, self.value, self.limit, self.reached = kind, value, limit, reached


class Result(object):
    """The figures of a row: those of the contenders, the ratios pair by pair, instructions where they were counted.

    `growth` is how many times the instructions per line the larger input takes, in a row of growth.
    """

    def __init__(self, row, series, instructions=None, growth=None):
        self.row, self.series, self.instructions, self.growth = row, series, instructions or {}, growth
        self.faster, self.over = series.ratios(PLAIN, OURS), series.ratios(OURS, FLOOR)

    def figure(self, name):
        """The contender's median, None where there is none."""
        return self.series.median(name)

    def ratio(self, name, base):
        """The median of the ratios of one contender to another, None where one of them did not take part."""
        ratios = self.series.ratios(name, base)
        return figures.median(ratios) if ratios else None

    def instruction_ratio(self, name, base):
        """The same of the instructions."""
        if name not in self.instructions or base not in self.instructions:
            return None
        return float(self.instructions[name]) / self.instructions[base]

    def verdicts(self):
        """Every limit of the row with the figure that it is for."""
        row, found = self.row, []
        if row.faster is not None:
            value = self.ratio(PLAIN, OURS)
            found.append(Verdict("faster", value, row.faster, value >= row.faster))
        if row.over is not None:
            value = self.ratio(OURS, FLOOR)
            found.append(Verdict("over", value, row.over, value <= row.over))
        if row.itself is not None:
            value = self.figure(OURS)
            found.append(Verdict("itself", value, row.itself, value <= row.itself))
        return found

    def floors(self):
        """The floors that took part."""
        return [name for name in (FLOOR, SECOND) if self.figure(name) is not None]
