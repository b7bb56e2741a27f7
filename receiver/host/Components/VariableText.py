"""A text that can be set before there is anything to show it on."""


class VariableText(object):
    """Keeps a text and shows it on the instance."""

    def __init__(self):
        self.message = ""

    def setText(self, text):
        """Set the text."""
        self.message = text
        if self.instance is not None:
            self.instance.setText(self.message or "")

    def getText(self):
        """The text."""
        return self.message

    text = property(getText, setText)

    def postWidgetCreate(self, instance):
        """Show the text on the instance that has been made."""
        instance.setText(self.message or "")
