"""on_screen.py PROGRAM ARGUMENT…: runs a program on a screen of its own, and answers as it does."""

import os
import subprocess
import sys

from screen import Screen

screen = Screen()
try:
    sys.exit(subprocess.run(sys.argv[1:], env={**os.environ, "DISPLAY": screen.display,
                                               "QT_QPA_PLATFORM": "xcb"}).returncode)
finally:
    screen.close()
