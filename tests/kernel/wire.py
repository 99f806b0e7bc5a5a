"""Requests to the device's units as in the wire log, bytes in hex."""

import calendar
import re
import time

GET, SET = "a1 81 00 ", "21 01 00 "
# The UVC driver sends GET_LEN and GET_INFO at the first use of a block since it was bound.
FIRST_USE = re.compile("a1 8[56] 00 .. 00 03 ")
KERNELS_OWN = re.compile("a1 8[56] |a1 81 00 02 00 00 ")  # the last one asks for the reason of a refusal
CLOCK = re.compile(r"(?<=0b 00 03 0d 00 \| .. .. )(?:.. ){5}..")
VERSIONS = "0c 00 03 1a 00 | 11 12 13 14 15 16 17 18 19 1a 1b 1c 1d 1e 05 06 07 08 09 0a 0b 0c 01 02 03 04"


def normal(line, since):
    """A line of the wire log. In a settings block, "now", "reset" or "wrong" stands for the clock."""
    def name(clock):
        year, *others = bytes.fromhex(clock[0])
        is_now = since - 3 <= calendar.timegm((2000 + year, *others)) <= time.time() + 3
        return "now" if is_now else "reset" if year == 0 else "wrong"
    return CLOCK.sub(name, line)


# The arguments are what differs from a device that was just plugged in.
def audio(microphone="b0", headphone="80", hdmi="ff", aux="c8"):
    return f"0d 00 03 07 00 | 6d {hdmi} {aux} {microphone} 92 {headphone} e4"


def settings(levels="11", hdcp="00", clock="now"):
    return f"0b 00 03 0d 00 | 00 5a {clock} {levels} {hdcp} a7 3b c9"


def change(command, before, *blocks):
    """A read, then a write of each block and a read of it. A write has the command in its first byte."""
    return [GET + before] + [line for block in blocks
                             for line in (SET + re.sub(r"\| ..", "| " + command, block), GET + block)]


START_UP = [*change("02", settings(clock="reset"), settings()), GET + settings(), *[GET + audio()] * 3, GET + VERSIONS,
            GET + settings()]
HDCP_ON = change("10", settings(), settings(hdcp="01"))
# One GET is refused, and one SET times out.
EACH_CONTROL = [
    GET + "0d 00 03 07 00 | ! -9", *change("6d", audio(), audio("b1")), HDCP_ON[0], HDCP_ON[1] + " ! -7", *HDCP_ON,
    *change("10", settings(hdcp="01"), settings()), *change("6d", audio("b1"), audio("b1", "90")),  # a page up is 16
    *change("6d", audio("b1", "90"), audio("b1", "90", "00"), audio("b1", "90", "00", "00")),
    GET + settings(), *change("04", settings(), settings("21"))]
