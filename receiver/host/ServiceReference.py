"""A service reference with what can be asked about it."""

from enigma import eServiceCenter, eServiceReference


class ServiceReference(eServiceReference):
    """Wraps a reference, or the text of one, in `ref`."""

    def __init__(self, ref, reftype=eServiceReference.idInvalid, flags=0, path=""):
        if reftype != eServiceReference.idInvalid:
            self.ref = eServiceReference(reftype, flags, path)
        elif isinstance(ref, eServiceReference):
            self.ref = ref
        else:
            self.ref = eServiceReference(ref or "")
        eServiceReference.__init__(self, self.ref)
        self.serviceHandler = eServiceCenter.getInstance()

    def __str__(self):
        return self.ref.toString()

    def getServiceName(self):
        """The name of the service, "" when nobody knows it."""
        info = self.info()
        return info.getName(self.ref) if info is not None else ""

    def info(self):
        """What is known about the service."""
        return self.serviceHandler.info(self.ref)

    def list(self):
        """What the bouquet holds."""
        return self.serviceHandler.list(self.ref)

    def getType(self):
        """The reference's first number."""
        return self.ref.type

    def getFlags(self):
        """The reference's second number."""
        return self.ref.flags
