#!/usr/bin/env python3
"""desktop.py COMMAND [ARGUMENT...]: runs the command with a display without a screen, an X11 server of its own that
ends with it, and gives its status. Needs Xvfb; leaves nothing behind.

As a module it is what everything uses that drives a window: displays without a screen, X11 or Wayland, a program on
them, and a user's hands."""

import json
import os
import re
import shutil
import socket
import struct
import subprocess
import sys
import tempfile
import time

# What the program itself says; anything else on standard error is noise.
OWN_LINES = re.compile(r"(call camera CreateInstance|\[(Get|Set)|(get|set)Extension_|new |CameraControl Error:)")


def arguments(text, least, most=None):
    """The command line's arguments. Prints the text, which is a script's docstring, for --help, and ends if there are
    not so many."""
    given = sys.argv[1:]
    if given[:1] in (["-h"], ["--help"]):
        print(text)
        sys.exit()
    if not least <= len(given) <= (most or least):
        sys.exit(text)
    return given


def wait_for(what, condition, seconds=60):
    """Returns what the condition gives as soon as that is true."""
    end = time.monotonic() + seconds
    while time.monotonic() < end:
        result = condition()
        if result:
            return result
        time.sleep(0.05)
    raise AssertionError(f"no {what}")


def output(*command, env=None):
    return subprocess.run(command, env=env, capture_output=True, text=True, check=False).stdout


class Program:
    """The program as it runs on a desktop; what it prints is in `requests()` and `log()`. With `in_journal` its
    standard error passes for the journal's."""

    def __init__(self, desktop, *command, in_journal=False, **environment):
        self.desktop = desktop
        self.folder = tempfile.mkdtemp(dir=desktop.folder)
        env = desktop.env | environment
        with open(self.folder + "/out", "w") as out, open(self.folder + "/err", "w") as err:
            if in_journal:
                status = os.fstat(err.fileno())
                env["JOURNAL_STREAM"] = f"{status.st_dev}:{status.st_ino}"
            self.process = subprocess.Popen(command, env=env, stdout=out, stderr=err, start_new_session=True)
        self.pid = self.process.pid

    def _read(self, name):
        with open(f"{self.folder}/{name}", encoding="utf-8") as file:
            return file.read().splitlines()

    def requests(self):
        return self._read("out")

    def log(self):
        return self._read("err")

    def windows(self, title="Tavro Setup Tool"):
        return self.desktop.windows(self.pid, title)

    def window(self, title="Tavro Setup Tool"):
        return wait_for(f"window {title!r} of {self.log()}", lambda: self.windows(title))[0]

    def faults_after_end(self):
        """Waits for the end, which has to be a clean one; returns what was wrong with it."""
        try:
            status = self.process.wait(60)
        except subprocess.TimeoutExpired:
            self.process.kill()
            self.process.wait()
            return ["still runs"]
        faults = [] if status == 0 else [f"status {status}"]
        faults += [f"printed {line!r}" for line in self.log() if not OWN_LINES.match(line)]
        try:
            os.killpg(self.pid, 0)
            faults.append("left a process behind")
        except ProcessLookupError:
            pass
        return faults


class Desktop:
    """A display server of its own, which ends with the `with` block."""

    def __init__(self):
        self.folder = tempfile.mkdtemp()
        runtime = self.folder + "/runtime"
        os.mkdir(runtime, 0o700)
        self.env = os.environ | {"XDG_RUNTIME_DIR": runtime, "LC_ALL": "C.UTF-8"}
        for name in ("DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM", "LANGUAGE"):
            self.env.pop(name, None)
        self.servers = []

    def serve(self, *command, **arguments):
        self.servers.append(subprocess.Popen(command, env=self.env, stdout=subprocess.DEVNULL,
                                             stderr=subprocess.DEVNULL, **arguments))

    def end(self):
        for server in reversed(self.servers):
            server.terminate()
        for server in self.servers:
            try:
                server.wait(20)
            except subprocess.TimeoutExpired:
                server.kill()
                server.wait()
        self.servers = []

    def __enter__(self):
        self.start()
        return self

    def __exit__(self, *_):
        self.end()
        shutil.rmtree(self.folder)

    def run(self, *command):
        return output(*command, env=self.env)


class Display(Desktop):
    """Xvfb, without a window manager."""

    def start(self):
        read, write = os.pipe()
        self.serve("Xvfb", "-displayfd", str(write), "-screen", "0", "1600x1200x24", "-nolisten", "tcp", "-noreset",
                   pass_fds=[write])
        os.close(write)
        with os.fdopen(read) as display:
            self.env["DISPLAY"] = ":" + display.readline().strip()
        self.env["QT_QPA_PLATFORM"] = "xcb"

    def windows(self, pid, title):
        return self.run("xdotool", "search", "--all", "--onlyvisible", "--pid", str(pid), "--name",
                        f"^{title}$").split()

    def place(self, window):
        values = dict(re.findall(r"(\w+)=(-?\d+)", self.run("xdotool", "getwindowgeometry", "--shell", window)))
        return tuple(int(values[name]) for name in ("X", "Y", "WIDTH", "HEIGHT"))

    def focus(self, window):
        self.run("xdotool", "windowfocus", "--sync", window)

    def key(self, *keys):
        # F1 by its code: the xdotool of newer systems presses Alt with it.
        self.run("xdotool", "key", "+".join({"F1": "67"}.get(key, key) for key in keys))

    def point(self, x, y):
        self.run("xdotool", "mousemove", str(x), str(y))

    def press(self, down=True):
        self.run("xdotool", "mousedown" if down else "mouseup", "1")

    def picture(self, window, path):
        subprocess.run(["import", "-window", window, path], env=self.env, check=True)


