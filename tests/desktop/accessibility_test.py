#!/usr/bin/env python3
"""accessibility_test.py PROGRAM: reads the demo's window on the accessibility bus as a screen reader does, and uses
it there. What is done has to reach the device, whose requests the demo prints."""

import os
import subprocess
import sys
import threading
import traceback

import gi

from desktop import Program, X11, arguments, wait_for

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402

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
    ("push button", "About", "About this program (F1)", None),
    ("push button", "Quit", "Quit (Ctrl+Q)", None),
}


def everything(node):
    yield node
    for index in range(node.get_child_count()):
        child = node.get_child_at_index(index)
        if child:
            yield from everything(child)


def has(node, state):
    return node.get_state_set().contains(state)


def value(node):
    role = node.get_role_name()
    if role == "slider":
        return node.get_value_iface().get_current_value()
    if role == "radio button":
        return has(node, Atspi.StateType.CHECKED)
    return Atspi.Text.get_text(node, 0, -1) if role == "combo box" else None


def act(node, name):
    actions = node.get_action_iface()
    index = next(i for i in range(actions.get_n_actions()) if actions.get_action_name(i) == name)
    assert actions.do_action(index)


class Reader:
    def __init__(self, program):
        self.program = program
        desktop = Atspi.get_desktop(0)
        self.application = wait_for("program on the bus", lambda: next(
            (a for a in map(desktop.get_child_at_index, range(desktop.get_child_count()))
             if a and a.get_process_id() == program.pid), None))
        self.window = wait_for("window on the bus", lambda: self.application.get_child_at_index(0))

    def find(self, role, name):
        return wait_for(f"{role} {name}", lambda: next(
            (n for n in everything(self.window) if (n.get_role_name(), n.get_name()) == (role, name)), None), 5)

    def acts(self, what, do, request):
        """Whether doing that sends the device this request, and only once."""
        before = len(self.program.requests())
        do()
        wait_for(f"request of {what}", lambda: self.sent(before, request), 10)
        assert self.sent(before, "SET_CUR") <= 2, f"{what}: {self.program.requests()[before:]}"
        print(f"{what}: acts on the device")

    def sent(self, before, text):
        return sum(text in line for line in self.program.requests()[before:])


def read(reader):
    assert reader.application.get_name() == "Tavro Setup Tool", reader.application.get_name()
    seen = {(n.get_role_name(), n.get_name(), n.get_description(), value(n)) for n in everything(reader.window)}
    assert EXPECTED <= seen, f"missing: {EXPECTED - seen}\nseen: {seen}"
    for node in everything(reader.window):
        assert node.get_name() or node.get_role_name() in ("panel", "list"), f"a nameless {node.get_role_name()}"
    print(f"{len(EXPECTED)} controls tell role, name, value and description; nothing is nameless")


def operate(reader):
    def level(name):
        return reader.find("list item", name)

    def slider(name):
        return reader.find("slider", name).get_value_iface()

    reader.acts("microphone slider", lambda: slider("Microphone volume").set_current_value(200),
                "SET_CUR unit 3 selector 13")
    reader.acts("HDMI and AUX slider", lambda: act(reader.find("slider", "HDMI and AUX volume"), "Decrease"),
                "SET_CUR unit 3 selector 13")
    reader.acts("radio button", lambda: act(reader.find("radio button", "HDCP on"), "Toggle"),
                "data 10")
    reader.acts("level Low", lambda: act(level("Low"), "Toggle"), "data 04")
    wait_for("level on the bus", lambda: value(reader.find("combo box", "Record quality")) == "Low", 5)
    wait_for("stars on the bus", lambda: reader.find("image", "Current bit rate").get_description() == "Low", 5)
    assert has(level("Low"), Atspi.StateType.SELECTED) and not has(level("Middle"), Atspi.StateType.SELECTED)
    assert slider("Microphone volume").get_current_value() == 200


def hear(desktop):
    """A new level is an event, for whoever doesn't poll: of the pop-up and of the chosen item."""
    heard = set()
    listener = Atspi.EventListener.new(lambda event: heard.add((event.type, event.source.get_name(), event.detail1)))
    for kind in ("selection-changed", "property-change:accessible-value", "state-changed:selected"):
        listener.register("object:" + kind)
    threading.Timer(1, desktop.key, ["alt", "r"]).start()
    threading.Timer(1.5, desktop.key, ["Up"]).start()
    GLib.timeout_add(3000, Atspi.event_quit)
    Atspi.event_main()
    expected = {("object:selection-changed", "Record quality", 0), ("object:state-changed:selected", "Middle", 1)}
    assert expected <= heard, heard
    print("a new level is heard")


def main():
    [path] = arguments(__doc__, 1)
    if "TAVRO_OWN_BUS" not in os.environ:  # a bus of its own, which ends with it
        return subprocess.run(["dbus-run-session", "--", sys.executable, *sys.argv], stderr=subprocess.DEVNULL,
                              env=os.environ | {"TAVRO_OWN_BUS": "1", "NO_AT_BRIDGE": "0"}, check=False).returncode
    with X11() as desktop:
        program = Program(desktop, path, QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1")
        program.window()
        try:
            reader = Reader(program)
            read(reader)
            operate(reader)
            hear(desktop)
            act(reader.find("push button", "Quit"), "Press")
            faults = program.faults_after_end()
            assert not faults, faults
        except Exception:
            traceback.print_exc(file=sys.stdout)  # standard error is the bus's
            return 1
        finally:
            program.process.kill()
    return 0


if __name__ == "__main__":
    sys.exit(main())
