#!/usr/bin/env python3
"""Owns wrong speech: a control whose name, value or change a screen reader leaves out or says
wrong.

orca_test.py FOLDER uses the programs in FOLDER by keyboard and reads what Orca would say. It needs
neither sound nor a braille display."""

import pathlib
import re
import time
from collections import Counter

from desktop import X11, Program, arguments, wait_for

[FOLDER] = arguments(__doc__, 1)
CMAKE_LISTS = pathlib.Path(__file__).resolve().parents[2] / "CMakeLists.txt"
VERSION = re.search(r"^project\(.* VERSION ([0-9.]+)", CMAKE_LISTS.read_text(), re.MULTILINE)[1]

QUALITY = "Record quality combo box. {}. Bit rate of the H.264 recording made by the device."
SLIDER = "slider {}. 0 is the quietest, 255 the loudest setting of the device."
HDCP = "HDCP {}. selected radio button. Content protection of the HDMI signal."
# Keys, and the words that are said then, in this order. Versions of Orca add different words.
SETTINGS = [
    ("Tab", "Volume panel. Microphone " + SLIDER.format(176)),
    ("Down", "175"),
    ("Tab", "Headphones " + SLIDER.format(128)),
    ("Tab", "HDMI and AUX slider 255. Sets the HDMI and the AUX volume together."),
    ("Tab", HDCP.format("off")),
    ("Left", HDCP.format("on")),
    ("Tab", "Firmware v1.2.3.4 (05060708.09101112)"),
    ("Tab", "About button. About this program (F1)."),
    ("Tab", "Quit button. Quit (Ctrl+Q)."),
    ("alt+r", QUALITY.format("Middle")),
    ("space", "Middle checked."),
    ("Down", "Low."),
    ("Return", QUALITY.format("Low")),
    ("Up", "Middle checked."),
    ("F1", "About Tavro Setup Tool dialog Volume, record quality and HDCP settings for one USB "
           "video capture device. Close button."),
    ("Tab", f"Version {VERSION}"),
    ("Escape", QUALITY.format("Middle")),
]
ALERT = [
    ("Tab", "The capture device could not be reached"),
]
SETTINGS_WINDOW = "Tavro Setup Tool frame. " + QUALITY.format("Middle")
ALERT_WINDOW = (
    "Capture device not reached dialog The capture device could not be reached. Check the cable, "
    "your rights on the device, and whether it answers after plugging it in again. The program ends "
    "when you close this message. Quit button. Closes this message and ends the program.")
# Are not said unless expected.
VALUES = {"low", "middle", "high", "off", "selected", "checked"}


def words(text):
    text = re.sub(r"[^\w ]", " ", text).lower()
    return re.sub("push button", "button", re.sub("not (checked|selected)", "", text)).split()


def is_said(lines, expected):
    heard, wanted = words(" ".join(lines)), words(expected)
    rest = iter(heard)
    in_order = all(word in rest for word in wanted)
    return in_order and not (Counter(heard) - Counter(wanted)).keys() & VALUES


class Orca(Program):
    """To a terminal it writes each line at once."""

    def __init__(self, desktop):
        super().__init__(desktop, "script", "--quiet", "--flush",
                         "--command", "orca --debug-file=/dev/stdout", "/dev/null")
        self.heard = 0
        wait_for("start of Orca", self.new_lines)

    def new_lines(self):
        speech = re.findall("(?m)SPEECH OUTPUT: '(.*?)'(?:[ {]|$)", "\n".join(self.requests()))
        return speech[self.heard:]

    def says(self, expected, seconds):
        """Whether this, and no other value, is said from now on. The next call begins after it."""
        end = time.monotonic() + seconds
        while not is_said(self.new_lines(), expected) and time.monotonic() < end:
            time.sleep(0.1)
        time.sleep(0.7)  # for a word too many
        lines = self.new_lines()
        self.heard += len(lines)
        print(*lines, sep="\n", flush=True)
        return is_said(lines, expected)


def expect_speech(orca, window, other, title, steps):
    """Qt says nothing of a window that gets the focus before Qt has asked who listens."""
    def is_noticed():
        orca.desktop.focus(other)
        time.sleep(0.7)
        orca.heard += len(orca.new_lines())
        orca.desktop.focus(window)
        return orca.says(title, 10)

    wait_for(f"speech: {title}", is_noticed)
    for key, expected in steps:
        print("==", key)
        orca.desktop.press(*key.split())
        assert orca.says(expected, 60), f"not: {expected}"


with X11() as x11:
    bus = x11.serve("dbus-daemon", "--session", "--nofork", "--print-address").readline().strip()
    x11.env |= {"DBUS_SESSION_BUS_ADDRESS": bus, "HOME": x11.folder, "NO_AT_BRIDGE": "0",
                "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1",
                # Orca finds no server for speech or braille. With --disable=braille, Orca 48 says other texts.
                "SPEECHD_CMD": "/bin/false", "BRLAPI_HOST": "localhost:99"}
    reader = Orca(x11)
    settings = Program(x11, f"{FOLDER}/tavro-setup-tool-demo").window(".*")
    alert = Program(x11, f"{FOLDER}/tavro-setup-tool").window(".*")  # finds no device
    expect_speech(reader, settings, alert, SETTINGS_WINDOW, SETTINGS)
    expect_speech(reader, alert, settings, ALERT_WINDOW, ALERT)
