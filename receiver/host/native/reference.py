"""References to services, bouquets and markers: "TYPE:FLAGS:eight hex numbers:PATH:NAME"."""


class eServiceReference(object):
    """What names a service; compared by all of it but the name."""

    idInvalid = -1
    idStructure = 0
    idDVB = 1
    idFile = 2
    idUser = 0x1000
    idServiceMP3 = 4097

    noFlags = 0
    isDirectory = 1
    mustDescent = 2
    canDescent = 4
    flagDirectory = 7
    shouldSort = 8
    hasSortKey = 16
    sort1 = 32
    isMarker = 64
    isGroup = 128
    isNumberedMarker = 256
    isInvisible = 512

    def __init__(self, *arguments):
        self.type = self.idInvalid
        self.flags = 0
        self.data = [0] * 8
        self.path = ""
        self.name = ""
        if len(arguments) == 1 and isinstance(arguments[0], eServiceReference):
            self._copy(arguments[0])
        elif len(arguments) == 1 and isinstance(arguments[0], str):
            self._parse(arguments[0])
        elif len(arguments) == 3:
            self.type, self.flags, self.path = arguments
        elif arguments:
            raise TypeError("eServiceReference takes a reference, its text, or type, flags, path")

    def _copy(self, other):
        self.type, self.flags = other.type, other.flags
        self.data = list(other.data)
        self.path, self.name = other.path, other.name

    def _parse(self, text):
        fields = text.split(":", 10)
        try:
            kind = int(fields[0])
            flags = int(fields[1])
            data = [int(field or "0", 16) for field in fields[2:10]]
        except (ValueError, IndexError):
            return
        self.type, self.flags = kind, flags
        self.data[:len(data)] = data
        if len(fields) > 10:
            self.path, self.name = self._split_path(fields[10])

    @staticmethod
    def _split_path(text):
        """The name follows the path's first colon that is not in a bouquet's file name."""
        quoted = text.rfind('"') + 1 if text.startswith("FROM BOUQUET") else 0
        head, _, name = text[quoted:].partition(":")
        return text[:quoted] + head, name

    def valid(self):
        """False for the reference to nothing."""
        return self.type != self.idInvalid

    def toString(self):
        """The reference as text."""
        text = self.toCompareString() + self.path
        return text + ":" + self.name if self.name else text

    def toCompareString(self):
        """The reference's numbers as text."""
        if not self.valid():
            return ""
        return "%d:%d:%s:" % (self.type, self.flags, ":".join("%X" % each for each in self.data))

    __str__ = toString

    def getPath(self):
        """A bouquet's query, a stream's address."""
        return self.path

    def setPath(self, path):
        """Set what `getPath` returns."""
        self.path = path

    def getName(self):
        """The name that the reference brings along; often empty."""
        return self.name

    def setName(self, name):
        """Set what `getName` returns."""
        self.name = name

    def getData(self, index):
        """One of the eight numbers; 0 when there is none of that index."""
        return self.data[index] if 0 <= index < 8 else 0

    getUnsignedData = getData

    def setData(self, index, value):
        """Set one of the eight numbers."""
        self.data[index] = value

    def is_marker(self):
        """True for the entries that are headings, not services."""
        return bool(self.flags & self.isMarker)

    def is_bouquet(self):
        """True for entries that hold a list of their own."""
        return self.flags & self.flagDirectory == self.flagDirectory

    def _identity(self):
        return self.type, self.flags, tuple(self.data), self.path

    def __eq__(self, other):
        return isinstance(other, eServiceReference) and self._identity() == other._identity()

    def __ne__(self, other):
        return not self == other

    def __lt__(self, other):
        return self._identity() < other._identity()

    def __hash__(self):
        return hash(self._identity())
