#!/usr/bin/env python3
"""log_test.py PROGRAM: what reaches the system log is what stands on standard error, line by line under the program's
name, and none of it is the toolkit's. Needs root where no log service runs: it takes its place then."""

import os
import re
import socket
import subprocess
import threading
import time

from desktop import OWN_LINES, Program, X11, arguments

SERVICE = "/dev/log"
[PROGRAM] = arguments(__doc__, 1)


def run(desktop):
    # Reasons to complain: no runtime folder, a theme that is not there, a bus that does not answer.
    program = Program(desktop, PROGRAM, XDG_RUNTIME_DIR="", QT_QPA_PLATFORMTHEME="none-such",
                      DBUS_SESSION_BUS_ADDRESS="unix:path=/nowhere", QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1")
    desktop.focus(program.window())
    desktop.key("Return")
    assert program.process.wait(20) == 0
    return program


def from_own_service(desktop):
    heard = []
    with socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM) as service:
        service.bind(SERVICE)
        service.settimeout(1)  # after the program's end nothing more comes
        ended = threading.Event()

        def listen():
            while not ended.is_set():
                try:
                    heard.append(service.recv(4096).decode().rstrip("\0"))
                except TimeoutError:
                    pass

        listener = threading.Thread(target=listen)
        listener.start()
        try:
            printed = run(desktop).log()
        finally:
            ended.set()
            listener.join()
            os.unlink(SERVICE)
    name = os.path.basename(PROGRAM)
    return printed, [re.sub(rf"^<\d+>\w+ +\d+ [\d:]+ {name}: ", "", line) for line in heard]


def from_journal(desktop):
    program = run(desktop)
    time.sleep(1)
    command = ["journalctl", "-o", "cat", "-t", os.path.basename(PROGRAM), f"_PID={program.pid}"]
    return program.log(), subprocess.run(command, capture_output=True, text=True, check=True).stdout.splitlines()


with X11() as x11:
    lines, logged = from_journal(x11) if os.path.exists(SERVICE) else from_own_service(x11)
assert lines and lines == logged, f"printed {lines}\nlogged {logged}"
assert all(OWN_LINES.match(line) for line in lines), lines
print(f"{len(lines)} lines, the same in the log and on standard error:", *lines, sep="\n  ")
