"""Displays without a screen on X11 and Wayland, programs on them, and simulated input."""

import contextlib
import json
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import time

# Log lines of the program, and of its toolkit at the end of the display; others on standard error
# are a fault.
OWN_LINES = re.compile(r"(call camera CreateInstance|\[(Get|Set)|(get|set)Extension_|new |"
                       r"CameraControl Error:|TimeInterval = -?\d+\.\d{6}$|"
                       r"The (X11|Wayland) connection broke)")

TIMEOUT = 300  # seconds, which a failure takes; programs in an emulated guest are slow under load


def arguments(text, least, most=None):
    """The command line's arguments. Prints the text, a script's docstring, and ends for --help, and
    with status 2 for another number of arguments or an unknown option."""
    given = sys.argv[1:]
    if given[:1] in (["-h"], ["--help"]):
        print(text)
        sys.exit()
    if not least <= len(given) <= (most or least) or any(each.startswith("-") for each in given):
        print(text, file=sys.stderr)
        sys.exit(2)
    return given


def wait_for(what, condition, seconds=TIMEOUT):
    """Calls the condition until its result is true, and returns the result."""
    start = time.monotonic()
    while (before := time.monotonic()) < start + seconds:
        if result := condition():
            return result
        time.sleep(max(0.05, time.monotonic() - before))  # half of the time is left to the program
    raise AssertionError(f"no {what}")


class Program:
    """A running program with a window: ours, or one that is used beside it."""

    def __init__(self, desktop, *command, **environment):
        self.desktop = desktop
        self.folder = pathlib.Path(tempfile.mkdtemp(dir=desktop.folder))
        # Under nohup a test passes on an ignored SIGHUP.
        command = ["env", "--default-signal=HUP", *command]
        with open(self.folder / "requests.txt", "w") as out, \
                open(self.folder / "log.txt", "w") as err:
            self.process = subprocess.Popen(
                command, env=desktop.env | environment, start_new_session=True,
                stdin=subprocess.DEVNULL, stdout=out, stderr=err)

    def requests(self):
        """The lines on standard output: those of the demo are the requests to its device."""
        return (self.folder / "requests.txt").read_text().splitlines()

    def log(self):
        """The lines on standard error."""
        return (self.folder / "log.txt").read_text().splitlines()

    def windows(self, title="Tavro Setup Tool"):
        return self.desktop.windows(self.process.pid, title)

    def window(self, title="Tavro Setup Tool"):
        return wait_for(f"window {title!r} of {self.log()}", lambda: self.windows(title))[0]

    def expect_menu(self):
        """Waits until it has a second window."""
        wait_for("menu", lambda: len(self.windows(".*")) > 1)

    def expect_end(self):
        """Waits until it ends, with status 0, no foreign log line and no process left."""
        status = self.process.wait(TIMEOUT)
        assert status == 0, f"status {status}"
        foreign = [line for line in self.log() if not OWN_LINES.match(line)]
        assert not foreign, foreign
        with contextlib.suppress(ProcessLookupError):
            os.killpg(self.process.pid, 0)
            raise AssertionError("it left a process behind")


