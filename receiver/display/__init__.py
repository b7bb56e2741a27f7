# -*- coding: utf-8 -*-
"""The displays of the virtual receiver, and what they may know of it: keys in, the screen's state out.

A display is handed two things:

receiver
    press(key)           one key of the remote control, a name out of KEYS
    on_change(callback)  callback() is called on the main loop when anything on the screen has changed
    state()              what is on the screen, see below
    crashed              None, or the traceback that ended the receiver

loop
    add_reader(fd, callback), remove_reader(fd)
    call_later(seconds, callback) -> handle, cancel(handle)
    stop()               leaves the receiver

and offers open() and close(). open() is called before the first screen shows, close() when the loop has ended, however
it ended; between the two the display calls loop.stop() to leave, at the latest when state()["closed"] is true.

state() gives plain data that any encoding can carry (dicts, lists, byte strings of UTF-8, ints, None), so that a
display in another process, such as a browser, needs nothing else:

    {"tv": {"bouquet": "Favourites (TV)", "services": ["One", "Two"], "selected": 0},
     "dialogs": [
         {"kind": "screen", "name": "Morvesk", "title": "...", "rows": [["text", "second text", "picture"], ...],
          "selected": 0, "captions": {"red": "Exit", "green": "Ok"}},
         {"kind": "message", "type": "error", "title": "...", "text": "..."},
         {"kind": "choice", "title": "...", "text": "...", "choices": ["...", "..."], "selected": 0}],
     "closed": False,
     "busy": True}

The dialogs stand in the order in which they were opened: the last one has the keys. A message that asks something has
"choices" and "selected", too. "busy" is true while a shell
command runs or something is still to be done at once.
"""

DIGITS = tuple("0123456789")
KEYS = ("up", "down", "left", "right", "ok", "exit", "red", "green") + DIGITS

