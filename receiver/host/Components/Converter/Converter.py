"""What every converter has."""

from Components.Element import Element


class Converter(Element):
    """A link in the middle of a chain, made by the skin with the text of its element."""

    def __init__(self, arguments):
        Element.__init__(self)
        self.converter_arguments = arguments

    def __repr__(self):
        return "%s(%s)" % (type(self), self.converter_arguments)
