"""The service file "lamedb", formats 4 and 5.

Keys are read as numbers; tuning numbers, names and fields are kept as the
bytes that they are, so that what nobody here knows survives a load and a save.
A broken entry is left out and the reading goes on at the next line.

Format 4:

    eDVB services /4/
    transponders
    00c00000:0401:0001
    <tab>s 11778000:27500000:2:4:192:2:0
    /
    end
    services
    0001:00c00000:0401:0001:1:0
    First
    p:Somebody,c:000065,f:40
    end

Format 5 holds the same in one line for each entry, the name in double quotes:

    eDVB services /5/
    # a comment
    t:00c00000:0401:0001,s:11778000:27500000:2:4:192:2:0
    s:0001:00c00000:0401:0001:1:0,"First",p:Somebody,c:000065,f:40
"""

import re
from collections import namedtuple

from native.files import read_lines
from native.log import log

_HEADER = re.compile(r"eDVB services /(\d+)/")
_TRANSPONDER_KEY = re.compile(r"([0-9a-fA-F]{1,8}):([0-9a-fA-F]{1,4}):([0-9a-fA-F]{1,4})$")
_TUNING = re.compile(r"\s([stca]) (.*)$")
_SERVICE_KEY = re.compile(
    r"([0-9a-fA-F]{1,8}):([0-9a-fA-F]{1,8}):([0-9a-fA-F]{1,4}):([0-9a-fA-F]{1,4}):(\d+):(\d+)(:.*)?$")
_FIELDS = re.compile(r"[A-Za-z]:|$")
_LINE_5_TRANSPONDER = re.compile(r"t:([^,]*),(?:([stca])[: ])?(\d.*)$")
_LINE_5_SERVICE = re.compile(r's:([^,]*),"(.*?)"(?:,([A-Za-z]:.*))?$')

Transponder = namedtuple("Transponder", "system tuning")
Service = namedtuple("Service", "number extra name fields")


class ServiceFile(object):
    """Transponders and services by their keys.

    A transponder's key is (namespace, tsid, onid), a service's key is
    (sid, namespace, tsid, onid, type).
    """

    def __init__(self):
        self.transponders = {}
        self.services = {}

    def load(self, path):
        """Add what the file holds, in the place of what has the same key; False if it is no service file."""
        lines = read_lines(path)
        if lines is None:
            return False
        header = _HEADER.match(lines[0]) if lines else None
        reader = header and _READERS.get(int(header.group(1)))
        if reader is None:
            log("%s is not a service file of format 4 or 5" % path)
            return False
        reader(lines[1:], self)
        return True

    def add_transponder(self, key_text, system, tuning):
        """Add one; False when the key cannot be read."""
        key = _TRANSPONDER_KEY.match(key_text)
        if key is None:
            return False
        numbers = tuple(int(each, 16) for each in key.groups())
        self.transponders[numbers] = Transponder(system or _system_of(numbers[0]), tuning)
        return True

    def add_service(self, key_text, name, fields):
        """Add one; False when the key cannot be read."""
        key = _SERVICE_KEY.match(key_text)
        if key is None:
            return False
        sid, namespace, tsid, onid = (int(each, 16) for each in key.groups()[:4])
        self.services[sid, namespace, tsid, onid, int(key.group(5))] = Service(
            int(key.group(6)), key.group(7) or "", name, fields)
        return True

    def format_4(self):
        """The whole as the text of a file of format 4."""
        lines = ["eDVB services /4/", "transponders"]
        for key, each in sorted(self.transponders.items()):
            lines += ["%08x:%04x:%04x" % key, "\t%s %s" % each, "/"]
        lines += ["end", "services"]
        for key, each in sorted(self.services.items()):
            lines += [_service_key(key, each), each.name, each.fields]
        return "\n".join(lines + ["end", ""])

    def format_5(self):
        """The whole as the text of a file of format 5."""
        lines = ["eDVB services /5/"]
        for key, each in sorted(self.transponders.items()):
            lines.append("t:%08x:%04x:%04x,%s:%s" % (key + each))
        for key, each in sorted(self.services.items()):
            line = 's:%s,"%s"' % (_service_key(key, each), each.name)
            lines.append(line + "," + each.fields if each.fields else line)
        return "\n".join(lines + [""])


def _service_key(key, service):
    return "%04x:%08x:%04x:%04x:%d:" % key + "%d%s" % (service.number, service.extra)


def _system_of(namespace):
    """The delivery system that a namespace stands for."""
    return {0xFFFF: "c", 0xEEEE: "t", 0xDDDD: "a"}.get(namespace >> 16, "s")


def _read_4(lines, target):
    start = _section(lines, 0, "transponders")
    end = _read_transponders(lines, start, target)
    start = _section(lines, end, "services")
    _read_services(lines, start, target)


def _section(lines, start, name):
    """The line after the section's heading, or behind the last line."""
    try:
        return lines.index(name, start) + 1
    except ValueError:
        log("no section %s in the service file" % name)
        return len(lines)


def _read_transponders(lines, start, target):
    place = start
    while place < len(lines) and lines[place] not in ("end", "services"):
        tuning = _TUNING.match(lines[place + 1]) if place + 1 < len(lines) else None
        if tuning and target.add_transponder(lines[place], *tuning.groups()):
            place += 2
        else:
            place += 1
    return place


def _read_services(lines, start, target):
    place = start
    while place < len(lines) and lines[place] != "end":
        entry = lines[place:place + 3]
        if len(entry) == 3 and _FIELDS.match(entry[2]) and target.add_service(*entry):
            place += 3
        else:
            place += 1


def _read_5(lines, target):
    for line in lines:
        transponder = _LINE_5_TRANSPONDER.match(line)
        if transponder:
            target.add_transponder(*transponder.groups())
            continue
        service = _LINE_5_SERVICE.match(line)
        if service:
            target.add_service(service.group(1), service.group(2), service.group(3) or "")


_READERS = {4: _read_4, 5: _read_5}
