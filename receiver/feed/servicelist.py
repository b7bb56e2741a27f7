# -*- coding: utf-8 -*-
"""A service list: services, and the bouquets that present them."""

KINDS = ("tv", "radio")


class Marker(object):
    """A heading between the services of a bouquet."""

    def __init__(self, text):
        self.text = text


class Bouquet(object):
    """A user bouquet: services and markers under a title."""

    def __init__(self, kind, stem, title):
        self.kind = kind
        self.file_name = "userbouquet.%s.%s" % (stem, kind)
        self.title = title
        self.entries = []

    def services(self):
        """The entries without the markers."""
        return [each for each in self.entries if not isinstance(each, Marker)]


class ServiceList(object):
    """A service list with all that the catalogue and its archive tell about it."""

    def __init__(self):
        self.author = self.date = self.description = self.archive = ""
        self.page = None
        self.withdrawn = False
        self.services = []
        self.bouquets = []
        self.styles = set()
        self.extras = []
        self.lacks = []
        self.mentions = []
        self.settings = []

    def transponders(self):
        """The transponders of the services, each once."""
        seen, result = set(), []
        for service in self.services:
            if id(service.transponder) not in seen:
                seen.add(id(service.transponder))
                result.append(service.transponder)
        return result

    def places(self):
        """The places of the services, each once."""
        result = []
        for service in self.services:
            if service.place not in result:
                result.append(service.place)
        return result

    def bouquets_of(self, kind):
        """The TV or the radio bouquets."""
        return [each for each in self.bouquets if each.kind == kind]
