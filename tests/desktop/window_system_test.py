#!/usr/bin/env python3
"""window_system_test.py FOLDER [RUNS]: the programs built in FOLDER on X11 and on Wayland. The window is dragged by its
picture, the About window is modal, and every way to end the program is gone RUNS times."""

import signal
import sys
import time

from desktop import DESKTOPS, Program, X11Session, arguments, wait_for

FOLDER, RUNS = [*arguments(__doc__, 1, 2), "2"][:2]
RUNS = int(RUNS)
DEMO = FOLDER + "/tavro-setup-tool-demo"
TOOL = FOLDER + "/tavro-setup-tool"  # finds no device here, and shows the alert
AT_ONCE = 10
ABOUT = "About Tavro Setup Tool"


def is_dragged_by_its_picture(desktop):
    program = Program(desktop, DEMO)
    window = program.window()
    time.sleep(0.5)  # until the window manager has placed it for good
    left, top, width, height = desktop.place(window)
    desktop.point(left + 300, top + 30)
    desktop.press()
    desktop.point(left + 320, top + 30)  # farther than the drag distance, so the move begins there
    time.sleep(0.5)  # until the window manager has taken the move over
    for step in range(1, 11):
        desktop.point(left + 320 + 10 * step, top + 30 + 5 * step)
        time.sleep(0.05)
    desktop.press(False)
    wait_for("move", lambda: desktop.place(window) == (left + 100, top + 50, width, height), 5)
    return program, window


def about_is_modal(desktop, program, window):
    desktop.focus(window)
    before = program.requests()
    desktop.key("F1")
    about = program.window(ABOUT)
    desktop.focus(window)  # as far as the window manager lets it
    desktop.key("ctrl", "q")
    desktop.key("alt", "n")
    time.sleep(0.5)
    assert program.process.poll() is None, "the window behind takes Ctrl+Q"
    left, top, _, height = desktop.place(window)
    desktop.point(left + 250, top + height - 107)  # the HDCP button
    desktop.press()
    desktop.press(False)
    time.sleep(0.5)
    assert program.process.poll() is None and program.windows(ABOUT), "the window behind is not inert"
    assert program.requests() == before, "the window behind acts"
    desktop.close(about)
    wait_for("end of the modal run", lambda: not program.windows(ABOUT), 5)
    desktop.focus(window)
    desktop.key("alt", "n")
    wait_for("action afterwards", lambda: len(program.requests()) > len(before), 5)
    desktop.key("ctrl", "q")
    faults = program.faults_after_end()
    assert not faults, faults


def press_in(key):
    def way(desktop, program):
        desktop.focus(program.window())
        desktop.key(*key)
    return way


def send(number):
    return lambda desktop, program: program.process.send_signal(number)


WAYS = {
    "Ctrl+Q": (DEMO, press_in(["ctrl", "q"])),
    "window button": (DEMO, lambda desktop, program: desktop.close(program.window())),
    "alert": (TOOL, press_in(["space"])),
    "SIGTERM": (DEMO, send(signal.SIGTERM)),
    "hang-up of the session": (DEMO, send(signal.SIGHUP)),
}


def faults_of(how, programs):
    return [f"{how}: {fault}" for program in programs for fault in program.faults_after_end()]


def end_by_every_way(kind, count):
    """Gives the faults found."""
    faults = []
    with DESKTOPS[kind]() as desktop:
        started = [(way, Program(desktop, path)) for way, (path, _) in WAYS.items() for _ in range(count)]
        for _, program in started:
            program.window()
        for way, program in started:
            WAYS[way][1](desktop, program)
            faults += faults_of(f"{kind}, {way}", [program])
    return faults


def end_with(make, end, count):
    """Ends programs all at once, by what they run in, with the settings window or the alert up."""
    with make() as desktop:
        programs = [Program(desktop, path) for path in (DEMO, TOOL) for _ in range(count // 2 + 1)]
        for program in programs:
            program.window()
        end(desktop)
        return faults_of(f"{make.__name__}, {end.__name__}", programs)


def main():
    failed = 0
    for kind, make in DESKTOPS.items():
        with make() as desktop:
            about_is_modal(desktop, *is_dragged_by_its_picture(desktop))
            print(f"{kind}: starts, is dragged by its picture, runs modally", flush=True)
        ways = [*WAYS, "end of the display"]
        if kind == "X11":
            ways.append("end of the session")
        faults = []
        for done in range(0, RUNS, AT_ONCE):
            count = min(AT_ONCE, RUNS - done)
            faults += end_by_every_way(kind, count) + end_with(make, make.end, count)
            if kind == "X11":
                faults += end_with(X11Session, X11Session.end_session, count)
        print(f"{kind}: {RUNS} ends each by {', '.join(ways)}: {len(faults)} faults", *faults, sep="\n  ", flush=True)
        failed += len(faults)
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
