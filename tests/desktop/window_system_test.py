#!/usr/bin/env python3
"""Owns faults that only a window system shows: drags of the window, a modal window, each way of
quitting.

window_system_test.py FOLDER [RUNS] uses the programs in FOLDER on X11 and on Wayland, and quits
RUNS times each way."""

import signal
import time

from desktop import X11, Program, Wayland, X11Session, arguments, wait_for

FOLDER, RUNS = [*arguments(__doc__, 1, 2), "2"][:2]
DEMO = FOLDER + "/tavro-setup-tool-demo"
TOOL = FOLDER + "/tavro-setup-tool"  # finds no device, and shows the alert
AT_ONCE = 10
ABOUT = "About Tavro Setup Tool"


def press(program, key):
    program.desktop.focus(program.window())
    program.desktop.press(key)


def place_at_rest(desktop, window):
    """The window manager moves a new window once more."""
    def unchanged():
        place = desktop.place(window)
        time.sleep(1)
        return desktop.place(window) == place and place
    return wait_for("rest", unchanged)


def drag_by_its_picture(desktop, place):
    left, top, *_ = place
    # The first move is longer than the drag distance.
    desktop.drag((left + 300, top + 30), (left + 320, top + 30), (left + 420, top + 80))


def is_dragged_and_runs_modally(desktop):
    program = Program(desktop, DEMO)
    window = program.window()
    place = left, top, width, height = place_at_rest(desktop, window)
    drag_by_its_picture(desktop, place)
    moved = left + 100, top + 50, width, height
    wait_for("move", lambda: desktop.place(window) == moved)
    press(program, "F1")
    about = program.window(ABOUT)
    desktop.request_focus(window)
    desktop.press("ctrl+q")  # to the window behind if the window manager allows it
    drag_by_its_picture(desktop, moved)
    assert place_at_rest(desktop, window) == moved, "the window behind is dragged"
    desktop.close(about)
    wait_for("end of the modal run", lambda: not program.windows(ABOUT))
    press(program, "ctrl+q")
    program.expect_end()


# For each way of quitting: the programs, and the action. The last one ends all programs at once.
WAYS = {
    "Ctrl+Q": ([DEMO], lambda program: press(program, "ctrl+q")),
    "window button": ([DEMO], lambda program: program.desktop.close(program.window())),
    "alert": ([TOOL], lambda program: press(program, "space")),
    "SIGTERM": ([DEMO], lambda program: program.process.terminate()),
    "hang-up of the session": ([DEMO], lambda program: program.process.send_signal(signal.SIGHUP)),
    "end of the display": ([DEMO, TOOL], lambda program: program.desktop.end()),
}
SESSION = {
    "end of the session": ([DEMO, TOOL], lambda program: program.desktop.servers[-1].terminate()),
}


def end_often(kind, ways):
    for done in range(0, int(RUNS), AT_ONCE):
        count = min(AT_ONCE, int(RUNS) - done)
        with kind() as desktop:
            programs = {way: [Program(desktop, path) for path in paths * count]
                        for way, (paths, _) in ways.items()}
            for program in sum(programs.values(), []):
                program.window()
            for way, (_, end) in ways.items():
                print(f"{kind.__name__}: {way}", flush=True)
                for program in programs[way]:
                    end(program)
                    program.expect_end()


for display in X11, Wayland:
    with display() as screen:
        is_dragged_and_runs_modally(screen)
    end_often(display, WAYS)
end_often(X11Session, SESSION)
