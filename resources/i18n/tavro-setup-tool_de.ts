<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de">
<context>
    <name>AboutWindow</name>
    <message>
        <source>About Tavro Setup Tool</source>
        <translation>Info zu Tavro Setup Tool</translation>
    </message>
    <message>
        <source>Volume, record quality and HDCP settings for one USB video capture device.</source>
        <translation>Lautstärke, Aufnahmequalität und HDCP eines USB-Videoaufnahmegeräts einstellen.</translation>
    </message>
    <message>
        <source>MIT License</source>
        <translation>MIT-Lizenz</translation>
    </message>
    <message>
        <source>&amp;Close</source>
        <translation>&amp;Schließen</translation>
    </message>
    <message>
        <source>Program icon</source>
        <translation>Programmsymbol</translation>
    </message>
</context>
<context>
    <name>AlertWindow</name>
    <message>
        <source>Capture device not reached</source>
        <translation>Aufnahmegerät konnte nicht erreicht werden</translation>
    </message>
    <message>
        <source>The capture device could not be reached. Check the cable, your rights on the device, and whether it answers after plugging it in again. The program ends when you close this message.</source>
        <translation>Das Aufnahmegerät konnte nicht erreicht werden. Prüfen Sie das Kabel, Ihre Zugriffsrechte auf das Gerät und ob es nach erneutem Einstecken reagiert. Wenn Sie diese Meldung schließen, wird das Programm beendet.</translation>
    </message>
    <message>
        <source>&lt;span style=&quot;font-size:large; font-weight:600&quot;&gt;The capture device could not be reached&lt;/span&gt;</source>
        <translation>&lt;span style=&quot;font-size:large; font-weight:600&quot;&gt;Das Aufnahmegerät konnte nicht erreicht werden&lt;/span&gt;</translation>
    </message>
    <message>
        <source>Please check these points, then start the program again.</source>
        <translation>Bitte prüfen Sie diese Punkte und starten Sie das Programm dann neu.</translation>
    </message>
    <message>
        <source>Is it plugged in? Push the USB cable in firmly at both ends, or try another USB port, without a hub. lsusb must list it as %1.</source>
        <translation>Ist es angeschlossen? Stecken Sie das USB-Kabel an beiden Enden fest ein, oder verwenden Sie einen anderen USB-Anschluss ohne Hub. lsusb muss %1 zeigen.</translation>
    </message>
    <message>
        <source>Do you have permission to use it? Log in directly at this computer, not remotely. Without the kernel driver uvcvideo it also needs the udev rule 70‑tavro‑setup‑tool.rules (see the README).</source>
        <translation>Haben Sie Zugriff darauf? Melden Sie sich direkt an diesem Computer an, nicht per Fernzugriff. Ohne den Kerneltreiber uvcvideo ist auch die udev-Regel 70‑tavro‑setup‑tool.rules nötig (siehe README).</translation>
    </message>
    <message>
        <source>Does it answer? Unplug it, wait ten seconds and plug it in again.</source>
        <translation>Reagiert es? Trennen Sie das Gerät, warten Sie zehn Sekunden und stecken Sie es wieder ein.</translation>
    </message>
    <message>
        <source>The system log shows the cause: journalctl -t tavro-setup-tool</source>
        <translation>Die Ursache steht im Systemprotokoll: journalctl -t tavro-setup-tool</translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation>&amp;Beenden</translation>
    </message>
    <message>
        <source>Closes this message and ends the program.</source>
        <translation>Schließt diese Meldung und beendet das Programm.</translation>
    </message>
</context>
<context>
    <name>Localizable</name>
    <message>
        <source>%1%</source>
        <comment>Value of a slider in percent</comment>
        <translation>%1&#xa0;%</translation>
    </message>
    <message>
        <source>VERSION</source>
        <comment>Version</comment>
        <extracomment>The program&apos;s version number follows, as in &quot;Version 1.0.0&quot;.</extracomment>
        <translation>Version</translation>
    </message>
    <message>
        <source>FW_VERSION</source>
        <comment>FW_VERSION</comment>
        <extracomment>The version numbers follow, as in &quot;Firmware v1.2.3.4&quot;.</extracomment>
        <translation>Firmware</translation>
    </message>
    <message>
        <source>HIGH</source>
        <comment>High</comment>
        <extracomment>A level of the record quality, 14 letters at most.</extracomment>
        <translation>Hoch</translation>
    </message>
    <message>
        <source>MIDDLE</source>
        <comment>Middle</comment>
        <extracomment>A level of the record quality, 14 letters at most.</extracomment>
        <translation>Mittel</translation>
    </message>
    <message>
        <source>LOW</source>
        <comment>Low</comment>
        <extracomment>A level of the record quality, 14 letters at most.</extracomment>
        <translation>Niedrig</translation>
    </message>
