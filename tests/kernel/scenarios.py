"""Scenarios: what only a real kernel shows."""

import fcntl
import grp
import os
import pathlib
import re
import time

from desktop import wait_for
from guest import HOME, failed, run
from virtual_device import read
from wire import HDCP_ON, MICROPHONE, SET, START_UP

SCENARIOS = {}
DRIVER = pathlib.Path("/sys/bus/usb/drivers/uvcvideo")
CHECK_PRIVILEGES = os.path.dirname(os.path.realpath(__file__)) + "/../linux/check-privileges"


def scenario(function):
    SCENARIOS[function.__name__] = function
    return function


@scenario
def changes_through_the_driver_beside_a_stream(guest):
    device = guest.plug_in()
    stream = guest.start("v4l2-ctl", "-d", device.capture_node(), "--stream-mmap", "--stream-count=0", "--verbose")

    def frames():
        return sum("dqbuf" in line for line in stream.log())

    def expect_frames():
        before = frames()
        wait_for("frames", lambda: frames() >= before + 10)
        assert stream.process.poll() is None, "the stream has ended"

    expect_frames()
    guest.use_each_control("driver")
    expect_frames()
    for selector, writes, first, keys in (("0d", 100, "alt+m", "Left Right"), ("0d", 100, "alt+h", "Left Right"),
                                          ("0d", 200, "alt+x", "Right Left"), ("0b", 100, "alt+r", "Up Down"),
                                          ("0b", 100, "", "alt+n alt+f")):
        def written():
            return sum(line.startswith(f"{SET}{selector} ") for line in device.wire())
        before = written()
        guest.program.press(*first.split(), *keys.split() * 50)
        wait_for(f"writes by {keys}", lambda: written() >= before + writes)
        time.sleep(0.5)
        assert written() == before + writes, f"{keys}: {written() - before} writes"
        expect_frames()
    guest.program.quit()
    expect_frames()
    held = "plugged: bit rate H.264 2 MJPEG 1, HDCP 0, microphone 177, headphone 144, HDMI 0, AUX 0"
    assert device.ask("show") == held, device.ask("show")


@scenario
def changes_directly_with_our_rule(guest):
    run("modprobe", "-r", "uvcvideo")
    guest.install_rule()
    guest.plug_in()
    guest.use_each_control("direct")
    guest.program.quit()


@scenario
def opens_nothing_but_its_device(guest):
    for transport in "driver", "direct":
        if transport == "direct":
            guest.device.end()
            run("modprobe", "-r", "uvcvideo")
            guest.install_rule()
        device = guest.plug_in()
        trace = f"{HOME}/{transport}"
        guest.use_each_control(transport, "strace", "-DD", "-f", "-q", "--seccomp-bpf", "-o", trace, "-e",
                         "trace=%file,%network")
        guest.program.quit()
        wait_for("end of the trace", lambda: read(trace).endswith("+++ exited with 0 +++"))
        node = device.capture_node() or device.usb_node()
        print(" ", run(CHECK_PRIVILEGES, "--trace", trace, node).strip())


@scenario
def numbers_in_the_log_have_a_point(guest):
    """In a locale with a decimal comma. The second start finds the clock set, and logs how much it differs."""
    guest.plug_in()
    guest.open_settings().quit()
    guest.open_settings().quit()
    guest.program.expect_logged("TimeInterval = ")  # in the form of OWN_LINES


def plug_in_again(guest):
    """Returns the names of the nodes before and after."""
    names = []
    for command in "unplug", "plug":
        names.append(sorted(os.listdir("/sys/class/video4linux")))
        guest.device.tell(command)
        guest.device.wait_until_gone() if command == "unplug" else guest.device.wait_for_nodes()
    return names[0], sorted(os.listdir("/sys/class/video4linux"))


def expect_reopened(guest, transport="driver"):
    """An action fails, as the interface that was found has gone, and is repeated on the device opened again."""
    guest.mark()
    guest.program.press("alt+m", "Right")
    guest.expect(MICROPHONE, transport)
    guest.program.expect_logged(failed("fffffffc"))
    guest.program.quit()


@scenario
def plugged_in_again_under_the_same_node(guest):
    """No program has the capture node open."""
    guest.plug_in()
    guest.open_settings()
    before, after = plug_in_again(guest)
    assert before == after, after
    expect_reopened(guest)


@scenario
def plugged_in_again_under_another_node(guest):
    guest.plug_in()
    with open(guest.device.capture_node(), "rb"):  # as a recorder does
        guest.open_settings()
        before, after = plug_in_again(guest)
    assert before != after, after
    expect_reopened(guest)


@scenario
def authorized_again_while_the_program_runs(guest):
    """The interface's folder is another then, the device's is not."""
    guest.install_rule()
    device = guest.plug_in()
    guest.open_settings()
    for value in "01":
        (device.folder() / "authorized").write_text(value)
    device.wait_for_nodes()
    expect_reopened(guest)


@scenario
def driver_unloaded_and_loaded(guest):
    guest.install_rule()
    guest.plug_in()
    program = guest.open_settings()
    guest.expect(START_UP, "driver")
    run("modprobe", "-r", "uvcvideo")
    program.press("alt+m", "Right")
    guest.expect(MICROPHONE, "direct")
    run("modprobe", "uvcvideo")
    guest.device.wait_for_nodes()
    program.press("alt+n")
    guest.expect(HDCP_ON, "driver")
    program.quit()
    assert not any("Error" in line for line in program.log()), program.log()


