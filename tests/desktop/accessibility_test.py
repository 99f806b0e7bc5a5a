#!/usr/bin/env python3
"""accessibility_test.py PROGRAM: reads the demo's window on the accessibility bus as a screen reader does, and uses
it there. What is done has to reach the device, whose requests the demo prints."""

import os
import re
import time
import warnings

import gi

from desktop import X11, Program, arguments, wait_for

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402

warnings.simplefilter("ignore", DeprecationWarning)  # newer names are not in Debian 12

# role, name, description, value of whatever is operated or shows a value
EXPECTED = {
    ("frame", "Tavro Setup Tool", "", None),
    ("combo box", "Record quality", "Bit rate of the H.264 recording made by the device.", "Middle"),
    ("image", "Current bit rate", "Middle", None),
    ("slider", "Microphone volume", "0 is the quietest, 255 the loudest setting of the device.", 176.0),
    ("slider", "Headphone volume", "0 is the quietest, 255 the loudest setting of the device.", 128.0),
    ("slider", "HDMI and AUX volume", "Sets the HDMI and the AUX volume together.", 255.0),
    ("radio button", "HDCP on", "Content protection of the HDMI signal", False),
    ("radio button", "HDCP off", "Content protection of the HDMI signal", True),
    ("label", "Firmware v1.2.3.4 (05060708.09101112)", "", None),
    ("button", "About", "About this program (F1)", None),
    ("button", "Quit", "Quit (Ctrl+Q)", None),
}
STATES = {"radio button": Atspi.StateType.CHECKED, "list item": Atspi.StateType.SELECTED}


def everything(node):
    yield node
    for index in range(node.get_child_count()):
        if child := node.get_child_at_index(index):
            yield from everything(child)


def role_of(node):
    return node.get_role_name().removeprefix("push ")  # which newer systems leave out


def value(node):
    role = role_of(node)
    if role == "slider":
        return Atspi.Value.get_current_value(node)
    if role in STATES:
        return node.get_state_set().contains(STATES[role])
    return Atspi.Text.get_text(node, 0, -1) if role == "combo box" else None


class Reader:
    def __init__(self, pid):
        self.application = wait_for("program on the bus", lambda: next(
            (node for node in everything(Atspi.get_desktop(0)) if node.get_process_id() == pid), None))
        self.window = wait_for("window on the bus", lambda: self.application.get_child_at_index(0))

    def find(self, role, name):
        return wait_for(f"{role} {name}", lambda: next(
            (n for n in everything(self.window) if (role_of(n), n.get_name()) == (role, name)), None), 5)

    def act(self, role, name, action):
        node = self.find(role, name)
        names = [Atspi.Action.get_action_name(node, index) for index in range(Atspi.Action.get_n_actions(node))]
        assert Atspi.Action.do_action(node, names.index(action)), action


def read(reader):
    assert reader.application.get_name() == "Tavro Setup Tool", reader.application.get_name()
    seen = {(role_of(n), n.get_name(), n.get_description(), value(n)) for n in everything(reader.window)}
    assert EXPECTED <= seen, f"missing: {EXPECTED - seen}\nseen: {seen}"
    assert {role for role, name, *_ in seen if not name} <= {"panel", "list"}, f"something is nameless: {seen}"
    print(f"{len(EXPECTED)} controls tell role, name, value and description; nothing is nameless")


def operate(reader, program):
    assert Atspi.Value.set_current_value(reader.find("slider", "Microphone volume"), 200)
    reader.act("slider", "HDMI and AUX volume", "Decrease")
    reader.act("radio button", "HDCP on", "Toggle")
    reader.act("list item", "Low", "Toggle")
    changed = {"Microphone volume": 200, "HDMI and AUX volume": 254, "HDCP on": True, "HDCP off": False,
               "Record quality": "Low", "Low": True, "Middle": False}
    wait_for(f"{changed} on the bus", lambda: changed.items() <= {
        n.get_name(): value(n) for n in everything(reader.window) if value(n) is not None}.items(), 5)
    wait_for("stars on the bus", lambda: reader.find("image", "Current bit rate").get_description() == "Low", 5)
    written = re.findall(r"^SET_CUR .* data (6d.*|..)", "\n".join(program.requests()), re.MULTILINE)
    assert written == ["02", "6d ff c8 c8 92 80 e4", "6d fe c8 c8 92 80 e4", "6d fe fe c8 92 80 e4", "10", "04"], written
    print("each action sends the device its requests, and only those")


def hear(desktop):
    """A new level is an event, for whoever doesn't poll: of the pop-up and of the chosen item."""
    expected = {("object:selection-changed", "Record quality", 0), ("object:state-changed:selected", "Middle", 1)}
    heard = set()

    def hear_one(event):
        heard.add((event.type, event.source.get_name(), event.detail1))
        if expected <= heard:
            Atspi.event_quit()

    listener = Atspi.EventListener.new(hear_one)
    # Qt sends the first only to those who listen to the second too.
    for kind in ("selection-changed", "property-change:accessible-value", "state-changed:selected"):
        listener.register("object:" + kind)
    time.sleep(1)  # until the program knows that somebody listens
    desktop.key("alt", "r")
    desktop.key("Up")
    GLib.timeout_add_seconds(5, Atspi.event_quit)
    Atspi.event_main()
    assert expected <= heard, heard
    print("a new level is heard")


def main():
    [path] = arguments(__doc__, 1)
    with X11() as desktop:
        bus = desktop.serve("dbus-daemon", "--session", "--nofork", "--print-address").readline().strip()
        os.environ["DBUS_SESSION_BUS_ADDRESS"] = bus
        program = Program(desktop, path, DBUS_SESSION_BUS_ADDRESS=bus, NO_AT_BRIDGE="0",
                          QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1")
        program.window()
        reader = Reader(program.pid)
        read(reader)
        operate(reader, program)
        hear(desktop)
        reader.act("button", "Quit", "Press")
        assert not (faults := program.faults_after_end()), faults


if __name__ == "__main__":
    main()
