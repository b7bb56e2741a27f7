"""What runs this interpreter is the script that starts the emulator, not the file that the emulator loads."""

import os
import sys

sys.executable = os.path.join(sys.prefix, "bin", "python2.7")
