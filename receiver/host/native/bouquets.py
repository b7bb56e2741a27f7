"""The bouquets of a configuration folder, read and put in order as the host does it."""

import os
import re

from native import bouquetfile
from native.files import read_lines, replace_file
from native.log import log

_USER_BOUQUET = re.compile(r"userbouquet.*\.(tv|radio)$", re.DOTALL)


class Bouquets(object):
    """All lists of one folder by the names of their files."""

    def __init__(self, folder):
        self.folder = folder
        self.by_file = {}

    def reload(self):
        """Read both root files and all that they refer to, mending the root files where needed."""
        self.by_file = {}
        roots = dict((kind, self._root_lines(kind)) for kind in bouquetfile.KINDS)
        unreferenced = self._unreferenced(roots)
        for kind in bouquetfile.KINDS:
            self._mend_root(kind, roots[kind], unreferenced[kind])
            self._load(bouquetfile.root_name(kind))

    def root(self, kind):
        """The root list of a kind."""
        return self.by_file[bouquetfile.root_name(kind)]

    def get(self, file_name):
        """The list in a file that some root or bouquet refers to, or None."""
        return self.by_file.get(file_name)

    def _path(self, file_name):
        return os.path.join(self.folder, file_name)

    def _root_lines(self, kind):
        """The lines of a root file; None when there is none."""
        return read_lines(self._path(bouquetfile.root_name(kind)))

    def _unreferenced(self, roots):
        referenced = set()
        for lines in roots.values():
            referenced.update(bouquetfile.parse(lines or []).file_names())
        found = dict((kind, []) for kind in bouquetfile.KINDS)
        for name in self._user_bouquet_files():
            if name not in referenced:
                found[_USER_BOUQUET.match(name).group(1)].append(name)
        return found

    def _user_bouquet_files(self):
        try:
            names = sorted(os.listdir(self.folder))
        except OSError as error:
            log("cannot read %s: %s" % (self.folder, error.strerror))
            return []
        return [name for name in names
                if _USER_BOUQUET.match(name) and os.path.isfile(self._path(name))]

    def _mend_root(self, kind, lines, file_names):
        """A root file must exist, hold every user bouquet, and hold at least one."""
        for name in file_names:
            log("adding %s, which no list refers to" % name)
        if not file_names and not bouquetfile.parse(lines or []).entries:
            file_names = [self._favourites(kind)]
        if not file_names:
            return
        references = [bouquetfile.reference_to(name, kind) for name in file_names]
        text = bouquetfile.with_references(lines or [], references, bouquetfile.ROOT_TITLES[kind])
        replace_file(self._path(bouquetfile.root_name(kind)), text)

    def _favourites(self, kind):
        name = "userbouquet.favourites.%s" % kind
        if not os.path.exists(self._path(name)):
            replace_file(self._path(name), "#NAME %s\n" % bouquetfile.FAVOURITES_TITLES[kind])
        return name

    def _load(self, file_name):
        """One file and those that it refers to; each is read once, so that a circle ends."""
        bouquet = bouquetfile.read(self._path(file_name)) or bouquetfile.Bouquet()
        self.by_file[file_name] = bouquet
        for name in bouquet.file_names():
            if name not in self.by_file:
                self._load(name)
