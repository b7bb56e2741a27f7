# -*- coding: utf-8 -*-
"""What a receiver can receive: services on transponders of places."""

from feed.description import orbital_position

TYPES = {"tv": 1, "radio": 2, "hd": 25, "uhd": 31}


class Transponder(object):
    """One transponder: its key in a service file, and its tuning numbers in a service file and in a satellites file."""

    def __init__(self, place, tsid, frequency):
        self.place = place
        self.namespace = 0
        self.tsid = tsid
        self.onid = place.onid
        self.frequency = frequency
        self.tuning = ""
        self.attributes = []


class Service(object):
    """One service of a transponder."""

    def __init__(self, transponder, sid, kind, name, provider, language, fields):
        self.transponder = transponder
        self.sid = sid
        self.kind = kind
        self.type = TYPES[kind]
        self.name = name
        self.provider = provider
        self.language = language
        self.fields = fields

    @property
    def place(self):
        """Where it is received."""
        return self.transponder.place


class Place(object):
    """One orbital position, or the terrestrial or the cable network."""

    def __init__(self, key, title):
        self.key = key
        self.title = title
        self.position = orbital_position(key)
        self.onid = 0
        self.own_namespaces = False
        self.languages = []
        self.providers = []
        self.transponders = []
        self.services = []

    @property
    def signed_position(self):
        """Tenths of a degree, the west negative."""
        return self.position - 3600 if self.position > 1800 else self.position