class X11(Display):
    """With a small window manager."""

    def start(self):
        super().start()
        self.serve("openbox")
        wait_for("window manager", lambda: "window id" in self.run("xprop", "-root", "_NET_SUPPORTING_WM_CHECK"))

    def focus(self, window):
        self.run("xdotool", "windowactivate", window)
        time.sleep(0.2)  # not longer: a window behind a modal one never gets it

    def close(self, window):
        self.run("wmctrl", "-i", "-c", window)


class X11Session(X11):
    """With a session manager, whose end is the end of the programs in it."""

    def start(self):
        super().start()
        self.env["HOME"] = self.folder
        with open(self.folder + "/.xsmstartup", "w") as startup:
            startup.write(f"sh -c 'echo $SESSION_MANAGER >{self.folder}/address'\n")
        self.serve("xsm")
        self.env["SESSION_MANAGER"] = wait_for("session", self.address)

    def address(self):
        try:
            with open(self.folder + "/address") as file:
                return file.read().strip()
        except FileNotFoundError:
            return None

    def end_session(self):
        self.servers[-1].terminate()


class VirtualPointer:
    """A mouse for a compositor, by wlr-virtual-pointer-unstable-v1: there is no ready command for it."""

    MANAGER, POINTER = 3, 4

    def __init__(self, path):
        self.socket = socket.socket(socket.AF_UNIX)
        self.socket.connect(path)
        self._send(1, 1, 2)  # wl_display.get_registry
        interface = b"zwlr_virtual_pointer_manager_v1"
        heard = b""
        while (found := heard.find(interface)) < 0:
            heard += self.socket.recv(65536)
        name = struct.unpack_from("=I", heard, found - 8)[0]
        text = struct.pack("=I", len(interface) + 1) + interface + b"\0"
        self._send(2, 0, name, text, 1, self.MANAGER)  # wl_registry.bind
        self._send(self.MANAGER, 0, 0, self.POINTER)

    def _send(self, to, request, *values):
        body = b"".join(v if isinstance(v, bytes) else struct.pack("=I", v) for v in values)
        self.socket.sendall(struct.pack("=II", to, (8 + len(body)) << 16 | request) + body)

    def move(self, x, y, width, height):
        self._send(self.POINTER, 1, 0, x, y, width, height)
        self._send(self.POINTER, 4)

    def button(self, down):
        self._send(self.POINTER, 2, 0, 0x110, int(down))
        self._send(self.POINTER, 4)


class Wayland(Desktop):
    """A compositor without a screen, with a virtual mouse and keyboard."""

    def start(self):
        folder = self.folder + "/compositor"
        os.mkdir(folder, 0o700)
        with open(folder + "/config", "w") as config:
            config.write("output HEADLESS-1 resolution 1600x1200\nfor_window [title=.*] floating enable\n"
                         "xwayland disable\nfocus_follows_mouse no\n")
        as_user = []
        if os.geteuid() == 0:  # which it refuses
            as_user = ["setpriv", "--reuid=65534", "--regid=65534", "--clear-groups"]
            os.chmod(self.folder, 0o711)
            os.chown(folder, 65534, 65534)
            os.chown(folder + "/config", 65534, 65534)
        self.env["SWAYSOCK"] = folder + "/control"
        self.serve(*as_user, "env", "XDG_RUNTIME_DIR=" + folder, "WLR_BACKENDS=headless", "WLR_RENDERER=pixman",
                   "WLR_LIBINPUT_NO_DEVICES=1", "sway", "-c", folder + "/config")
        wait_for("compositor", lambda: self.run("swaymsg", "-t", "get_version"))
        name = next(name for name in os.listdir(folder) if re.fullmatch(r"wayland-\d+", name))
        self.env |= {"WAYLAND_DISPLAY": f"{folder}/{name}", "QT_QPA_PLATFORM": "wayland"}
        self.pointer = VirtualPointer(f"{folder}/{name}")
        self.serve("wtype", "-s", "3600000")  # so that there is a keyboard before the first key

    def _nodes(self, node=None):
        node = node or json.loads(self.run("swaymsg", "-t", "get_tree"))
        yield node
        for child in node["nodes"] + node["floating_nodes"]:
            yield from self._nodes(child)

    def windows(self, pid, title):
        return [str(n["id"]) for n in self._nodes() if n.get("pid") == pid and n["name"] == title and n["visible"]]

    def place(self, window):
        node = next(n for n in self._nodes() if str(n["id"]) == window)
        outer, inner = node["rect"], node["window_rect"]
        return outer["x"] + inner["x"], outer["y"] + inner["y"], inner["width"], inner["height"]

    def focus(self, window):
        self.run("swaymsg", f"[con_id={window}] focus")
        time.sleep(0.1)

    def key(self, *keys):
        modifiers = [part for key in keys[:-1] for part in ("-M", key)]
        self.run("wtype", *modifiers, "-k", keys[-1])

    def point(self, x, y):
        self.pointer.move(x, y, 1600, 1200)

    def press(self, down=True):
        self.pointer.button(down)

    def close(self, window):
        self.run("swaymsg", f"[con_id={window}] kill")


DESKTOPS = {"X11": X11, "Wayland": Wayland}


def main():
    with Display() as display:
        environment = os.environ | {"DISPLAY": display.env["DISPLAY"]}
        return subprocess.run(arguments(__doc__, 1, len(sys.argv)), env=environment, check=False).returncode


if __name__ == "__main__":
    sys.exit(main())
