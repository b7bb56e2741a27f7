"""The key maps and who is bound to them.

A key goes to every binding in order of priority (the lower first, and among
equals the one bound first) until one of them returns something but 0. What a
binding gets is not the key but the action that the key map gives it in the
binding's context.
"""

import bisect
import xml.etree.cElementTree as ElementTree

from native.log import log

MAKE, BREAK, REPEAT, LONG = "mbrl"


class Binding(object):
    """One function bound to one context; knows which key it saw going down last."""

    def __init__(self, context, prio, function):
        self.context = context
        self.prio = prio
        self.function = function
        self.made_key = None

    def sees(self, key, flag):
        """A key that went down before the binding came must come up without it."""
        if flag == MAKE:
            self.made_key = key
        return self.made_key == key


class eActionMap(object):
    """The one map of keys to actions."""

    _instance = None

    def __init__(self):
        self._bindings = []
        self._keys = {}

    @classmethod
    def getInstance(cls):
        """The host's own map."""
        if cls._instance is None:
            cls._instance = cls()
        return cls._instance

    def bindAction(self, context, prio, function):
        """Call `function(context, action)` for keys of `context`."""
        place = bisect.bisect_right([each.prio for each in self._bindings], prio)
        self._bindings.insert(place, Binding(context, prio, function))

    def unbindAction(self, context, function):
        """Take one binding back."""
        for each in self._bindings:
            if each.context == context and each.function == function:
                self._bindings.remove(each)
                return
        log("unbindAction with illegal python reference")

    def bindKey(self, context, key, flags, action):
        """In `context`, `key` means `action`, for each kind of event in `flags`."""
        for flag in flags:
            self._keys.setdefault((context, key, flag), []).append(action)

    def keyPressed(self, key, flag):
        """Hand one key event on; returns what the binding that handled it returned, else 0."""
        calls = []
        for each in self._bindings:
            if each.sees(key, flag):
                for action in self._keys.get((each.context, key, flag), ()):
                    calls.append((each, action))
        for binding, action in calls:
            result = binding.function(binding.context, action)
            if result:
                return result
        return 0


def loadKeymap(path):
    """Read a key map file: maps with their context, in them keys with their action and flags."""
    actions = eActionMap.getInstance()
    for context in ElementTree.parse(path).getroot().findall("map"):
        for key in context.findall("key"):
            actions.bindKey(context.get("context"), key.get("id"), key.get("flags"),
                            key.get("mapto"))