@scenario
def driver_unbound_and_bound(guest):
    guest.install_rule()
    device = guest.plug_in()
    program = guest.open_settings()
    guest.expect(START_UP, "driver")
    interface = device.folder().name + ":1.0"
    (DRIVER / "unbind").write_text(interface)
    program.press("alt+m", "Right")
    guest.expect(MICROPHONE, "direct")
    (DRIVER / "bind").write_text(interface)
    device.wait_for_nodes()
    program.press("alt+n")
    guest.expect(HDCP_ON, "driver")
    with open(device.capture_node(), "rb"):
        (DRIVER / "unbind").write_text(interface)
        (DRIVER / "bind").write_text(interface)  # there is no capture node, as the old one is open
        program.press("alt+f")
        program.expect_alert(failed("ffffff9c"))
    guest.expect([])


@scenario
def driver_unloaded_without_our_rule(guest):
    guest.plug_in()
    program = guest.open_settings()
    run("modprobe", "-r", "uvcvideo")
    program.press("alt+m", "Right")
    program.expect_alert(failed("fffffffd"))
    run("modprobe", "uvcvideo")
    guest.device.wait_for_nodes()
    guest.open_settings().quit()


@scenario
def unplugged_between_and_during_requests(guest):
    device = guest.plug_in()
    for command, keys in (("unplug", ["alt+f"]), ("fault unplug set 13", ["alt+m", "Right"])):
        program = guest.open_settings()
        device.tell(command)
        program.press(*keys)
        program.expect_alert("CameraControl Error: IOCreatePlugInInterfaceForService returned 0xfffffffc.")
        device.wait_until_gone()
        device.tell("plug")
        device.wait_for_nodes()


@scenario
def no_rights_on_the_capture_node(guest):
    """The user of a remote session needs the group video."""
    guest.leave_seat()
    guest.plug_in()
    guest.start_tool().expect_alert(failed("fffffffd"))
    guest.as_user[-1] = f"--groups={grp.getgrnam('video').gr_gid}"
    guest.open_settings().quit()


@scenario
def not_authorized(guest):
    device = guest.plug_in()

    def expect_reported(*texts):
        report = run(*guest.as_user, guest.bin + "tavro-setup-tool-report")
        assert all(text in report for text in texts), report

    expect_reported(f"for the device {device.vendor}:{device.product}", "authorized 1",
                    "class 0e 01 00, driver uvcvideo", f"{device.usb_node()} crw-rw-r-- root:root; you: r",
                    f"{device.capture_node()} crw-rw---- root:video; you: rw")
    (device.folder() / "authorized").write_text("0")
    guest.start_tool().expect_alert("CameraControl Error: No interface to send request")
    expect_reported("authorized 0")


@scenario
def claimed_by_another_program(guest):
    run("modprobe", "-r", "uvcvideo")
    guest.install_rule()
    guest.plug_in()
    with open(guest.device.usb_node(), "rb+", buffering=0) as node:
        fcntl.ioctl(node, 0x8004550F, bytes(4))  # USBDEVFS_CLAIMINTERFACE of interface 0
        guest.start_tool().expect_alert(failed("00000000"))


@scenario
def driver_on_another_interface(guest):
    device = guest.plug_in("--video-control-interface", "1")
    guest.start_tool().expect_alert(failed("ffffff9c"))
    guest.expect([])
    assert device.capture_node(), "the driver was detached"


@scenario
def refusal_in_the_kernels_log(guest):
    """From the README. Newer kernels log the device's reason only."""
    guest.plug_in()
    program = guest.open_settings()
    trace = pathlib.Path("/sys/module/uvcvideo/parameters/trace")
    trace.write_text("0xffff")
    guest.device.tell("fault stall get 13")
    program.press("alt+m", "Right")
    wait_for("refusal", lambda: re.search("GET_CUR.* control 13 on unit 3|Control error", run("dmesg")))
    trace.write_text("0")
    program.quit()


@scenario
def attached_by_the_usbip_tool(guest):
    device = guest.start_device("--port", "3241")
    usbip = ["usbip", "--tcp-port", "3241"]
    exported = run(*usbip, "list", "-r", "127.0.0.1")
    assert re.search(rf"1-1: .*\({device.vendor}:{device.product}\)", exported), exported
    run(*usbip, "attach", "-r", "127.0.0.1", "-b", "1-1")
    device.wait_for_nodes()
    run(*guest.as_user, "v4l2-ctl", "-d", device.capture_node(), "--stream-mmap", "--stream-count=10")
    run("usbip", "detach", "-p", "0")
    device.wait_until_gone()


@scenario
def other_tools_accept_the_device(guest):
    def expect_none(complaint, text, *accepted):
        lines = [line for line in text.splitlines() if re.search(complaint, line, re.IGNORECASE)]
        assert not [line for line in lines if not any(re.search(each, line) for each in accepted)], lines

    run("dmesg", "--clear")
    device = guest.plug_in()
    expect_none("uvcvideo.*(invalid|unknown|error|failed)|1-1: config.*(invalid|has)", run("dmesg"))
    lsusb = run("lsusb", "-v", "-d", f"{device.vendor}:{device.product}")
    assert re.search("bmControls\\( 1\\) *0x1e", lsusb), lsusb
    expect_none("warning|error|unrecognized|invalid|can't|couldn't|unknown", lsusb)
    compliance = run("v4l2-compliance", "-d", device.capture_node(), check=False)
    print(" ", *re.findall("^Total for.*", compliance, re.MULTILINE))
    assert compliance.count(": OK") >= 40, compliance
    # The kernel refuses to set a control that an automatic has set (EACCES), and newer kernels use fields that
    # the tool of Debian 12 knows as reserved.
    expect_none("(fail|warn):", compliance, r"returned an error \(13\)", r"crbufs\.reserved")
    viewer = guest.start("qv4l2", "-d", device.capture_node())
    viewer.window(".*")
    time.sleep(3)
    assert viewer.process.poll() is None, viewer.log()
    expect_none("error|fail", "\n".join(viewer.log()))
