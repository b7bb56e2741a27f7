"""The ways into the sandbox, and the kinds of machines and users that have to take each of them."""

import os
import pwd

from suite import ROOT, TOOLS, run

SANDBOX = os.path.join(TOOLS, "sandbox")

# Somebody without rights who has no files here.
STRANGER = 65533

# A container whose engine allows no namespaces and no device files, and no program to give up what others may have: inside
# of a user namespace, which may make no more.
_CONTAINER = ["unshare", "--user", "--map-root-user", "sh", "-c",
              'echo 0 >/proc/sys/user/max_user_namespaces && exec setpriv --bounding-set="$0" --inh-caps="$0" "$@"']


class Way(object):
    """One way: the words before tools/sandbox, the environment, and why it cannot be taken here (or None)."""

    def __init__(self, name, words=(), forced=None, why_not=None, owner=None):
        self.name = name
        self.words = list(words)
        self.environment = {"MORVESK_SANDBOX": forced} if forced else {}
        self.why_not = why_not
        self.owner = owner

    def command(self, instance, command, options=()):
        """The whole command line that runs a command in the sandbox."""
        return self.words + [SANDBOX] + list(options) + [instance, "--"] + list(command)

    def own(self, folder):
        """Gives the folder to whoever goes this way."""
        if self.owner is not None:
            os.chown(folder, self.owner, self.owner)


def container(rights_taken):
    """The words that run a command as root of a container without namespaces and without those rights."""
    return _CONTAINER + [rights_taken]


def is_root():
    """True when the tests are run by root."""
    return os.geteuid() == 0


def _refusal(words, environment=None):
    outcome = run(list(words), environment)
    return None if outcome.status == 0 else (outcome.errors.strip() or "exit status %d" % outcome.status)


def _as_stranger():
    return ["setpriv", "--reuid=%d" % STRANGER, "--regid=%d" % STRANGER, "--clear-groups"]


def _why_no_stranger():
    if not is_root():
        return "only root can act as another user"
    return _refusal(_as_stranger() + ["test", "-x", SANDBOX, "-a", "-x", os.path.join(ROOT, "usr/bin/python2.7")]) and \
        "the checkout lies where other users cannot read"


def _why_no_namespaces(words=()):
    return _refusal(list(words) + ["bwrap", "--unshare-user", "--unshare-pid", "--ro-bind", "/", "/", "true"])


def _why_no_container():
    return _refusal(container("-sys_admin") + ["true"])


def _who():
    return pwd.getpwuid(os.geteuid()).pw_name if not is_root() else "root"


def all_ways():
    """Every way; those that cannot be taken here say why."""
    stranger = _why_no_stranger()
    return [
        Way("bubblewrap", forced="bubblewrap", why_not=_why_no_namespaces()),
        Way("bubblewrap as another user", _as_stranger(), forced="bubblewrap", owner=STRANGER,
            why_not=stranger or _why_no_namespaces(_as_stranger())),
        Way("chroot", forced="chroot", why_not=None if is_root() else "%s is not root" % _who()),
        Way("chroot in a container", container("-sys_admin,-mknod,-setpcap"), why_not=_why_no_container()),
    ]
