"""Sources, converters and renderers, connected into chains."""


class ElementError(Exception):
    """An element was used in a way that it does not offer."""


class Element(object):
    """One link of a chain: gets changes from its source, hands them downstream."""

    CHANGED_DEFAULT, CHANGED_ALL, CHANGED_CLEAR, CHANGED_SPECIFIC, CHANGED_POLL = range(5)

    SINGLE_SOURCE = True

    def __init__(self):
        self.downstream_elements = []
        self.master = None
        self.source = None

    def connect(self, upstream):
        """Take what is shown from `upstream`."""
        assert not self.SINGLE_SOURCE or self.source is None
        self.source = upstream
        upstream.connectDownstream(self)
        self.changed((self.CHANGED_DEFAULT,))

    def connectDownstream(self, downstream):
        """The first one connected is the master: its cursor is the cursor."""
        self.downstream_elements.append(downstream)
        if self.master is None:
            self.master = downstream

    def disconnectAll(self):
        """Let go of the source; one that nobody is left of lets go of its own."""
        if self.source is not None:
            self.source.disconnectDownstream(self)
            self.source = None

    def disconnectDownstream(self, downstream):
        """`downstream` shows this no more."""
        self.downstream_elements.remove(downstream)
        if self.master is downstream:
            self.master = None
        if not self.downstream_elements:
            self.disconnectAll()

    def changed(self, *what):
        """Hand a change on."""
        for downstream in list(self.downstream_elements):
            downstream.changed(*what)

    def entry_changed(self, index):
        """Hand the change of one row on."""
        for downstream in list(self.downstream_elements):
            downstream.entry_changed(index)

    def execBegin(self):
        """The screen gets the keys."""

    def execEnd(self):
        """The screen gets no more keys."""

    def onShow(self):
        """The screen is shown."""

    def onHide(self):
        """The screen is hidden."""

    def destroy(self):
        """The screen is destroyed."""
