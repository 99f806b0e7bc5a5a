#!/usr/bin/env python3
"""Owns faults that need a real kernel: its driver, nodes and rights, other programs, system calls,
the system log.

`scenarios.py FOLDER [Scenarios.NAME...]` runs all scenarios, or those named, in a guest of
scripts/vm-run. scripts/test-kernel installs the programs in FOLDER."""

import re
import sys
import time
import unittest

from desktop import Display, wait_for
from guest import HOME, INSTALLED, SEAT, Guest, prepare, run
from virtual_device import read, require_guest

# System calls that the program must not make: it changes no file, has no network socket, and opens
# only its device and files that the system provides for every program. A file opened with O_PATH
# can't be read.
CHANGES = ("creat|openat2|unlink|rename|mkdir|mknod|link|symlink|f?chmod|[fl]?chown|truncate")
SYSTEM_FOLDERS = "usr|lib|lib64|etc|sys|proc/self|run/udev|var/cache/fontconfig|var/lib/dbus"
HOME_FILES = "Xauthority|((local/share|cache|config)/)?(XCompose|fonts|fontconfig|icons|themes)"
OFFENCE = (
    rf"[^a-z]({CHANGES})(at2?)?\(|"
    r"socket\((?!AF_UNIX|AF_NETLINK)|"
    r'open(at)?\([^"]*"(?!(/dev/null|NODE)").*(O_WRONLY|O_RDWR|O_CREAT|O_TRUNC)|'
    rf'open(at)?\([^"]*"(?!.*O_PATH|/({SYSTEM_FOLDERS})["/]|/dev/(null|urandom|bus/usb)"|NODE"|'
    rf'[^"]*/locales/de_DE\.UTF-8/|[^"]*/\.({HOME_FILES}))')


