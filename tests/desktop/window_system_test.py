#!/usr/bin/env python3
"""window_system_test.py FOLDER [RUNS]: the programs built in FOLDER on X11 and on Wayland. The window is dragged by its
picture, the About window is modal, and each way of quitting is exercised RUNS times."""

import signal
import sys
import time

from desktop import X11, Program, Wayland, X11Session, arguments, wait_for

FOLDER, RUNS = [*arguments(__doc__, 1, 2), "2"][:2]
RUNS = int(RUNS)
DEMO = FOLDER + "/tavro-setup-tool-demo"
TOOL = FOLDER + "/tavro-setup-tool"  # finds no device, and shows the alert
AT_ONCE = 10
ABOUT = "About Tavro Setup Tool"


def drag_by_its_picture(desktop, window):
    left, top, *_ = desktop.place(window)
    # The first move is longer than the drag distance.
    desktop.drag((left + 300, top + 30), (left + 320, top + 30), (left + 420, top + 80))


def is_dragged_by_its_picture(desktop, program, window):
    time.sleep(0.5)  # the window manager moves it once more
    left, top, width, height = desktop.place(window)
    drag_by_its_picture(desktop, window)
    wait_for("move", lambda: desktop.place(window) == (left + 100, top + 50, width, height), 5)


def about_is_modal(desktop, program, window):
    desktop.focus(window)
    before = program.requests()
    desktop.key("F1")
    about = program.window(ABOUT)
    desktop.focus(window)  # if the window manager allows it
    desktop.key("ctrl", "q")
    desktop.key("alt", "n")
    left, top, _, height = place = desktop.place(window)
    drag_by_its_picture(desktop, window)
    desktop.drag((left + 250, top + height - 107))  # a click on the HDCP button
    time.sleep(0.5)
    assert program.process.poll() is None and program.windows(ABOUT), "the window behind has acted"
    assert program.requests() == before, "the window behind acts"
    assert desktop.place(window) == place, "the window behind is dragged"
    desktop.close(about)
    wait_for("end of the modal run", lambda: not program.windows(ABOUT), 5)
    desktop.focus(window)
    desktop.key("alt", "n")
    wait_for("action afterwards", lambda: len(program.requests()) > len(before), 5)
    desktop.key("ctrl", "q")
    faults = program.faults_after_end()
    assert not faults, faults


def press(*key):
    def act(desktop, program):
        desktop.focus(program.window())
        desktop.key(*key)
    return act


def send(number):
    return lambda desktop, program: program.process.send_signal(number)


# For each way of quitting: the programs, and the action. The last one ends all programs at once.
WAYS = {
    "Ctrl+Q": ([DEMO], press("ctrl", "q")),
    "window button": ([DEMO], lambda desktop, program: desktop.close(program.window())),
    "alert": ([TOOL], press("space")),
    "SIGTERM": ([DEMO], send(signal.SIGTERM)),
    "hang-up of the session": ([DEMO], send(signal.SIGHUP)),
    "end of the display": ([DEMO, TOOL], lambda desktop, program: desktop.end()),
}
SESSION = {"end of the session": ([DEMO, TOOL], lambda desktop, program: desktop.servers[-1].terminate())}


def end_often(make, ways):
    faults = []
    for done in range(0, RUNS, AT_ONCE):
        with make() as desktop:
            programs = [(way, Program(desktop, path)) for way, (paths, _) in ways.items() for path in paths
                        for _ in range(min(AT_ONCE, RUNS - done))]
            for _, program in programs:
                program.window()
            for way, program in programs:
                ways[way][1](desktop, program)
                faults += [f"{way}: {fault}" for fault in program.faults_after_end()]
    print(f"{make.__name__}: {RUNS} ends each by {', '.join(ways)}: {len(faults)} faults", *faults, sep="\n  ",
          flush=True)
    return bool(faults)


for kind in X11, Wayland:
    with kind() as screen:
        demo = Program(screen, DEMO)
        for check in is_dragged_by_its_picture, about_is_modal:
            check(screen, demo, demo.window())
    print(f"{kind.__name__}: starts, is dragged by its picture, runs modally", flush=True)
sys.exit(any([end_often(X11, WAYS), end_often(X11Session, SESSION), end_often(Wayland, WAYS)]))
