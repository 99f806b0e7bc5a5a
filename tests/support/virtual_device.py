"""The virtual device, and its nodes if it is attached to the kernel of a guest of scripts/vm-run."""

import os
import pathlib
import re
import subprocess
import sys

from desktop import wait_for


def read(path):
    """A file's text without spaces around it, empty if the file can't be read."""
    try:
        return pathlib.Path(path).read_text(encoding="utf-8").strip()
    except OSError:
        return ""


def require_guest():
    """Ends a script that would change drivers, rules and the seat of a real computer."""
    if "vm_guest=1" not in read("/proc/cmdline").split():
        sys.exit(f"{sys.argv[0]} runs only in a guest of scripts/vm-run")


class VirtualDevice:
    """A running tavro-virtual-device."""

    def __init__(self, program, *options, **environment):
        self.process = subprocess.Popen([program, *options], env=os.environ | environment, text=True,
                                        stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        self._expect("ready")

    def _expect(self, expected):
        answer = self.process.stdout.readline()
        assert answer == expected + "\n", answer

    def tell(self, command, answer="ok"):
        print(command, file=self.process.stdin, flush=True)
        self._expect(answer)


class AttachedDevice(VirtualDevice):
    """Attached to the kernel. The udev rule of its build has its identifiers."""

    def __init__(self, program, rule, *options):
        self.vendor, self.product = re.findall(r'=="([0-9a-f]{4})"', read(rule))
        self.wire_log = f"/run/wire.{id(self)}"
        super().__init__(program, "--wire-log", self.wire_log, *options)

    def plug_in_again(self):
        self.wait_until_gone()
        self.tell("plug")
        self.wait_for_nodes()

    def end(self):
        with self.process:
            self.process.kill()
        self.wait_until_gone()

    def folder(self):
        """The device's folder in sysfs."""
        ids = pathlib.Path("/sys/bus/usb/devices").glob("*/idVendor")
        return next((file.parent for file in ids if read(file) == self.vendor), None)

    def usb_node(self):
        name = re.search("DEVNAME=(.+)", read(f"{self.folder()}/uevent"))
        return name and "/dev/" + name[1]

    def capture_node(self):
        indexes = pathlib.Path(self.folder() or "/none").glob("*/video4linux/video*/index")
        return next((f"/dev/{file.parent.name}" for file in indexes if read(file) == "0"), None)

    def wait_until_gone(self):
        wait_for("end of the device", lambda: not self.folder())

    def wait_for_nodes(self):
        """Of the device, and of the UVC driver if that is loaded, with the rights that udev gives them."""
        nodes = [self.usb_node]
        if pathlib.Path("/sys/module/uvcvideo").exists():
            nodes.append(self.capture_node)
        wait_for("nodes", lambda: all(node() and pathlib.Path(node()).is_char_device() for node in nodes))
        subprocess.run(["udevadm", "settle", "--timeout=20"], check=False)

    def wire(self):
        """Each request to the device's units so far."""
        return read(self.wire_log).splitlines()