class Scenarios(Guest):
    def use_each_control(self, transport):
        """After a failed request the program opens the device again and repeats the action. It
        opens nothing but its device."""
        trace = HOME + "/trace"
        program = self.open_settings("strace", "-DD", "-f", "-q", "--seccomp-bpf", "-o", trace,
                                     "--trace=%file,%network")
        self.expect(9, transport)
        self.device.tell("fault stall get 13")
        self.device.tell("fault timeout set 11")
        program.press("alt+m", "Right", "alt+n")
        self.expect(9)  # three are repeated
        program.press("alt+f", "alt+h", "Prior", "alt+x", "Home", "alt+r", "space", delay=200)
        program.expect_menu()
        program.press("Down", "Return")
        self.expect(15)
        self.device.tell("show", "plugged: bit rate H.264 2 MJPEG 1, HDCP 0, "
                                 "microphone 177, headphone 144, HDMI 0, AUX 0")
        program.expect_logged("Control request failed: 00000000")
        program.quit()
        wait_for("end of the trace", lambda: read(trace).endswith("+++ exited with 0 +++"))
        succeeded = [line for line in read(trace).splitlines() if " = -1 " not in line]
        offence = OFFENCE.replace("NODE", self.device.capture_node() or self.device.usb_node())
        self.assertGreater(len(succeeded), 100)
        self.assertEqual([line for line in succeeded if re.search(offence, line)], [])

    def test_changes_through_the_driver_beside_a_stream(self):
        device = self.plug_in()
        stream = self.start("v4l2-ctl", "-d", device.capture_node(), "--stream-mmap",
                            "--stream-count=0", "--verbose")

        def frames():
            return sum("dqbuf" in line for line in stream.log())

        def expect_frames():
            before = frames()
            wait_for("frames", lambda: frames() >= before + 10)

        def writes():
            return sum(line.startswith("21 01 ") for line in device.wire())

        expect_frames()
        self.use_each_control("driver")
        expect_frames()
        program = self.open_settings()
        program.expect_logged("TimeInterval = ")  # in the form of OWN_LINES in each locale
        before = writes()
        program.press("alt+m", *["Left", "Right"] * 50)
        program.press("alt+h", *["Left", "Right"] * 50)
        program.press("alt+x", *["Right", "Left"] * 50)
        program.press("alt+r", *["Up", "Down"] * 50)
        program.press(*["alt+n", "alt+f"] * 50)
        wait_for("writes", lambda: writes() >= before + 600)  # one a key, but two for HDMI and AUX
        time.sleep(0.5)
        self.assertEqual(writes(), before + 600)
        expect_frames()
        program.quit()
        expect_frames()

    def test_changes_directly_with_our_rule(self):
        run("modprobe -r uvcvideo")
        self.install_rule()
        self.plug_in()
        self.use_each_control("direct")

    def test_plugged_in_again(self):
        """An action on the old interface fails and is repeated on the reopened device."""
        self.install_rule()
        device = self.plug_in()
        program = self.open_settings()
        node = device.capture_node()
        device.tell("unplug")
        device.plug_in_again()
        self.assertEqual(device.capture_node(), node)
        self.turn_up_microphone("driver")
        with open(node, "rb"):  # as a recorder does
            device.tell("unplug")
            device.plug_in_again()
        self.assertNotEqual(device.capture_node(), node)
        self.turn_up_microphone("driver")
        for value in "01":  # makes a new folder of the interface only
            (device.folder() / "authorized").write_text(value)
        device.wait_for_nodes()
        self.turn_up_microphone("driver")
        program.quit()
        program.expect_logged("Control request failed: fffffffc", 3)

    def test_driver_removed_and_restored(self):
        self.install_rule()
        device = self.plug_in()
        unbind = f"echo {device.folder().name}:1.0 >/sys/bus/usb/drivers/uvcvideo/unbind"
        bind = unbind.replace("unbind", "bind")
        program = self.open_settings()
        self.expect(9)
        for remove, restore in ("modprobe -r uvcvideo", "modprobe uvcvideo"), (unbind, bind):
            run(remove)
            self.turn_up_microphone("direct")
            run(restore)
            device.wait_for_nodes()
            self.turn_up_microphone("driver")
        self.assertNotIn("Error", "\n".join(program.log()))
        with open(device.capture_node(), "rb"):
            run(unbind)
            run(bind)  # there is no capture node, as the old one is open
            program.press("alt+f")
            program.expect_alert("Control request failed: ffffff9c")
        self.expect(0)

    def test_driver_removed_without_our_rule(self):
        self.plug_in()
        program = self.open_settings()
        run("modprobe -r uvcvideo")
        program.press("alt+m", "Right")
        program.expect_alert("Control request failed: fffffffd")

    def test_unplugged_between_and_during_requests(self):
        device = self.plug_in()
        for command in "unplug", "fault unplug set 13":
            program = self.open_settings()
            device.tell(command)
            program.press("alt+m", "Right")
            program.expect_alert("IOCreatePlugInInterfaceForService returned 0xfffffffc.")
            device.plug_in_again()

    def test_no_rights_on_the_capture_node(self):
        """The user of a remote session needs the group video."""
        SEAT.unlink()
        self.plug_in()
        self.start_tool().expect_alert("Control request failed: fffffffd")
        self.as_user[-1] = "--groups=video"
        self.open_settings().quit()

    def test_not_authorized(self):
        device = self.plug_in()
        report = " ".join(self.as_user) + f" {INSTALLED}/bin/tavro-setup-tool-report"
        printed = run(report)
        self.assertIn(f"for the device {device.vendor}:{device.product}", printed)
        self.assertIn("extension unit 3, controls 10 11 12 13", printed)
        self.assertIn("class 0e 01 00, driver uvcvideo", printed)
        self.assertIn(f"{device.capture_node()} crw-rw---- root:video; you: rw", printed)
        (device.folder() / "authorized").write_text("0")
        self.start_tool().expect_alert("CameraControl Error: No interface to send request")
        self.assertIn("authorized 0", run(report))

    def test_attached_by_the_usbip_tool(self):
        device = self.start_device("--port", "3241")
        exported = run("usbip --tcp-port 3241 list -r 127.0.0.1")
        self.assertRegex(exported, rf"1-1: .*\({device.vendor}:{device.product}\)")
        run("usbip --tcp-port 3241 attach -r 127.0.0.1 -b 1-1")
        device.wait_for_nodes()
        run(f"v4l2-ctl -d {device.capture_node()} --stream-mmap --stream-count=10")
        run("usbip detach -p 0")


if __name__ == "__main__":
    require_guest()
    print("Linux", run("uname -r"), end="", flush=True)
    with Display() as Guest.display:
        prepare(Guest.display, sys.argv.pop(1))
        result = unittest.main(verbosity=2, buffer=True, exit=False).result
    failed = len(result.failures + result.errors)
    print(f"{result.testsRun - failed} passed, {failed} failed")
    sys.exit(failed > 0)
