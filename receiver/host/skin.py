"""Skins: which screen shows which of its widgets, where, and how.

A skin is an XML file of screens; each names the widgets that it shows. A
widget that the screen does not have, or that is of another kind, is a skin
error: it is reported, and the rest of the screen is shown.
"""

import os
import xml.etree.cElementTree as ElementTree

from enigma import eSize
from native.log import log
from Tools.Directories import SCOPE_CURRENT_SKIN, SCOPE_SKIN, fileExists, resolveFilename
from Tools.LoadPixmap import LoadPixmap

dom_screens = {}


class SkinError(Exception):
    """The skin asks for something that is not there."""

    def __init__(self, message):
        Exception.__init__(self, message)
        self.msg = message

    def __str__(self):
        return "{%s}: %s" % ("skin", self.msg)


def loadSkin(name, scope=SCOPE_SKIN):
    """Read the screens of a skin file; they take the place of older ones of the same name."""
    path = resolveFilename(scope, name)
    folder = os.path.dirname(path) + "/"
    for screen in ElementTree.parse(path).getroot().findall("screen"):
        if screen.get("name"):
            dom_screens[screen.get("name")] = (screen, folder)


def readSkin(screen, skin, names, desktop):
    """Give the screen, and each of its widgets that the skin shows, their attributes."""
    name, element, path = _find(screen, names if isinstance(names, list) else [names])
    path = getattr(screen, "skin_path", path)
    screen.skinAttributes = []
    screen.additionalWidgets = []
    screen.renderer = []
    _collect(screen.skinAttributes, element, path)
    for widget in element.getchildren():
        try:
            _WIDGETS.get(widget.tag, _unknown)(screen, widget, name, path)
        except SkinError as error:
            log("[Skin] SKIN ERROR in screen '%s' widget '%s': %s" % (name, widget.tag, error))


def _find(screen, names):
    """The first of the names that has a screen, else the screen's own skin, else an empty one."""
    for name in names:
        if name in dom_screens:
            return (name,) + dom_screens[name]
    embedded = getattr(screen, "skin", None)
    name = "<embedded-in-'%s'>" % screen.__class__.__name__
    if embedded:
        return name, ElementTree.fromstring(embedded), None
    log("[Skin] no skin for screen %s" % ", ".join(names))
    return name, ElementTree.fromstring("<screen></screen>"), None


def _collect(attributes, element, path, ignored=("name", "source", "render")):
    """An element's attributes as byte strings, pictures with the path where they are found."""
    for key, value in element.items():
        if key in ignored:
            continue
        value = value.encode("utf-8")
        if key in ("pixmap", "backgroundPixmap", "selectionPixmap"):
            value = _picture_path(value, path)
        attributes.append((key, value))


def _picture_path(name, path):
    """In the skin's own folder, else in the host's."""
    own = os.path.join(path or "", name)
    return own if fileExists(own) else resolveFilename(SCOPE_CURRENT_SKIN, name)


def _widget(screen, widget, screen_name, path):
    if widget.get("name") is not None:
        _named_widget(screen, widget, screen_name, path)
    elif widget.get("source") is not None:
        _source_widget(screen, widget, screen_name, path)
    else:
        raise SkinError("widget has no name and no source!")


def _named_widget(screen, widget, screen_name, path):
    from Components.GUIComponent import GUIComponent
    name = widget.get("name").encode("utf-8")
    component = screen.get(name)
    if component is None:
        raise SkinError("component with name '%s' was not found in skin of screen '%s'!" % (
            name, screen_name))
    if not isinstance(component, GUIComponent):
        raise SkinError("component with name '%s' of screen '%s' is no GUI component!" % (
            name, screen_name))
    component.skinAttributes = []
    _collect(component.skinAttributes, widget, path)


def _source_widget(screen, widget, screen_name, path):
    from Components.Sources.Source import Source
    name = widget.get("source").encode("utf-8")
    source = screen.get(name)
    if source is None:
        raise SkinError("source '%s' was not found in screen '%s'!" % (name, screen_name))
    if not isinstance(source, Source):
        raise SkinError("source '%s' of screen '%s' is no source!" % (name, screen_name))
    if not widget.get("render"):
        raise SkinError("you must define a renderer with render= for source '%s'" % name)
    renderer = _class("Components.Renderer", widget.get("render"))()
    renderer.connect(_converted(source, widget))
    renderer.source_name = name
    renderer.skinAttributes = []
    _collect(renderer.skinAttributes, widget, path)
    screen.renderer.append(renderer)


def _converted(source, widget):
    """The source behind the converters that the skin puts in front of the renderer."""
    for element in widget.findall("convert"):
        if not element.get("type"):
            raise SkinError("'convert'-tag needs a 'type'-attribute")
        converter = _class("Components.Converter", element.get("type"))((element.text or "").encode("utf-8"))
        converter.connect(source)
        source = converter
    return source


def _class(package, name):
    """The class that has the name of its module."""
    try:
        module = __import__("%s.%s" % (package, name), fromlist=[str(name)])
    except ImportError as error:
        raise SkinError("no %s of the name '%s': %s" % (package, name, error))
    return getattr(module, str(name))


def _additional(kind):
    """A text or a picture of the skin's own."""
    def add(screen, widget, _screen_name, path):
        from Components.Label import Label
        from Components.Pixmap import Pixmap
        component = {"eLabel": Label, "ePixmap": Pixmap}[kind]()
        component.skinAttributes = []
        _collect(component.skinAttributes, widget, path)
        screen.additionalWidgets.append(component)
    return add


def _applet(screen, widget, _screen_name, _path):
    """Source text that runs once the screen is laid out."""
    if widget.get("type") != "onLayoutFinish":
        raise SkinError("applet type '%s' unknown!" % widget.get("type"))
    screen.onLayoutFinish.append(compile((widget.text or "").strip(), "skin applet", "exec"))


def _unknown(_screen, _widget, _screen_name, _path):
    """Elements of no use here, comments among them."""


_WIDGETS = {"widget": _widget, "applet": _applet,
            "eLabel": _additional("eLabel"), "ePixmap": _additional("ePixmap")}


def applyAllAttributes(instance, desktop, attributes, scale):
    """Set on an instance what the skin says of it; what it cannot take makes no difference here."""
    for key, value in attributes:
        apply_one = _ATTRIBUTES.get(key)
        if apply_one is not None:
            apply_one(instance, value)


def _pair(value):
    try:
        first, second = (int(each) for each in value.split(","))
    except ValueError:
        raise SkinError("'%s' is not a pair of numbers" % value)
    return first, second


def _place(instance, value):
    if "center" not in value:
        instance.move(*_pair(value))


def _picture(instance, value):
    picture = LoadPixmap(value)
    if picture is None:
        log("[Skin] cannot load picture %s" % value)
    elif hasattr(instance, "setPixmap"):
        instance.setPixmap(picture)


def _text(instance, value):
    instance.setText(_(value))


_ATTRIBUTES = {
    "position": _place,
    "size": lambda instance, value: instance.resize(eSize(*_pair(value))),
    "title": lambda instance, value: instance.setTitle(_(value)),
    "text": _text,
    "pixmap": _picture,
    "itemHeight": lambda instance, value: instance.content().setItemHeight(int(value)),
}
