"""Drivers, rules and the seat of the guest, the virtual device, and programs of an ordinary user."""

import contextlib
import difflib
import os
import pathlib
import shutil
import subprocess
import time

from desktop import Program, wait_for
from virtual_device import VirtualDevice
from wire import FIRST_USE, HDCP_ON, KERNELS_OWN, START_UP, each_control, normal

USER = 1000  # in no group
HOME = "/run/home"
RULE = pathlib.Path("/run/udev/rules.d/70-tavro-setup-tool.rules")
SEAT = pathlib.Path("/run/systemd/seats/seat0")  # udev's rules give rights to the user of the active seat


def run(*command, check=True):
    """What a command prints."""
    return subprocess.run(command, check=check, text=True, stdout=subprocess.PIPE, stderr=subprocess.STDOUT).stdout


def failed(code):
    return "CameraControl Error: Control request failed: " + code


class Guest(contextlib.ExitStack):
    """The state that each scenario starts with: the UVC driver is loaded, our udev rule is not installed, and the user
    is at the seat. What a scenario starts ends with it."""

    def __init__(self, display, installed):
        super().__init__()
        self.display = display
        self.bin = installed + "/bin/"
        self.our_rule = installed + "/lib/udev/rules.d/" + RULE.name
        self.as_user = ["setpriv", f"--reuid={USER}", f"--regid={USER}", "--clear-groups"]
        self.device = self.program = None

    def __enter__(self):
        SEAT.parent.mkdir(parents=True, exist_ok=True)
        SEAT.write_text(f"ACTIVE=c1\nACTIVE_UID={USER}\nIS_SEAT0=1\n", encoding="ascii")
        run("udevadm", "settle")  # the device of the scenario before is gone for udev, too
        RULE.unlink(missing_ok=True)
        run("udevadm", "control", "--reload")
        run("modprobe", "uvcvideo")
        return super().__enter__()

    def leave_seat(self):
        SEAT.unlink()

    def install_rule(self):
        RULE.parent.mkdir(parents=True, exist_ok=True)
        shutil.copy(self.our_rule, RULE)
        run("udevadm", "control", "--reload")

    def protocol(self):
        """What a failed scenario leaves to read."""
        log = self.program.log()[-20:] if self.program else []
        wire = self.device.wire()[-20:] if self.device else []
        return "".join([f"  log: {line}\n" for line in log] + [f"  wire: {line}\n" for line in wire])

    def start_device(self, *options):
        self.device = VirtualDevice(self.bin + "tavro-virtual-device", self.our_rule, *options)
        self.callback(self.device.end)
        return self.device

    def plug_in(self, *options):
        self.start_device("--attach", *options).wait_for_nodes()
        assert pathlib.Path(f"/proc/{self.device.process.pid}").owner() == "nobody", "the virtual device keeps rights"
        return self.device

    def start(self, *command, kind=Program):
        """Starts a program of the user."""
        program = kind(self.display, *self.as_user, *command)
        self.callback(program.process.wait)
        self.callback(program.process.kill)
        return program

    def start_tool(self, *tracer):
        self.mark()
        self.program = self.start(*tracer, self.bin + "tavro-setup-tool", kind=Tool)
        return self.program

    def open_settings(self, *tracer):
        program = self.start_tool(*tracer)
        program.settings = program.window()
        self.display.focus(program.settings)
        return program

    def mark(self):
        """Requests before this are not checked."""
        self.since, self.checked = time.time(), len(self.device.wire())

    def sent(self):
        """The program's requests to check, as `normal` writes them."""
        return [normal(line, self.since) for line in self.device.wire()[self.checked:] if not KERNELS_OWN.match(line)]

    def expect(self, requests, transport=None):
        """Waits for these requests, and checks that there are no others. The transport can be told at the first use of
        a block since the driver was bound."""
        with contextlib.suppress(AssertionError):
            wait_for("requests", lambda: len(self.sent()) >= len(requests), 30)
        time.sleep(0.3)  # for a request too many
        difference = "\n".join(difflib.unified_diff(requests, self.sent(), "expected", "sent", lineterm="", n=20))
        assert not difference, difference
        by_driver = any(FIRST_USE.match(line) for line in self.device.wire()[self.checked:])
        assert not transport or by_driver == (transport == "driver"), f"not {transport}"
        self.mark()

    def use_each_control(self, transport, *tracer):
        """After a failed request the program opens the device again and repeats the action."""
        # From Linux 6.12 on the driver fills up a short answer with zeros and reports success.
        short = transport == "direct" or [int(number) for number in os.uname().release.split(".")[:2]] < [6, 12]
        program = self.open_settings(*tracer)
        self.expect(START_UP, transport)
        self.device.tell("fault stall get 13")
        self.device.tell("fault timeout set 11")
        program.press("alt+m", "Right", "alt+n")
        wait_for("HDCP write", lambda: HDCP_ON[-1] in self.sent(), 120)
        if short:
            self.device.tell("fault short get 11")
        program.press("alt+f", "alt+h", "Prior", "alt+x", "Home", "alt+r", "space", delay=200)
        time.sleep(1)  # the menu opens
        program.press("Down", "Return")
        self.expect(each_control(short))
        program.expect_logged(failed("00000000"))


class Tool(Program):
    settings = None  # the settings window, once it is open

    def press(self, *keys, delay=20):
        self.desktop.press(*keys, delay=delay)

    def expect_logged(self, *texts):
        for text in texts:
            assert any(text in line for line in self.log()), f"not logged: {text}"

    def expect_alert(self, *logged):
        """The alert shows, Return ends the program, and the texts are logged."""
        alert = wait_for("alert", lambda: [w for w in self.windows() if w != self.settings])[0]
        self.desktop.focus(alert)
        self.press("Return")
        self.expect_end()
        self.expect_logged(*logged)

    def quit(self):
        assert self.windows() == [self.settings], "an alert, or the program has ended"
        self.press("ctrl+q")
        self.expect_end()
