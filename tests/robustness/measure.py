"""Runs a command and tells the most memory that it had at a time, and its processor time.

Usage: measure.py FILE COMMAND... Writes the largest resident size, KiB, and the time, s, into the file and ends with the
command's exit status, or 128 more than the signal that ended it. A program of its own, because a child begins with its
parent's size.
"""

import resource
import subprocess
import sys

status = subprocess.run(sys.argv[2:], check=False).returncode
used = resource.getrusage(resource.RUSAGE_CHILDREN)
with open(sys.argv[1], "w", encoding="ascii") as file:
    file.write(f"{used.ru_maxrss} {used.ru_utime + used.ru_stime}")
sys.exit(status if status >= 0 else 128 - status)
