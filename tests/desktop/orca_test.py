#!/usr/bin/env python3
"""orca_test.py FOLDER: what the screen reader Orca says of the programs in FOLDER on a walk through their windows by
keyboard. Stand-ins for its speech server and its braille display record what it says."""

import pathlib
import re
import shutil
import sys
import time
from collections import Counter
from xml.sax.saxutils import unescape

from desktop import X11, Program, arguments, wait_for

[FOLDER] = arguments(__doc__, 1)

# Keys, and the words that are said then, in this order. Orca's versions differ in what else they say.
QUALITY = "Record quality combo box. {}. Bit rate of the H.264 recording made by the device."
HDCP = "HDCP {}. selected radio button. Content protection of the HDMI signal."
SETTINGS = [
    ("", "Tavro Setup Tool frame. " + QUALITY.format("Middle")),
    ("Tab", "Volume panel. Microphone slider 176. 0 is the quietest, 255 the loudest setting of the device."),
    ("Down", "175"),
    ("Up", "176"),
    ("Tab", "Headphones slider 128. 0 is the quietest, 255 the loudest setting of the device."),
    ("Prior", "144"),
    ("Tab", "HDMI and AUX slider 255. Sets the HDMI and the AUX volume together."),
    ("Left", "254"),
    ("Tab", HDCP.format("off")),
    ("Left", HDCP.format("on")),
    ("alt+f", HDCP.format("off")),
    ("Tab", "Firmware v1.2.3.4 (05060708.09101112)"),
    ("Tab", "About button. About this program (F1)."),
    ("Tab", "Quit button. Quit (Ctrl+Q)."),
    ("alt+r", QUALITY.format("Middle")),
    ("space", "Middle checked."),
    ("Down", "Low."),
    ("Return", QUALITY.format("Low")),
    ("Up", "Middle checked."),
    ("F1", "About Tavro Setup Tool dialog Volume, record quality and HDCP settings for one USB video capture device. "
           "Close button."),
    ("Tab", "Version 1.0.0"),
    ("Tab", "Volume, record quality and HDCP settings for one USB video capture device."),
    ("Tab", "MIT License"),
    ("Tab", "Close button."),
    ("Escape", QUALITY.format("Middle")),
]
# Are not said unless expected.
VALUES = {"low", "middle", "high", "on", "off", "not", "selected", "checked"}
ALERT = [
    ("", "Capture device not reached dialog The capture device could not be reached. Check the cable, your rights on "
         "the device, and whether it answers after plugging it in again. The program ends when you close this message. "
         "Quit button. Closes this message and ends the program."),
    ("Tab", "The capture device could not be reached"),
    ("Tab", "Please check these points, then start the program again."),
    ("Tab", "Is it plugged in? Push the USB cable in firmly at both ends, or try another USB port, without a hub."),
    ("Tab", "Do you have permission to use it? Log in directly at this computer, not remotely. If the program was not "
            "installed as a package, install its udev rule, 70-tavro-setup-tool.rules, and plug the device in again."),
    ("Tab", "Does it answer? Unplug it, wait ten seconds and plug it in again."),
    ("Tab", "The system log shows the cause: journalctl -t tavro-setup-tool"),
    ("Tab", "Version 1.0.0"),
    ("Tab", "Quit button. Closes this message and ends the program."),
]

STAND_INS = {
    "brlapi.py": "raise ImportError('no braille display')",
    "speechd.py": """
import os, sys
from unittest.mock import MagicMock
module = MagicMock()
for name in ("SSIPCommunicationError", "SSIPError", "SpawnError"):
    error = type(name, (Exception,), {})
    setattr(module, name, error)
    setattr(module.client, name, error)
client = module.SSIPClient.return_value
client.get_output_module.return_value = "dummy"
client.list_output_modules.return_value = ("dummy",)
client.list_synthesis_voices.return_value = (("voice", "en", "none"),)
for name in ("get_rate", "get_pitch", "get_volume"):
    getattr(client, name).return_value = 0
client.get_language.return_value = "en"
client.speak.side_effect = lambda text, *_, **__: os.write(spoken, text.replace("\\n", " ").encode() + b"\\n")
spoken = os.open(os.environ["SPOKEN"], os.O_WRONLY | os.O_APPEND)
sys.modules["speechd"], sys.modules["speechd.client"] = module, module.client
""",
}


class Orca:
    def __init__(self, desktop):
        folder = pathlib.Path(desktop.folder)
        self.spoken = folder / "spoken"
        for name, text in (STAND_INS | {"spoken": ""}).items():
            (folder / name).write_text(text)
        bus = desktop.serve("dbus-daemon", "--session", "--nofork", "--print-address").readline().strip()
        desktop.env |= {"DBUS_SESSION_BUS_ADDRESS": bus, "HOME": desktop.folder, "SPOKEN": str(self.spoken),
                        "NO_AT_BRIDGE": "0", "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1"}
        # From the folder of a script Python imports first.
        desktop.serve("/usr/bin/python3", shutil.copy(shutil.which("orca"), folder / "reader"))
        self.read = 0
        wait_for("start of Orca", self.said)

    def said(self):
        """What was said since the last call, until it is silent."""
        length, since = -1, time.monotonic()
        while time.monotonic() - since < 0.7:
            if (size := self.spoken.stat().st_size) != length:
                length, since = size, time.monotonic()
            time.sleep(0.05)
        lines = self.spoken.read_text().splitlines()[self.read:]
        self.read += len(lines)
        return [unescape(re.sub("<[^>]*>", "", line)).strip() for line in lines]


def words(text):
    text = re.sub(r"[^\w ]", " ", text).lower()
    return text.replace("not checked", "").replace("push button", "button").split()


def is_said(lines, expected, values):
    heard, wanted = words(" ".join(lines)), words(expected)
    rest = iter(heard)
    return all(word in rest for word in wanted) and not (Counter(heard) - Counter(wanted)).keys() & values


def walk(orca, desktop, program, steps, values):
    desktop.focus(program.window(".*"))
    faults = 0
    for key, expected in steps:
        if key:
            desktop.key(*key.split("+"))
        lines, start = [], time.monotonic()
        while not (right := is_said(lines, expected, values)) and time.monotonic() < start + 20:
            lines += orca.said()
        faults += not right
        print("ok  " if right else "FAIL", key or "start", *lines, *([] if right else ["-- not: " + expected]),
              sep="\n     ", flush=True)
    return faults


with X11() as x11:
    reader = Orca(x11)
    wrong = walk(reader, x11, Program(x11, FOLDER + "/tavro-setup-tool-demo"), SETTINGS, VALUES)
    x11.key("ctrl", "q")
    wrong += walk(reader, x11, Program(x11, FOLDER + "/tavro-setup-tool"), ALERT, set())
sys.exit(f"{wrong} steps are said otherwise" if wrong else 0)
