"""A list as rows of many cells, laid out by the skin.

The text of the skin's element is an expression for a dict: "template" holds
the cells, "fonts" the fonts that they count, "itemHeight" the height of a row;
"templates" may hold several by name, each (height, cells).
"""

from Components import MultiContent
from Components.Converter.StringList import StringList
import enigma


class TemplatedMultiContent(StringList):
    """Turns a list source into the content of a listbox with cells."""

    def __init__(self, arguments):
        StringList.__init__(self, arguments)
        names = dict(vars(MultiContent))
        names.update((name, value) for name, value in vars(enigma).items() if not name.startswith("__"))
        self.template = eval(arguments.strip(), {}, names)
        assert "fonts" in self.template
        assert "template" in self.template or "default" in self.template["templates"]
        if "template" in self.template:
            self.template["templates"] = {
                "default": (self.template["itemHeight"], self.template["template"])}
        self.active_style = None

    def changed(self, what):
        """Fill the content anew, unless only another template was chosen."""
        if self.content is None:
            self.content = enigma.eListboxPythonMultiContent()
            for index, font in enumerate(self.template["fonts"]):
                self.content.setFont(index, font)
        if what[0] != self.CHANGED_SPECIFIC or what[1] != "style":
            self.content.setList(self.source.list)
        self.setTemplate()
        for downstream in list(self.downstream_elements):
            downstream.changed(what)

    def setTemplate(self):
        """Use the template that the source asks for, else the default one."""
        if self.source.style == self.active_style:
            return
        templates = self.template["templates"]
        height, cells = templates.get(self.source.style, templates["default"])[:2]
        self.content.setItemHeight(height)
        self.content.setTemplate(cells)
        self.active_style = self.source.style
