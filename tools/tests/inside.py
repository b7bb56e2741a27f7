"""Runs inside of the sandbox: starts processes of every kind and says when they all run.

usage: inside.py TOKEN
The token stands in the command line of each, so that they can be found.
"""

import os
import subprocess
import sys
import time

SLEEP = [sys.executable, "-c", "import time; time.sleep(600)", sys.argv[1]]


def start_daemon():
    """A process in a session of its own whose parent has gone, deaf to all but SIGKILL."""
    if os.fork() == 0:
        os.setsid()
        subprocess.Popen(["/bin/sh", "-c", "trap '' HUP INT QUIT TERM; while :; do sleep 1; done", sys.argv[1]])
        os._exit(0)
    os.wait()


subprocess.Popen(SLEEP)
subprocess.Popen(SLEEP, preexec_fn=os.setpgrp)
subprocess.Popen(["/bin/sh", "-c", '"$@"; true', "sh"] + SLEEP)
start_daemon()
sys.stdout.write("ready\n")
sys.stdout.flush()
time.sleep(600)
