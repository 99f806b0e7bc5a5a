#!/usr/bin/env python3
"""themes_test.py READABILITY_TEST: the windows are readable with every theme."""

import subprocess

from desktop import Display, arguments

[TEST] = arguments(__doc__, 1)
with Display() as desktop:
    for theme in "HighContrast", "HighContrastInverse", "Adwaita":
        look = {"QT_QPA_PLATFORMTHEME": "gtk3", "GTK_THEME": theme}
        subprocess.run([TEST, "-silent"], env=desktop.env | look, check=True)
