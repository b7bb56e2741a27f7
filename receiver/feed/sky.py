# -*- coding: utf-8 -*-
"""All that can be received in the sample's world."""

import os

from feed.names import read_languages
from feed.place import read_place

HERE = os.path.join(os.path.dirname(os.path.abspath(__file__)), "sky")
_ENDING = ".place"


def read_sky(folder=HERE):
    """All places by their keys, such as 19.2E."""
    languages = read_languages(os.path.join(folder, "languages"))
    places = {}
    for name in sorted(os.listdir(folder)):
        if name.endswith(_ENDING):
            place = read_place(os.path.join(folder, name), languages)
            places[place.key] = place
    return places
