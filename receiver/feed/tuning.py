# -*- coding: utf-8 -*-
"""The tuning numbers of transponders, as a service file and a satellites file have them."""

_POLARISATIONS = {"H": 0, "V": 1, "L": 2, "R": 3}
_FECS = {"1/2": 1, "2/3": 2, "3/4": 3, "5/6": 4, "7/8": 5, "8/9": 6, "3/5": 7, "4/5": 8, "9/10": 9}
_SYSTEMS = {"S": 0, "S2": 1}
_CABLE_MODULATIONS = {"64QAM": 3, "128QAM": 4, "256QAM": 5}


def kilohertz(text):
    """The frequency of a text in MHz."""
    return int(round(float(text) * 1000))


def tune(transponder, *numbers):
    """Sets a transponder's tuning numbers; what is expected depends on its place:

    a satellite's polarisation, symbol rate in thousands, FEC and system, as in "V 27500 3/4 S2"; a cable's symbol rate
    and modulation, as in "6900 256QAM"; nothing for a terrestrial one. Raises KeyError, TypeError or ValueError.
    """
    if transponder.place.key == "terrestrial":
        _tune_terrestrial(transponder, *numbers)
    elif transponder.place.key == "cable":
        _tune_cable(transponder, *numbers)
    else:
        _tune_satellite(transponder, *numbers)


def _tune_satellite(transponder, polarisation, symbol_rate, fec, system):
    rate = int(symbol_rate) * 1000
    numbers = [transponder.frequency, rate, _POLARISATIONS[polarisation], _FECS[fec],
               transponder.place.signed_position, 2, 0]
    if system == "S2":
        numbers += [1, 2, 0, 2]
    transponder.tuning = "s " + ":".join(str(each) for each in numbers)
    transponder.attributes = [
        ("frequency", transponder.frequency), ("symbol_rate", rate), ("polarization", _POLARISATIONS[polarisation]),
        ("fec_inner", _FECS[fec]), ("system", _SYSTEMS[system]), ("modulation", _SYSTEMS[system] + 1)]


def _tune_cable(transponder, symbol_rate, modulation):
    transponder.tuning = "c %d:%d:2:%d:0:0:0" % (
        transponder.frequency, int(symbol_rate) * 1000, _CABLE_MODULATIONS[modulation])


def _tune_terrestrial(transponder):
    transponder.tuning = "t %d:0:5:5:3:2:4:4:2:0:1:0" % (transponder.frequency * 1000)
