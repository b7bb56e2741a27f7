"""The cells of a row, as skins and lists write them."""

from enigma import RT_HALIGN_LEFT, RT_VALIGN_TOP, eListboxPythonMultiContent


def MultiContentEntryText(pos=(0, 0), size=(0, 0), font=0, flags=RT_HALIGN_LEFT | RT_VALIGN_TOP,
                          text="", color=None, color_sel=None, backcolor=None, backcolor_sel=None,
                          border_width=None, border_color=None):
    """A text; a number stands for that item of the row."""
    return (eListboxPythonMultiContent.TYPE_TEXT, pos[0], pos[1], size[0], size[1], font, flags, text,
            color, color_sel, backcolor, backcolor_sel, border_width, border_color)


def _picture(kind, pos, size, png, backcolor, backcolor_sel, options):
    return kind, pos[0], pos[1], size[0], size[1], png, backcolor, backcolor_sel, options


def MultiContentEntryPixmap(pos=(0, 0), size=(0, 0), png=None, backcolor=None, backcolor_sel=None,
                            options=0):
    """A picture; a number stands for that item of the row."""
    return _picture(eListboxPythonMultiContent.TYPE_PIXMAP, pos, size, png, backcolor, backcolor_sel, options)


def MultiContentEntryPixmapAlphaTest(pos=(0, 0), size=(0, 0), png=None, backcolor=None,
                                     backcolor_sel=None, options=0):
    """A picture with holes."""
    return _picture(eListboxPythonMultiContent.TYPE_PIXMAP_ALPHATEST, pos, size, png, backcolor,
                    backcolor_sel, options)


def MultiContentEntryPixmapAlphaBlend(pos=(0, 0), size=(0, 0), png=None, backcolor=None,
                                      backcolor_sel=None, options=0):
    """A picture that lets what is behind it shine through."""
    return _picture(eListboxPythonMultiContent.TYPE_PIXMAP_ALPHABLEND, pos, size, png, backcolor,
                    backcolor_sel, options)
