#!/usr/bin/env python3
"""orca_test.py FOLDER: checks the speech of the screen reader Orca while the programs in FOLDER are used by
keyboard. It needs neither sound nor a braille display."""

import contextlib
import re
import time
from collections import Counter

from desktop import X11, Program, arguments, wait_for

[FOLDER] = arguments(__doc__, 1)

# Keys, and the words that are said then, in this order. Versions of Orca add different words.
QUALITY = "Record quality combo box. {}. Bit rate of the H.264 recording made by the device."
SLIDER = "slider {}. 0 is the quietest, 255 the loudest setting of the device."
HDCP = "HDCP {}. selected radio button. Content protection of the HDMI signal."
STEPS = {
    "tavro-setup-tool-demo": [
        ("", "Tavro Setup Tool frame. " + QUALITY.format("Middle")),
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
        ("F1", "About Tavro Setup Tool dialog Volume, record quality and HDCP settings for one USB video capture "
               "device. Close button."),
        ("Tab", "Version 1.0.0"),
        ("Escape", QUALITY.format("Middle")),
    ],
    "tavro-setup-tool": [  # finds no device, and shows the alert
        ("", "Capture device not reached dialog The capture device could not be reached. Check the cable, your rights "
             "on the device, and whether it answers after plugging it in again. The program ends when you close this "
             "message. Quit button. Closes this message and ends the program."),
        ("Tab", "The capture device could not be reached"),
    ],
}
# Are not said unless expected.
VALUES = {"low", "middle", "high", "off", "selected", "checked"}


def words(text):
    text = re.sub(r"[^\w ]", " ", text).lower()
    return re.sub("push button", "button", re.sub("not (checked|selected)", "", text)).split()


def is_said(lines, expected):
    heard, wanted = words(" ".join(lines)), words(expected)
    rest = iter(heard)
    return all(word in rest for word in wanted) and not (Counter(heard) - Counter(wanted)).keys() & VALUES


with X11() as x11:
    bus = x11.serve("dbus-daemon", "--session", "--nofork", "--print-address").readline().strip()
    x11.env |= {"DBUS_SESSION_BUS_ADDRESS": bus, "HOME": x11.folder, "NO_AT_BRIDGE": "0",
                "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1",
                # Orca finds no server for speech or braille. With --disable=braille, Orca 48 says other texts.
                "SPEECHD_CMD": "/bin/false", "BRLAPI_HOST": "localhost:99"}
    # To a terminal it writes each line at once.
    orca = Program(x11, "script", "--quiet", "--flush", "--command", "orca --debug-file=/dev/stdout", "/dev/null")

    def said():
        return re.findall("(?m)SPEECH OUTPUT: '(.*?)'(?:[ {]|$)", "\n".join(orca.requests()))

    wait_for("start of Orca", said)
    for name, steps in STEPS.items():
        before = len(said())
        program = Program(x11, f"{FOLDER}/{name}")
        x11.focus(program.window(".*"))
        for key, expected in steps:
            x11.press(*key.split())
            with contextlib.suppress(AssertionError):
                wait_for("speech", lambda: is_said(said()[before:], expected), 20)
            time.sleep(0.7)  # for a word too many
            lines = said()[before:]
            before += len(lines)
            print(key or "start", *lines, sep="\n     ", flush=True)
            assert is_said(lines, expected), f"not: {expected}"
        program.process.terminate()
        program.process.wait(20)