class Display:
    """An X11 server without a screen and without a window manager, until the end of `with`."""

    def __init__(self):
        self.folder = tempfile.mkdtemp()
        self.env = os.environ | {"XDG_RUNTIME_DIR": self.folder + "/runtime", "LC_ALL": "C.UTF-8",
                                 "QT_QPA_PLATFORM": "xcb"}
        os.mkdir(self.env["XDG_RUNTIME_DIR"], 0o700)
        for name in ("WAYLAND_DISPLAY", "LANGUAGE"):
            self.env.pop(name, None)
        self.servers = []
        printed = self.serve("Xvfb", "-displayfd", "1", "-screen", "0", "1600x1200x24", "-noreset",
                             "-nolisten", "tcp", "-r")  # -r: keys don't repeat
        self.env["DISPLAY"] = ":" + printed.readline().strip()

    def serve(self, *command):
        """Runs a command as long as the desktop; returns its output."""
        server = subprocess.Popen(command, env=self.env, text=True,
                                  stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        self.servers.append(server)
        return server.stdout

    def end(self):
        while self.servers:
            server = self.servers.pop()
            server.terminate()
            server.wait(TIMEOUT)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.end()
        shutil.rmtree(self.folder)

    def run(self, *command):
        done = subprocess.run(command, env=self.env, capture_output=True, text=True, check=False)
        return done.stdout

    def windows(self, pid, title):
        return self.run("xdotool", "search", "--all", "--onlyvisible", "--pid", str(pid), "--name",
                        f"^{title}$").split()

    def place(self, window):
        """X, y, width and height, without its frame."""
        printed = self.run("xdotool", "getwindowgeometry", "--shell", window)
        return tuple(int(number) for number in re.findall(r"=(-?\d+)", printed)[1:5])

    def focus(self, window):
        self.run("xdotool", "windowfocus", "--sync", window)

    def press(self, *keys, delay=12):
        """Presses keys or combinations such as "alt+n" one after the other, with the delay in ms
        between them."""
        # F1 by its code: the xdotool of newer systems presses Alt with it.
        codes = ["67" if key == "F1" else key for key in keys]
        self.run("xdotool", "key", "--delay", str(delay), *codes)

    def drag(self, *points):
        """Presses the mouse button at the first point and releases it at the last one."""
        first, *others = [f"mousemove {x} {y} sleep 0.3" for x, y in points]
        self.run(*f"xdotool {first} mousedown 1 {' '.join(others)} mouseup 1".split())

    def screenshot(self, window, path):
        subprocess.run(["import", "-window", window, path], env=self.env, check=True)


class X11(Display):
    """With a small window manager."""

    def __init__(self):
        super().__init__()
        self.serve("openbox")
        wait_for("window manager", lambda: "window id" in self.run(
            "xprop", "-root", "_NET_SUPPORTING_WM_CHECK"))

    def request_focus(self, window):
        """The window manager refuses it to a window behind a modal one."""
        self.run("xdotool", "windowactivate", window)

    def focus(self, window):
        def has_focus():
            self.request_focus(window)
            return self.run("xdotool", "getactivewindow").strip() == window
        wait_for("focus", has_focus)

    def close(self, window):
        self.run("wmctrl", "-i", "-c", window)


class X11Session(X11):
    """With a session manager, whose end is the end of the programs in it."""

    def __init__(self):
        super().__init__()
        self.env["HOME"] = self.folder
        address = self.folder + "/address"
        commands = f"sh -c 'echo $SESSION_MANAGER >{address}'\n"
        pathlib.Path(self.folder, ".xsmstartup").write_text(commands)
        self.serve("xsm")
        self.env["SESSION_MANAGER"] = wait_for("session", lambda: self.run("cat", address).strip())


class Wayland(Display):
    """With a compositor, whose screen, mouse and keyboard are the X11 server's."""

    def __init__(self):
        super().__init__()
        folder = self.folder + "/compositor"
        os.mkdir(folder, 0o700)
        pathlib.Path(folder, "config").write_text(
            "output X11-1 resolution 1600x1200\nxwayland disable\nfocus_follows_mouse no\n"
            "for_window [title=.*] floating enable\n")
        as_user = []
        if os.geteuid() == 0:  # sway refuses to run as root
            as_user = ["setpriv", "--reuid=65534", "--regid=65534", "--clear-groups"]
            os.chmod(self.folder, 0o711)
            shutil.chown(folder, 65534)
        self.env |= {"SWAYSOCK": folder + "/control", "QT_QPA_PLATFORM": "wayland"}
        self.serve(*as_user, "env", "XDG_RUNTIME_DIR=" + folder, "WLR_BACKENDS=x11",
                   "WLR_RENDERER=pixman", "sway", "-c", folder + "/config")
        wait_for("compositor", lambda: self.run("swaymsg", "-t", "get_version"))
        self.env["WAYLAND_DISPLAY"] = folder + "/wayland-1"

    def _nodes(self, node=None):
        node = node or json.loads(self.run("swaymsg", "-t", "get_tree"))
        yield node
        for child in node["nodes"] + node["floating_nodes"]:
            yield from self._nodes(child)

    def windows(self, pid, title):
        return [str(node["id"]) for node in self._nodes() if node.get("pid") == pid
                and node["visible"] and re.fullmatch(title, node["name"] or "")]

    def place(self, window):
        node = next(n for n in self._nodes() if str(n["id"]) == window)
        outer, inner = node["rect"], node["window_rect"]
        return outer["x"] + inner["x"], outer["y"] + inner["y"], inner["width"], inner["height"]

    def focus(self, window):
        self.run("swaymsg", f"[con_id={window}] focus")
        time.sleep(0.2)  # the toolkit asks the compositor once more before it takes keys

    request_focus = focus

    def close(self, window):
        self.run("swaymsg", f"[con_id={window}] kill")
