"""The service database and the lists made of it."""

import time

from native import bouquetfile
from native.bouquets import Bouquets
from native.env import config_folder
from native.files import replace_file
from native.log import log
from native.reference import eServiceReference
from native.servicefile import ServiceFile
from native.summary import describe


class eDVBDB(object):
    """All transponders, services and bouquets that the receiver knows."""

    _instance = None

    def __init__(self):
        self._known = ServiceFile()
        self._bouquets = Bouquets(config_folder())

    @classmethod
    def getInstance(cls):
        """The host's own database."""
        if cls._instance is None:
            cls._instance = cls()
        return cls._instance

    def reloadServicelist(self):
        """Forget all services, then load the receiver's own file; known transponders stay."""
        self._known.services = {}
        self.loadServicelist(config_folder() + "lamedb")

    def loadServicelist(self, path):
        """Add what a service file holds; one that cannot be read changes nothing."""
        if not isinstance(path, str):
            raise TypeError("in method 'eDVBDB_loadServicelist', argument 2 of type 'char const *'")
        path = path.partition("\0")[0]
        begin = time.time()
        if self._known.load(path):
            log("loaded %s: %d transponders, %d services in %.3f s" % (
                path, len(self._known.transponders), len(self._known.services), time.time() - begin))

    def saveServicelist(self):
        """Write the receiver's own file in format 4, and the same as "lamedb5" in format 5."""
        replace_file(config_folder() + "lamedb", self._known.format_4())
        replace_file(config_folder() + "lamedb5", self._known.format_5())

    def reloadBouquets(self):
        """Read all bouquets anew."""
        self._bouquets.folder = config_folder()
        self._bouquets.reload()

    def bouquet(self, reference):
        """The list that a reference opens, or None."""
        name = bouquetfile.file_name_of(reference)
        return self._bouquets.get(name) if name else None

    def service_name(self, reference):
        """The name of a service, as brought along by its reference or as stored; "" when unknown."""
        if reference.getName():
            return reference.getName()
        kind, sid, tsid, onid, namespace = reference.data[:5]
        stored = self._known.services.get((sid, namespace, tsid, onid, kind))
        return stored.name if stored else ""

    def summary(self):
        """What is loaded, in numbers, in the form of `native.summary.summarise`."""
        return {
            "transponders": len(self._known.transponders),
            "services": len(self._known.services),
            "bouquets": [each for kind in bouquetfile.KINDS for each in self._described(kind)],
        }

    def _described(self, kind):
        root = self._bouquets.get(bouquetfile.root_name(kind)) or bouquetfile.Bouquet()
        return [describe(kind, name, self._bouquets.get(name)) for name in root.file_names()]


class _Information(object):
    """What is known about services without tuning to them."""

    def getName(self, reference):
        """The name of a service, or the title of a bouquet."""
        bouquet = eDVBDB.getInstance().bouquet(reference) if reference.is_bouquet() else None
        return bouquet.title if bouquet else eDVBDB.getInstance().service_name(reference)


class _Listing(object):
    """The entries of one list, as they stood when it was asked for."""

    def __init__(self, entries):
        self._entries = list(entries)
        self._next = 0

    def getContent(self, form, sort=False):
        """Rows of what `form` names, one letter an item: N name, S text, R reference."""
        information = _Information()
        columns = {"N": information.getName, "S": eServiceReference.toString,
                   "C": eServiceReference.toCompareString, "R": eServiceReference}
        rows = [tuple(columns[letter](each) for letter in form) for each in self._entries]
        if len(form) == 1:
            rows = [row[0] for row in rows]
        return sorted(rows) if sort else rows

    def getNext(self):
        """The next entry; an invalid reference behind the last."""
        if self._next == len(self._entries):
            return eServiceReference()
        self._next += 1
        return eServiceReference(self._entries[self._next - 1])


class eServiceCenter(object):
    """Lists and information about services."""

    _instance = None

    @classmethod
    def getInstance(cls):
        """The host's own."""
        if cls._instance is None:
            cls._instance = cls()
        return cls._instance

    def list(self, reference):
        """The entries of a bouquet or a root list, or None when there is no such list."""
        bouquet = eDVBDB.getInstance().bouquet(reference)
        return None if bouquet is None else _Listing(bouquet.entries)

    def info(self, reference):
        """Information about a service, or None for the reference to nothing."""
        return _Information() if reference.valid() else None
