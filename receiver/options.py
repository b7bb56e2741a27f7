# -*- coding: utf-8 -*-
"""The options of the virtual receiver, checked as far as can be before anything is started."""

import argparse
import errno
import os
import socket

import feed_line
from display.characters import quoted
from display.script import parse_keys

FIRST_TRY = "ok ok ok"

DESCRIPTION = """\
A receiver on this PC, with the service-list screen open. Without options it shows the sample feed on this terminal;
without a terminal it plays the append installation of the first list. When the screen has closed, it prints what has
changed on the receiver. Nothing outside of the receiver's own folder is changed."""

EPILOG = """\
Keys at the terminal: arrows, Enter for OK, Esc for EXIT, r or F1 for red, g or F2 for green, digits; Ctrl-C leaves.
Exit status: 0 the screen closed; 1 the keys were used up before that; 2 a mistake, or something is missing;
3 the receiver crashed; 130 left with Ctrl-C."""


class Mistake(Exception):
    """Something that whoever started the receiver has to put right; its text says what."""


class _Parser(argparse.ArgumentParser):

    def error(self, message):
        raise Mistake("%s; ./run --help shows the options" % message)


def _parser():
    parser = _Parser(prog="./run", description=DESCRIPTION, epilog=EPILOG, add_help=False,
                     formatter_class=argparse.RawDescriptionHelpFormatter)
    add = parser.add_argument
    add("--keys", metavar="KEYS",
        help='play these keys instead of showing a terminal, and print each screen: up, down, left, right, ok, exit, '
             'red, green, 0 to 9, separated by blanks, as in "down ok ok ok"; each waits until the receiver has '
             'nothing left to do, except those joined by +, as in "ok+exit"')
    add("--settings", metavar="DIR",
        help='start from a copy of this folder, somebody\'s "/etc/enigma2"; it is never written to')
    add("--keep", metavar="DIR",
        help='save the resulting "/etc/enigma2" as this folder, which must be new or empty')
    add("--feed", metavar="DIR|URL",
        help="use this feed: a folder with a qel_settings.download and the archives, served to the receiver over "
             "HTTP, or the address of a feed, which ends in /all, or of its download area, which ends in "
             "/settings_download/")
    add("--port", metavar="N",
        help="serve the feed on this port of the loopback interface (a free one)")
    add("--tools", metavar="busybox|gnu", choices=("busybox", "gnu"),
        help="whose sh, tar, gzip, cp and rm the receiver has (busybox, as a receiver does)")
    add("--log", metavar="FILE",
        help="add what the receiver's software writes to its standard output and error to this file")
    add("--help", action="help", help="show this and leave")
    return parser


class Options(object):
    """What was asked for, with every folder checked and every path absolute."""

    def __init__(self, arguments, has_terminal):
        given = _parser().parse_args(arguments)
        self.first_try = given.keys is None and not has_terminal
        self.keys = FIRST_TRY if self.first_try else given.keys
        self.settings = given.settings and _settings_folder(given.settings)
        self.feed_address = None
        self.feed_folder = None
        if given.feed is not None:
            self._set_feed(given.feed)
        self.keep = given.keep and self._new_folder(given.keep)
        self.port = _port(given.port)
        if self.port and self.feed_address:
            raise Mistake("--port is for a feed that is served from a folder: leave it out, or give --feed a folder")
        self.tools = given.tools or _tools_of_the_environment()
        self.log = given.log and self._log_file(given.log)
        if self.keys is not None:
            _check_keys(self.keys)

    def _set_feed(self, feed):
        if not feed_line.is_address(feed):
            self.feed_folder = _readable_folder("--feed", feed)
            return
        try:
            self.feed_address = feed_line.feed_address(feed)
        except feed_line.BadAddress as mistake:
            raise Mistake("--feed: %s" % mistake)

    def _new_folder(self, keep):
        path = os.path.realpath(keep)
        parent = os.path.dirname(path)
        for option, source in (("--settings", self.settings), ("--feed", self.feed_folder)):
            if source and (path + "/").startswith(source + "/"):
                raise Mistake("--keep: %s lies in the folder of %s, which is never written to: name another folder"
                              % (quoted(keep), option))
        if os.path.exists(path):
            _readable_folder("--keep", keep)
            if os.listdir(path):
                raise Mistake("--keep: %s is not empty, and nothing in it shall be lost: name a new folder"
                              % quoted(keep))
            parent = path
        elif not os.path.isdir(parent):
            raise Mistake("--keep: there is no folder %s to make %s in: make it first"
                          % (quoted(parent), quoted(os.path.basename(path))))
        if not os.access(parent, os.W_OK | os.X_OK):
            raise Mistake("--keep: %s may not be written to: name another folder" % quoted(parent))
        return path


    def _log_file(self, log):
        path = os.path.realpath(log)
        for option, source in (("--settings", self.settings), ("--feed", self.feed_folder)):
            if source and path.startswith(source + "/"):
                raise Mistake("--log: %s lies in the folder of %s, which is never written to: name another file"
                              % (quoted(log), option))
        try:
            open(path, "a").close()
        except IOError as error:
            raise Mistake("--log: %s cannot be written: %s" % (quoted(log), error.strerror))
        return path


def _readable_folder(option, folder):
    if not os.path.exists(folder):
        raise Mistake("%s: there is no folder %s" % (option, quoted(folder)))
    if not os.path.isdir(folder):
        raise Mistake("%s: %s is not a folder" % (option, quoted(folder)))
    if not os.access(folder, os.R_OK | os.X_OK):
        raise Mistake("%s: the folder %s may not be read" % (option, quoted(folder)))
    return os.path.realpath(folder)


def _settings_folder(folder):
    path = _readable_folder("--settings", folder)
    below = os.path.join(folder, "etc", "enigma2")
    if os.path.isdir(below) and not os.path.exists(os.path.join(path, "lamedb")):
        raise Mistake("--settings: there are no settings in %s: name %s" % (quoted(folder), quoted(below)))
    return path


def _check_keys(text):
    try:
        parse_keys(text)
    except ValueError as mistake:
        raise Mistake("--keys: %s" % mistake)


def _tools_of_the_environment():
    """So that every suite can be run with either."""
    named = os.environ.get("MORVESK_TOOLS")
    if named not in (None, "busybox", "gnu"):
        raise Mistake("MORVESK_TOOLS is %s; it may be busybox or gnu" % repr(named))
    return named


def _port(text):
    if text is None:
        return None
    if not text.isdigit() or not 1 <= int(text) <= 65535:
        raise Mistake("--port: %s is not a number from 1 to 65535" % quoted(text))
    probe = socket.socket(socket.AF_INET, socket.SOCK_STREAM)
    try:
        probe.setsockopt(socket.SOL_SOCKET, socket.SO_REUSEADDR, 1)
        probe.bind(("127.0.0.1", int(text)))
    except socket.error as error:
        if error.errno == errno.EADDRINUSE:
            raise Mistake("--port: %s is taken: name another one, or leave --port out for a free one" % text)
        raise Mistake("--port: %s cannot be used: %s; name one from 1024 up" % (text, error.strerror))
    finally:
        probe.close()
    return int(text)


def has_terminal():
    """Whether somebody sits in front of a terminal that can show a screen."""
    return os.isatty(0) and os.isatty(1) and os.environ.get("TERM") != "dumb"
