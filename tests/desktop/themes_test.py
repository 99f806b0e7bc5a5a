#!/usr/bin/env python3
"""themes_test.py READABILITY_TEST: that the windows stay readable whatever theme and scale the desktop has. Prints the
least contrasts and how many words are cut."""

import re
import subprocess
import sys

from desktop import X11, arguments

[TEST] = arguments(__doc__, 1)
LOOKS = {
    "no theme": {},
    "200 %": {"QT_SCALE_FACTOR": "2"},
    "high contrast": {"QT_QPA_PLATFORMTHEME": "gtk3", "GTK_THEME": "HighContrast"},
    "inverse high contrast": {"QT_QPA_PLATFORMTHEME": "gtk3", "GTK_THEME": "HighContrastInverse"},
    "light": {"QT_QPA_PLATFORMTHEME": "gtk3", "GTK_THEME": "Adwaita"},
}


def least(lines, test):
    return min((float(f), name) for line in lines for f, name in re.findall(rf"{test}.*contrast +([\d.]+) (.*)", line))


failed = 0
with X11() as desktop:
    for look, environment in LOOKS.items():
        run = subprocess.run([TEST], env=desktop.env | environment, capture_output=True, text=True, check=False)
        lines = run.stdout.splitlines()
        failed += run.returncode != 0
        print(*(line + "\n" for line in lines if line.startswith("FAIL")), sep="", end="")
        print(f"{look}: {sum(' cuts ' in line for line in lines)} cut words; least contrast",
              *(f"of {what} {least(lines, test)[0]:.2f} ({least(lines, test)[1]})"
                for what, test in (("text", "(?:text|palette)StandsOut"), ("parts", "whatIsOperated"), ("focus", "focusGoes"))))
sys.exit(1 if failed else 0)
