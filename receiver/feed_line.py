# -*- coding: utf-8 -*-
"""The line of a receiver's feed configuration that leads it to a given download area.

The receiver makes the address of the download area from the feed's address by replacing every "all" in it, so an
address that holds the word anywhere but at its end leads somewhere else. Better said before the receiver starts than
found out from an error row.
"""

from display.characters import quoted

CATALOGUE = "qel_settings.download"
FEED_PATH = "/feeds/all"
DOWNLOAD_PATH = "/feeds/settings_download/"
_WORD = "all"
_FOLDER = "settings_download/"


class BadAddress(Exception):
    """An address that the receiver cannot be led to; its text says why and what to do."""


def is_address(text):
    """Whether the text is meant as an address on the network, not as a folder."""
    return "://" in text


def feed_line(feed_address):
    """The line for the address of a feed, with its line end, without which the receiver would read another address."""
    return "src/gz Qel-all %s\n" % feed_address


def feed_address(text):
    """The feed's address for an address that somebody gave: of the feed, its download area or the catalogue in it."""
    scheme = text.split("://")[0].lower()
    if scheme not in ("http", "https"):
        raise BadAddress("the feed's address %s is no http:// or https:// address" % quoted(text))
    if len(text.split(None)) != 1 or text != text.strip():
        raise BadAddress("the feed's address %s has blanks in it: write them as %%20" % quoted(text))
    address = _without_download_area(text)
    if not address.endswith("/" + _WORD):
        raise BadAddress(
            "the feed's address %s ends neither in /all, as in an image's feed line, nor in /%s: "
            "give one of the two" % (quoted(text), _FOLDER))
    if _WORD in address[:-len(_WORD)]:
        raise BadAddress(
            'the feed\'s address %s holds "all" more than once, and a receiver replaces each: it would ask %s; '
            "use an address without it" % (quoted(text), quoted(address.replace(_WORD, _FOLDER))))
    return scheme + address[len(scheme):]


def _without_download_area(text):
    for ending in (_FOLDER + CATALOGUE, _FOLDER, _FOLDER.rstrip("/")):
        if text.endswith("/" + ending):
            return text[:-len(ending)] + _WORD
    if text.endswith("/" + _WORD + "/"):
        return text[:-1]
    return text