</context>
<context>
    <name>SettingsWindow</name>
    <message>
        <source>USB video capture device</source>
        <translation>USB-Videoaufnahmegerät</translation>
    </message>
    <message>
        <source>&amp;Record quality</source>
        <translation>&amp;Aufnahmequalität</translation>
    </message>
    <message>
        <source>Record quality</source>
        <translation>Aufnahmequalität</translation>
    </message>
    <message>
        <source>Bit rate of the H.264 recording made by the device.</source>
        <translation>Bitrate der H.264-Aufnahme des Geräts.</translation>
    </message>
    <message>
        <source>High</source>
        <translation>Hoch</translation>
    </message>
    <message>
        <source>Middle</source>
        <translation>Mittel</translation>
    </message>
    <message>
        <source>Low</source>
        <translation>Niedrig</translation>
    </message>
    <message>
        <source>Current bit rate</source>
        <translation>Aktuelle Bitrate</translation>
    </message>
    <message>
        <source>For H.264 recording</source>
        <translation>Für H.264-Aufnahmen</translation>
    </message>
    <message>
        <source>Volume</source>
        <translation>Lautstärke</translation>
    </message>
    <message>
        <source>Min</source>
        <translation>Min.</translation>
    </message>
    <message>
        <source>Max</source>
        <translation>Max.</translation>
    </message>
    <message>
        <source>&amp;Microphone</source>
        <translation>&amp;Mikrofon</translation>
    </message>
    <message>
        <source>Microphone volume</source>
        <translation>Mikrofonlautstärke</translation>
    </message>
    <message>
        <source>0 is the quietest, 255 the loudest setting of the device.</source>
        <translation>0 ist die leiseste, 255 die lauteste Einstellung des Geräts.</translation>
    </message>
    <message>
        <source>&amp;Headphones</source>
        <translation>&amp;Kopfhörer</translation>
    </message>
    <message>
        <source>Headphone volume</source>
        <translation>Kopfhörerlautstärke</translation>
    </message>
    <message>
        <source>HDMI and AU&amp;X</source>
        <translation>HDMI und AU&amp;X</translation>
    </message>
    <message>
        <source>HDMI and AUX volume</source>
        <translation>HDMI- und AUX-Lautstärke</translation>
    </message>
    <message>
        <source>Sets the HDMI and the AUX volume together.</source>
        <translation>Stellt HDMI- und AUX-Lautstärke zusammen ein.</translation>
    </message>
    <message>
        <source>O&amp;n</source>
        <translation>&amp;Ein</translation>
    </message>
    <message>
        <source>HDCP on</source>
        <translation>HDCP ein</translation>
    </message>
    <message>
        <source>O&amp;ff</source>
        <translation>A&amp;us</translation>
    </message>
    <message>
        <source>HDCP off</source>
        <translation>HDCP aus</translation>
    </message>
    <message>
        <source>Content protection of the HDMI signal</source>
        <translation>Kopierschutz des HDMI-Signals</translation>
    </message>
    <message>
        <source>&amp;About</source>
        <translation>&amp;Info</translation>
    </message>
    <message>
        <source>About this program (F1)</source>
        <translation>Info zu diesem Programm (F1)</translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation>&amp;Beenden</translation>
    </message>
    <message>
        <source>Quit (Ctrl+Q)</source>
        <translation>Beenden (Strg+Q)</translation>
    </message>
    <message>
        <source>Program icon</source>
        <translation>Programmsymbol</translation>
    </message>
    <message>
        <source>Legend for the stars.</source>
        <translation>Stufe der Sterneskala; zeigt, was die Sterne bedeuten.</translation>
    </message>
</context>
</TS>
