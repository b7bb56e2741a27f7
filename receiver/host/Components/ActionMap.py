"""What a screen does on which action."""

from enigma import eActionMap


class ActionMap:
    """Bound to its contexts while its screen gets the keys."""

    def __init__(self, contexts=[], actions={}, prio=0):
        self.contexts = contexts
        self.actions = actions
        self.prio = prio
        self.p = eActionMap.getInstance()
        self.bound = False
        self.exec_active = False
        self.enabled = True

    def setEnabled(self, enabled):
        """Switch the whole map on or off."""
        self.enabled = enabled
        self.checkBind()

    def doBind(self):
        """Bind each context in its order."""
        for context in self.contexts:
            self.p.bindAction(context, self.prio, self.action)
        self.bound = True

    def doUnbind(self):
        """Take all bindings back."""
        for context in self.contexts:
            self.p.unbindAction(context, self.action)
        self.bound = False

    def checkBind(self):
        """Be bound while the screen gets the keys and the map is on."""
        wanted = self.exec_active and self.enabled
        if wanted and not self.bound:
            self.doBind()
        elif self.bound and not wanted:
            self.doUnbind()

    def execBegin(self):
        """The screen gets the keys."""
        self.exec_active = True
        self.checkBind()

    def execEnd(self):
        """The screen gets no more keys."""
        self.exec_active = False
        self.checkBind()

    def action(self, context, action):
        """0 hands the key on; a function that returns None has handled it."""
        if action not in self.actions:
            return 0
        result = self.actions[action]()
        return 1 if result is None else result

    def destroy(self):
        """The screen is destroyed."""


class NumberActionMap(ActionMap):
    """Hands the number to the functions of the actions "0" to "9"."""

    def action(self, context, action):
        """As in an `ActionMap`, but for digits."""
        if action not in tuple("0123456789") or action not in self.actions:
            return ActionMap.action(self, context, action)
        result = self.actions[action](int(action))
        return 1 if result is None else result
