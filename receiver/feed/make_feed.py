# -*- coding: utf-8 -*-
"""Makes the sample feed, or a receiver's first settings, of the plain descriptions beside this script.

The result depends on the descriptions alone: made twice, anywhere, it is the same to the byte.
"""

import argparse
import calendar
import os
import shutil
import sys
import time

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.dirname(HERE))

from feed import archive, files  # noqa: E402 (found through the path above)
from feed.description import BadDescription  # noqa: E402
from feed.listing import read_list  # noqa: E402
from feed.sky import read_sky  # noqa: E402

CATALOGUE = "qel_settings.download"
LISTS = os.path.join(HERE, "lists")
SETTINGS = os.path.join(HERE, "receiver.list")


class CannotMake(Exception):
    """The folder cannot be made; the text says why and what to do."""


def make_feed(folder):
    """Makes the feed as a folder, which must be new or empty."""
    sky = read_sky()
    lines, contents = [], {CATALOGUE: None}
    with open(os.path.join(LISTS, "catalogue"), "rb") as source:
        for line in source.read().split("\n")[:-1]:
            lines.append(_catalogue_line(line, sky, contents))
    contents[CATALOGUE] = "\n".join(lines) + "\n"
    write_folder(folder, contents)


def make_settings(folder):
    """Makes a receiver's first "/etc/enigma2" as a folder, which must be new or empty."""
    settings = read_list(SETTINGS, read_sky())
    write_folder(folder, dict(files.list_files(settings)))


def _catalogue_line(line, sky, contents):
    """A line of the catalogue's description as a line of the catalogue; its archive comes to the contents."""
    if not line.startswith("list "):
        return line
    name = line[len("list "):].strip() + ".list"
    service_list = read_list(os.path.join(LISTS, name), sky)
    for field in ("author", "date", "description", "archive"):
        if not getattr(service_list, field):
            raise BadDescription("%s states no %s" % (name, field))
    if service_list.archive in contents:
        raise BadDescription("two files of the feed are to be named %s" % service_list.archive)
    if not service_list.withdrawn:
        contents[service_list.archive] = _archive(service_list)
    return " ::: ".join((service_list.author, service_list.date, service_list.description, service_list.archive))


def _archive(service_list):
    if service_list.page is not None:
        return service_list.page
    modified = calendar.timegm(time.strptime(service_list.date, "%Y-%m-%d"))
    return archive.pack(files.list_files(service_list), modified, "dot-names" in service_list.styles)


def write_folder(folder, contents):
    """Writes all files to a folder beside it first, so that there is the whole one or none."""
    folder = os.path.abspath(folder)
    making = "%s.making-%d" % (folder, os.getpid())
    try:
        if os.path.exists(folder) and os.listdir(folder):
            raise CannotMake("%s is not empty, and nothing in it shall be lost: name a new folder" % folder)
        for name in sorted(contents):
            path = os.path.normpath(os.path.join(making, name))
            if not path.startswith(making + "/"):
                raise CannotMake("%s is not below the folder to make" % name)
            if not os.path.isdir(os.path.dirname(path)):
                os.makedirs(os.path.dirname(path))
            with open(path, "wb") as target:
                target.write(contents[name])
        os.rename(making, folder)
    except EnvironmentError as error:
        raise CannotMake("%s cannot be made: %s" % (folder, error.strerror))
    finally:
        shutil.rmtree(making, ignore_errors=True)


class _Parser(argparse.ArgumentParser):

    def error(self, message):
        self.exit(2, "make_feed.py: %s; make_feed.py [--settings] OUT\n" % message)


def main(arguments):
    """The command line."""
    parser = _Parser(prog="make_feed.py", description=__doc__.split("\n")[0])
    parser.add_argument("folder", metavar="OUT", help="the folder to make, new or empty")
    parser.add_argument("--settings", action="store_true",
                        help='make a receiver\'s first "/etc/enigma2" instead of a feed')
    options = parser.parse_args(arguments)
    try:
        (make_settings if options.settings else make_feed)(options.folder)
    except (BadDescription, CannotMake) as mistake:
        sys.stderr.write("make_feed.py: %s\n" % mistake)
        return 2
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
