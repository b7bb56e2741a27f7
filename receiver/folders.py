# -*- coding: utf-8 -*-
"""Copying and removing whole folders, as far as the virtual receiver needs it."""

import errno
import os
import shutil
import stat


class CannotCopy(Exception):
    """A file or folder that could not be copied; its text says which and why."""


def copy_folder(source, target):
    """Copies a folder with all below it, links followed; gives the links that lead nowhere and the special files,
    which are left out. The copies are writable for their owner, whatever the originals are."""
    return _copy(source, target, set())


def _copy(source, target, above):
    left_out = []
    above = above | set([os.path.realpath(source)])
    try:
        if not os.path.isdir(target):
            os.mkdir(target)
        names = sorted(os.listdir(source))
    except OSError as error:
        raise CannotCopy("%s: %s" % (error.filename, error.strerror))
    for name in names:
        path, copy = os.path.join(source, name), os.path.join(target, name)
        if os.path.isfile(path):
            _copy_file(path, copy)
        elif os.path.isdir(path) and os.path.realpath(path) not in above:
            left_out.extend(_copy(path, copy, above))
        else:
            left_out.append(path)
    shutil.copystat(source, target)
    os.chmod(target, stat.S_IMODE(os.stat(target).st_mode) | stat.S_IRWXU)
    return left_out


def _copy_file(source, target):
    try:
        shutil.copy2(source, target)
        os.chmod(target, stat.S_IMODE(os.stat(target).st_mode) & 0o777 | stat.S_IRUSR | stat.S_IWUSR)
    except EnvironmentError as error:
        raise CannotCopy("%s: %s" % (error.filename or source, error.strerror))


def remove_folder(folder):
    """Removes a folder with all below it, links and mount points not followed; gives False when something stayed."""
    try:
        device = os.lstat(folder).st_dev
    except OSError as error:
        return error.errno == errno.ENOENT
    return _remove(folder, device)


def _remove(folder, device):
    complete = True
    try:
        os.chmod(folder, stat.S_IRWXU)
        names = os.listdir(folder)
    except OSError:
        return False
    for name in names:
        path = os.path.join(folder, name)
        try:
            status = os.lstat(path)
            if not stat.S_ISDIR(status.st_mode):
                os.unlink(path)
            elif status.st_dev != device or not _remove(path, device):
                complete = False
        except OSError:
            complete = False
    try:
        os.rmdir(folder)
    except OSError:
        return False
    return complete
