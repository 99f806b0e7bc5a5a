#!/usr/bin/env python3
"""take_screenshots.py BUILD FOLDER: takes screenshots of the three windows in every language, at 100 % and 200 %, of the
programs in BUILD. Needs the packages that scripts/screenshots installs; leaves FOLDER/LANGUAGE/SCALE/WINDOW.png."""

import concurrent.futures
import itertools
import os
import sys
import time

sys.path.insert(0, os.path.dirname(os.path.realpath(__file__)) + "/../tests/support")
from desktop import Program, X11, arguments, wait_for  # noqa: E402

LANGUAGES = ["en", "de", "fr", "es", "ja", "zh_CN"]
SCALES = [1, 2]
BUILD, FOLDER = arguments(__doc__, 2)
# The font of the design, as one of the desktops that Qt knows by itself gives it.
LOOK = {"XDG_CURRENT_DESKTOP": "KDE", "KDE_SESSION_VERSION": "5", "KDE_FULL_SESSION": "true"}
FONT = "[General]\nfont=Inter,10.5,-1,5,50,0,0,0,0,0\n"


def take(desktop, window, path):
    time.sleep(0.7)  # it is drawn
    desktop.picture(window, path)


def take_all(choice):
    language, scale = choice
    folder = f"{FOLDER}/{language}/{scale}00"
    os.makedirs(folder, exist_ok=True)
    with X11() as desktop:
        with open(desktop.folder + "/kdeglobals", "w", encoding="utf-8") as settings:
            settings.write(FONT)
        look = LOOK | {"LANGUAGE": language, "QT_SCALE_FACTOR": str(scale), "XDG_CONFIG_HOME": desktop.folder}
        demo = Program(desktop, BUILD + "/tavro-setup-tool-demo", **look)
        settings = demo.window(".*")
        desktop.point(1599, 1199)
        take(desktop, settings, folder + "/settings-window.png")
        desktop.focus(settings)
        desktop.key("F1")
        about = wait_for("About window", lambda: [w for w in desktop.windows(demo.pid, ".*") if w != settings])[0]
        take(desktop, about, folder + "/about-window.png")
        demo.process.terminate()
        tool = Program(desktop, BUILD + "/tavro-setup-tool", **look)
        take(desktop, tool.window(".*"), folder + "/alert-window.png")
        tool.process.terminate()
        for program in (demo, tool):
            program.process.wait(20)


with concurrent.futures.ThreadPoolExecutor(2) as pool:
    list(pool.map(take_all, itertools.product(LANGUAGES, SCALES)))
