"""Requests to the device's units as in the wire log, bytes in hex."""

import datetime
import re
import time

GET, SET = "a1 81 00 ", "21 01 00 "
# The UVC driver sends GET_LEN and GET_INFO at the first use of a block since it was bound.
FIRST_USE = re.compile("a1 8[56] 00 .. 00 03 ")
KERNELS_OWN = re.compile("a1 8[56] |a1 81 00 02 00 00 ")  # the last one asks for the reason of a refusal
VERSIONS = "0c 00 03 1a 00 | 11 12 13 14 15 16 17 18 19 1a 1b 1c 1d 1e 05 06 07 08 09 0a 0b 0c 01 02 03 04"
EPOCH = datetime.datetime(2000, 1, 1, tzinfo=datetime.timezone.utc).timestamp()  # the device's clock after a plug-in


def normal(line, since):
    """A line of the wire log. In a settings block, "now", "reset" or "wrong" stands for the clock."""
    words = line.split()
    if words[3] != "0b" or len(words) < 22:
        return line
    year, *others = (int(word, 16) for word in words[11:17])
    clock = datetime.datetime(2000 + year, *others, tzinfo=datetime.timezone.utc).timestamp()
    is_now = since - 3 <= clock <= time.time() + 3
    words[11:17] = ["now" if is_now else "reset" if EPOCH <= clock < EPOCH + 600 else "wrong"]
    return " ".join(words)


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
MICROPHONE = change("6d", audio(), audio("b1"))
HDCP_ON = change("10", settings(), settings(hdcp="01"))


def each_control(short):
    """A GET is refused, a SET times out, and the answer of another GET may be short."""
    return [
        GET + "0d 00 03 07 00 | ! -9", *MICROPHONE, HDCP_ON[0], HDCP_ON[1] + " ! -7", *HDCP_ON,
        *[GET + "0b 00 03 0d 00 | ! -1"] * short, *change("10", settings(hdcp="01"), settings()),
        *change("6d", audio("b1"), audio("b1", "90")),  # a page up is 16
        *change("6d", audio("b1", "90"), audio("b1", "90", "00"), audio("b1", "90", "00", "00")),
        GET + settings(), *change("04", settings(), settings("21"))]
