"""Drivers, rules and the seat of the guest, the virtual device, and an ordinary user's programs."""

import pathlib
import re
import subprocess
import time
import unittest

from desktop import Program, wait_for
from virtual_device import AttachedDevice, read

USER = 1000  # in no group
HOME = "/run/home"
INSTALLED = "/run/installed"  # the user can reach it
OUR_RULE = INSTALLED + "/lib/udev/rules.d/70-tavro-setup-tool.rules"
RULES = "/run/udev/rules.d"
LOG = pathlib.Path("/run/log")
SEAT = pathlib.Path("/run/systemd/seats/seat0")  # udev's rules give rights to its active user
# The program's requests to the extension unit. The UVC driver adds others: at the first use of a block since it was
# bound, and after a refusal.
OWN = re.compile("(a1 81|21 01) 00 .. 00 03 ")
FIRST_USE = re.compile("a1 8[56] 00 .. 00 03 ")


def run(command, check=True):
    """The output of a shell command."""
    return subprocess.run(command, shell=True, check=check, text=True, stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT).stdout


def prepare(display, folder):
    """The driver is loaded by name only. The user's programs run in a locale with a decimal comma,
    and find neither the theme nor the bus of their desktop, of which the toolkit warns."""
    run(f"mkdir -p /run/modprobe.d {RULES} {SEAT.parent}")
    run("echo blacklist uvcvideo >/run/modprobe.d/scenarios.conf")
    run("modprobe vhci-hcd")
    run(f"busybox syslogd -O {LOG}")
    run(f"install -d -o {USER} -g {USER} -m 700 {HOME}")
    run(f"cp -r {folder} {INSTALLED}")
    display.env |= {"HOME": HOME, "XDG_RUNTIME_DIR": HOME, "TZ": "UTC", "LC_ALL": "",
                    "LANG": "C.UTF-8", "LC_NUMERIC": "de_DE.UTF-8",
                    "LOCPATH": INSTALLED + "/locales",
                    "QT_QPA_PLATFORMTHEME": "none-such", "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1",
                    "DBUS_SESSION_BUS_ADDRESS": "unix:path=/nowhere"}
    assert display.run("locale", "decimal_point") == ",\n"


class Guest(unittest.TestCase):
    """Each scenario starts with the UVC driver loaded, without our udev rule, and with the user at
    the seat. Programs that it starts end with it, and print their logs: the runner shows those of a
    failed scenario."""

    display = None

    def setUp(self):
        self.as_user = ["setpriv", f"--reuid={USER}", f"--regid={USER}", "--clear-groups"]
        SEAT.write_text(f"ACTIVE=c1\nACTIVE_UID={USER}\nIS_SEAT0=1\n", encoding="ascii")
        run("udevadm settle")  # handles the removal of the previous device
        run(f"rm -f {RULES}/*")
        run("udevadm control --reload")
        run("modprobe uvcvideo")

    def install_rule(self):
        run(f"cp {OUR_RULE} {RULES}")
        run("udevadm control --reload")

    def start_device(self, *options):
        self.device = AttachedDevice(INSTALLED + "/bin/tavro-virtual-device", OUR_RULE, *options)
        self.microphone = 176
        self.addCleanup(lambda: print(*self.device.wire()[-20:], sep="\n"))
        self.addCleanup(self.device.end)
        return self.device

    def plug_in(self, *options):
        device = self.start_device("--attach", *options)
        status = read(f"/proc/{device.process.pid}/status")
        self.assertRegex(status, r"Uid:(\t65534){4}\nGid:(\t65534){4}\n")  # no longer root
        device.wait_for_nodes()
        return device

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
        self.checked = len(self.device.wire())

    def expect(self, count, transport=None):
        """Waits for that many requests, and checks that there are no others. The transport can be
        told at the first use of a block since the driver was bound."""
        def sent(kind):
            return [line for line in self.device.wire()[self.checked:] if kind.match(line)]
        wait_for(f"{count} requests", lambda: len(sent(OWN)) >= count)
        time.sleep(0.3)  # for a request too many
        self.assertEqual(len(sent(OWN)), count, sent(OWN))
        self.assertIn(transport, (None, "driver" if sent(FIRST_USE) else "direct"))
        self.mark()

    def turn_up_microphone(self, transport):
        self.mark()
        self.program.press("alt+m", "Right")
        self.expect(3, transport)
        self.microphone += 1
        self.device.tell("show", "plugged: bit rate H.264 1 MJPEG 1, HDCP 0, "
                                 f"microphone {self.microphone}, headphone 128, HDMI 255, AUX 200")


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

    def expect_end(self):
        super().expect_end()
        lines = self.log()
        wait_for("equal lines in the system's log", lambda: re.findall(
            "tavro-setup-tool: (.*)", LOG.read_text())[-len(lines):] == lines)

    def quit(self):
        assert self.windows() == [self.settings], "an alert, or the program has ended"
        self.press("ctrl+q")
        self.expect_end()
