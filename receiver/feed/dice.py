# -*- coding: utf-8 -*-
"""Chance that falls the same everywhere: the same seed gives the same throws with any interpreter on any machine."""

_BITS_64 = 0xFFFFFFFFFFFFFFFF


class Dice(object):
    """Throws that depend on nothing but the seed's text and the throws before."""

    def __init__(self, seed):
        self._state = _digest(seed) or 1

    def below(self, limit):
        """A number from 0 up to, but not including, the limit."""
        self._state ^= self._state >> 12
        self._state = (self._state ^ (self._state << 25)) & _BITS_64
        self._state ^= self._state >> 27
        return int((((self._state * 0x2545F4914F6CDD1D) & _BITS_64) >> 33) % limit)

    def between(self, lowest, highest):
        """A number from the lowest to the highest, both included."""
        return lowest + self.below(highest - lowest + 1)

    def pick(self, items):
        """One item of a list."""
        return items[self.below(len(items))]

    def percent(self, chance):
        """True in that many cases of a hundred."""
        return self.below(100) < chance


def _digest(text):
    """The text's 64 bits by the Fowler-Noll-Vo sum."""
    number = 0xCBF29CE484222325
    for char in text:
        number = ((number ^ ord(char)) * 0x100000001B3) & _BITS_64
    return number
