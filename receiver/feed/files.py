# -*- coding: utf-8 -*-
"""The texts of a list's files, in the forms that a receiver reads: service files, root files, user bouquets, satellites.

A receiver keeps its own service file in the same form, so its initial settings are made here, too.
"""

from xml.sax.saxutils import quoteattr

from feed.servicelist import KINDS, Marker

_ROOT_TITLES = {"tv": "Bouquets (TV)", "radio": "Bouquets (Radio)"}
_ROOT_TYPES = {"tv": 1, "radio": 2}
_MARKER_FLAG = 64


def list_files(service_list):
    """(name, content) for each file of a list, in the order in which its author packs them."""
    files = [("lamedb", format_4(service_list))]
    if "lamedb5" in service_list.extras:
        files.append(("lamedb5", format_5(service_list)))
    if "satellites.xml" in service_list.extras:
        files.append(("satellites.xml", satellites(service_list)))
    files += [("bouquets.%s" % kind, root_file(service_list, kind)) for kind in KINDS]
    if service_list.settings:
        files.append(("settings", _text(service_list.settings)))
    files += [(each.file_name, user_bouquet(each, "descriptions" in service_list.styles))
              for each in service_list.bouquets]
    return [(name, content) for name, content in files if name not in service_list.lacks]


def transponder_key(transponder):
    """The key of a transponder in a service file."""
    return "%08x:%04x:%04x" % (transponder.namespace, transponder.tsid, transponder.onid)


def service_key(service):
    """The key of a service in a service file."""
    return "%04x:%s:%d:0" % (service.sid, transponder_key(service.transponder), service.type)


def reference(service):
    """The reference to a service in a bouquet."""
    transponder = service.transponder
    return "1:0:%X:%X:%X:%X:%X:0:0:0:" % (
        service.type, service.sid, transponder.tsid, transponder.onid, transponder.namespace)


def _fields(service):
    return ",".join(["p:" + service.provider] + service.fields)


def _sorted_transponders(service_list):
    return sorted(service_list.transponders(), key=transponder_key)


def _sorted_services(service_list):
    return sorted(service_list.services, key=service_key)


def format_4(service_list):
    """The service file "lamedb"."""
    lines = ["eDVB services /4/", "transponders"]
    for transponder in _sorted_transponders(service_list):
        lines += [transponder_key(transponder), "\t" + transponder.tuning, "/"]
    lines += ["end", "services"]
    for service in _sorted_services(service_list):
        lines += [service_key(service), service.name, _fields(service)]
    lines.append("end")
    if service_list.author:
        lines.append("Edited by %s, %s" % (service_list.author, service_list.date))
    return _text(lines)


def format_5(service_list):
    """The service file "lamedb5"."""
    lines = ["eDVB services /5/", "# Transponders: t:namespace:tsid:onid,tuning numbers"]
    for transponder in _sorted_transponders(service_list):
        lines.append("t:%s,%s" % (transponder_key(transponder), transponder.tuning.replace(" ", ":", 1)))
    lines.append("# Services: s:sid:namespace:tsid:onid:type:number,\"name\",fields")
    for service in _sorted_services(service_list):
        lines.append("s:%s,\"%s\",%s" % (service_key(service), service.name, _fields(service)))
    return _text(lines)


def root_file(service_list, kind):
    """The root file of a kind, with the author's habits in it."""
    quote = "'" if "single-quotes" in service_list.styles else '"'
    names = [each for each in service_list.mentions if each.endswith("." + kind)]
    names += [each.file_name for each in service_list.bouquets_of(kind)]
    lines = ["#NAME " + _ROOT_TITLES[kind]]
    lines += ["#SERVICE 1:7:%d:0:0:0:0:0:0:0:FROM BOUQUET %s%s%s ORDER BY bouquet"
              % (_ROOT_TYPES[kind], quote, name, quote) for name in names]
    return _text(lines, "\r\n" if "crlf" in service_list.styles else "\n")


def user_bouquet(bouquet, with_descriptions):
    """A user bouquet's file; a marker has its text in its reference and in its description."""
    lines = ["#NAME " + bouquet.title]
    markers = 0
    for entry in bouquet.entries:
        if isinstance(entry, Marker):
            markers += 1
            lines += ["#SERVICE 1:%d:%X:0:0:0:0:0:0:0::%s" % (_MARKER_FLAG, markers, entry.text),
                      "#DESCRIPTION " + entry.text]
            continue
        lines.append("#SERVICE " + reference(entry))
        if with_descriptions:
            lines.append("#DESCRIPTION " + entry.name)
    return _text(lines)


def satellites(service_list):
    """The satellites file of a list's orbital positions."""
    lines = ['<?xml version="1.0" encoding="UTF-8"?>', "<satellites>"]
    for place in sorted(service_list.places(), key=lambda each: each.position):
        if place.position is None:
            continue
        lines.append("\t<sat name=%s flags=\"0\" position=\"%d\">"
                     % (quoteattr("%s %s" % (place.key, place.title)), place.signed_position))
        for transponder in place.transponders:
            lines.append("\t\t<transponder %s/>" % " ".join(
                '%s="%d"' % attribute for attribute in transponder.attributes))
        lines.append("\t</sat>")
    return _text(lines + ["</satellites>"])


def _text(lines, line_end="\n"):
    return line_end.join(lines) + line_end
