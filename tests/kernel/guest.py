"""Drivers, rules and the seat of the guest, the virtual device, and programs of an ordinary user."""

import contextlib
import pathlib
import subprocess
import time
import unittest

from desktop import Program, wait_for
from virtual_device import VirtualDevice
from wire import FIRST_USE, KERNELS_OWN, audio, change, normal

USER = 1000  # in no group
HOME = "/run/home"
INSTALLED = "/run/installed"  # the user can reach it
OUR_RULE = INSTALLED + "/lib/udev/rules.d/70-tavro-setup-tool.rules"
RULES = "/run/udev/rules.d"
SEAT = pathlib.Path("/run/systemd/seats/seat0")  # udev's rules give rights to the user of the active seat


def run(command, check=True):
    """What a command of the shell prints."""
    return subprocess.run(command, shell=True, check=check, text=True, stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT).stdout


def prepare(display, folder):
    """The driver is loaded by name only. The user's programs run in a locale with a decimal comma."""
    run(f"mkdir -p /run/modprobe.d {RULES} {SEAT.parent}")
    run("echo blacklist uvcvideo >/run/modprobe.d/scenarios.conf")
    run("modprobe vhci-hcd")
    run(f"install -d -o {USER} -g {USER} -m 700 {HOME}")
    run(f"cp -r {folder} {INSTALLED}")
    display.env |= {"HOME": HOME, "XDG_RUNTIME_DIR": HOME, "TZ": "UTC", "LC_ALL": "", "LANG": "C.UTF-8",
                    "LOCPATH": INSTALLED + "/locales", "LC_NUMERIC": "de_DE.UTF-8"}
    assert display.run("locale", "decimal_point") == ",\n"


class Guest(unittest.TestCase):
    """Each scenario starts with the UVC driver loaded, without our udev rule, and with the user at the seat. Programs
    that it starts end with it, and print their logs: the runner shows those of a failed scenario."""

    display = None
    maxDiff = None

    def setUp(self):
        self.as_user = ["setpriv", f"--reuid={USER}", f"--regid={USER}", "--clear-groups"]
        SEAT.write_text(f"ACTIVE=c1\nACTIVE_UID={USER}\nIS_SEAT0=1\n", encoding="ascii")
        run("udevadm settle")  # the device of the scenario before is gone for udev, too
        run(f"rm -f {RULES}/*")
        run("udevadm control --reload")
        run("modprobe uvcvideo")

    def install_rule(self):
        run(f"cp {OUR_RULE} {RULES}")
        run("udevadm control --reload")

    def start_device(self, *options):
        self.device = VirtualDevice(INSTALLED + "/bin/tavro-virtual-device", OUR_RULE, *options)
        self.microphone = 0xB0
        self.addCleanup(lambda: print(*self.device.wire()[-20:], sep="\n"))
        self.addCleanup(self.device.end)
        return self.device

    def plug_in(self, *options):
        self.start_device("--attach", *options).wait_for_nodes()
        return self.device

    def start(self, *command, kind=Program):
        """Starts a program of the user."""
        program = kind(self.display, *self.as_user, *command)
        self.addCleanup(lambda: print(*program.log()[-20:], sep="\n"))
        self.addCleanup(program.process.wait)
        self.addCleanup(program.process.kill)
        return program

    def start_tool(self, *tracer):
        self.mark()
        self.program = self.start(*tracer, INSTALLED + "/bin/tavro-setup-tool", kind=Tool)
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
        self.assertEqual(self.sent(), requests)
        by_driver = any(FIRST_USE.match(line) for line in self.device.wire()[self.checked:])
        self.assertIn(transport, (None, "driver" if by_driver else "direct"))
        self.mark()

    def turn_up_microphone(self, transport):
        self.mark()
        self.program.press("alt+m", "Right")
        before, self.microphone = self.microphone, self.microphone + 1
        self.expect(change("6d", audio(f"{before:02x}"), audio(f"{self.microphone:02x}")), transport)


class Tool(Program):
    settings = None  # the settings window, once it is open

    def press(self, *keys, delay=20):
        self.desktop.press(*keys, delay=delay)

    def expect_logged(self, text, times=1):
        assert sum(text in line for line in self.log()) >= times, f"not logged: {text}"

    def expect_alert(self, logged):
        """The alert shows, Return ends the program, and the text is logged."""
        alert = wait_for("alert", lambda: [w for w in self.windows() if w != self.settings])[0]
        self.desktop.focus(alert)
        self.press("Return")
        self.expect_end()
        self.expect_logged(logged)

    def quit(self):
        assert self.windows() == [self.settings], "an alert, or the program has ended"
        self.press("ctrl+q")
        self.expect_end()
