#!/usr/bin/env python3
"""themes_test.py READABILITY_TEST: the windows are readable with every theme and scale. Prints the least contrasts."""

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
WHAT = {"text": "(?:text|palette)StandsOut"}

failed = 0
with X11() as desktop:
    for look, environment in LOOKS.items():
        run = subprocess.run([TEST], env=desktop.env | environment, capture_output=True, text=True, check=False)
        failed += run.returncode != 0
        print(*re.findall(r"^FAIL.*\n", run.stdout, re.MULTILINE), sep="", end="")
        for what, test in WHAT.items():
            ratios = re.findall(rf"{test}.*contrast +([\d.]+) (.*)", run.stdout)
            print(f"{look}: least contrast of {what}", *min(ratios, key=lambda ratio: float(ratio[0])))
sys.exit(1 if failed else 0)
