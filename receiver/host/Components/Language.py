"""The translation function of the interpreter's built-ins."""

import __builtin__


def install(catalogue=None):
    """Have `_` translate the texts of `catalogue` and leave all others as they are."""
    texts = dict(catalogue or {})
    __builtin__._ = lambda text: texts.get(text, text)
