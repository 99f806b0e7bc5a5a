#!/usr/bin/env python3
"""log_test.py PROGRAM: the system log and standard error get the same lines, the log under the program's name, and none
from the toolkit. Without a running log service it takes the service's place, as root."""

import contextlib
import os
import re
import socket

from desktop import X11, Program, arguments

SERVICE = "/dev/log"
[PROGRAM] = arguments(__doc__, 1)
NAME = os.path.basename(PROGRAM)


def run(desktop):
    # The toolkit warns of each: no runtime folder, an unknown theme, a bus that does not answer.
    program = Program(desktop, PROGRAM, XDG_RUNTIME_DIR="", QT_QPA_PLATFORMTHEME="none-such",
                      DBUS_SESSION_BUS_ADDRESS="unix:path=/nowhere", QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1")
    desktop.focus(program.window())
    desktop.press("Return")
    program.expect_end()
    return program


def from_own_service(desktop):
    with socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM) as service:
        service.bind(SERVICE)
        try:
            printed = run(desktop).log()
        finally:
            os.unlink(SERVICE)
        heard = []
        with contextlib.suppress(BlockingIOError):
            while True:
                heard.append(service.recv(4096, socket.MSG_DONTWAIT).decode())
    return printed, [re.sub(rf"^<\d+>\w+ +\d+ [\d:]+ {NAME}: |\0", "", line) for line in heard]


def from_journal(desktop):
    program = run(desktop)
    desktop.run("journalctl", "--sync")
    return program.log(), desktop.run("journalctl", "-o", "cat", "-t", NAME, f"_PID={program.pid}").splitlines()


with X11() as x11:
    lines, logged = from_journal(x11) if os.path.exists(SERVICE) else from_own_service(x11)
assert lines and lines == logged, f"printed {lines}\nlogged {logged}"
