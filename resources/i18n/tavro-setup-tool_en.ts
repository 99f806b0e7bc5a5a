<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en_US">
<context>
    <name>AboutWindow</name>
    <message>
        <source>About Tavro Setup Tool</source>
        <translation>About Tavro Setup Tool</translation>
    </message>
    <message>
        <source>Volume, record quality and HDCP settings for one USB video capture device.</source>
        <translation>Volume, record quality and HDCP settings for one USB video capture device.</translation>
    </message>
    <message>
        <source>MIT License</source>
        <translation>MIT License</translation>
    </message>
    <message>
        <source>&amp;Close</source>
        <translation>&amp;Close</translation>
    </message>
    <message>
        <source>Program icon</source>
        <translation>Program icon</translation>
    </message>
</context>
<context>
    <name>AlertWindow</name>
    <message>
        <source>Capture device not reached</source>
        <translation>Capture device not reached</translation>
    </message>
    <message>
        <source>&lt;span style=&quot;font-size:large; font-weight:600&quot;&gt;The capture device could not be reached&lt;/span&gt;</source>
        <translation>&lt;span style=&quot;font-size:large; font-weight:600&quot;&gt;The capture device could not be reached&lt;/span&gt;</translation>
    </message>
    <message>
        <source>Please check these points, then start the program again.</source>
        <translation>Please check these points, then start the program again.</translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation>&amp;Quit</translation>
    </message>
    <message>
        <source>Closes this message and ends the program.</source>
        <translation>Closes this message and ends the program.</translation>
    </message>
    <message>
        <source>The capture device could not be reached. Check the cable, your rights on the device, and whether it answers after plugging it in again. The program ends when you close this message.</source>
        <translation>The capture device could not be reached. Check the cable, your rights on the device, and whether it answers after plugging it in again. The program ends when you close this message.</translation>
    </message>
    <message>
        <source>Is it plugged in? Push the USB cable in firmly at both ends, or try another USB port, without a hub. lsusb must list it as %1.</source>
        <translation>Is it plugged in? Push the USB cable in firmly at both ends, or try another USB port, without a hub. lsusb must list it as %1.</translation>
    </message>
    <message>
        <source>Do you have permission to use it? Log in directly at this computer, not remotely. Without the kernel driver uvcvideo it also needs the udev rule 70‑tavro‑setup‑tool.rules (see the README).</source>
        <translation>Do you have permission to use it? Log in directly at this computer, not remotely. Without the kernel driver uvcvideo it also needs the udev rule 70‑tavro‑setup‑tool.rules (see the README).</translation>
    </message>
    <message>
        <source>Does it answer? Unplug it, wait ten seconds and plug it in again.</source>
        <translation>Does it answer? Unplug it, wait ten seconds and plug it in again.</translation>
    </message>
    <message>
        <source>The system log shows the cause: journalctl -t tavro-setup-tool</source>
        <translation>The system log shows the cause: journalctl -t tavro-setup-tool</translation>
    </message>
</context>
<context>
    <name>Localizable</name>
    <message>
        <source>%1%</source>
        <comment>Value of a slider in percent</comment>
        <translation>%1%</translation>
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
        <translation>High</translation>
    </message>
    <message>
        <source>MIDDLE</source>
        <comment>Middle</comment>
        <extracomment>A level of the record quality, 14 letters at most.</extracomment>
        <translation>Middle</translation>
    </message>
    <message>
        <source>LOW</source>
        <comment>Low</comment>
        <extracomment>A level of the record quality, 14 letters at most.</extracomment>
        <translation>Low</translation>
    </message>
</context>
<context>
    <name>SettingsWindow</name>
    <message>
        <source>USB video capture device</source>
        <translation>USB video capture device</translation>
    </message>
    <message>
        <source>&amp;Record quality</source>
        <translation>&amp;Record quality</translation>
    </message>
    <message>
        <source>Record quality</source>
        <translation>Record quality</translation>
    </message>
    <message>
        <source>Bit rate of the H.264 recording made by the device.</source>
        <translation>Bit rate of the H.264 recording made by the device.</translation>
    </message>
    <message>
        <source>High</source>
        <translation>High</translation>
    </message>
    <message>
        <source>Middle</source>
        <translation>Middle</translation>
    </message>
    <message>
        <source>Low</source>
        <translation>Low</translation>
    </message>
    <message>
        <source>Current bit rate</source>
        <translation>Current bit rate</translation>
    </message>
    <message>
        <source>For H.264 recording</source>
        <translation>For H.264 recording</translation>
    </message>
    <message>
        <source>Volume</source>
        <translation>Volume</translation>
    </message>
    <message>
        <source>Min</source>
        <translation>Min</translation>
    </message>
    <message>
        <source>Max</source>
        <translation>Max</translation>
    </message>
    <message>
        <source>&amp;Microphone</source>
        <translation>&amp;Microphone</translation>
    </message>
    <message>
        <source>Microphone volume</source>
        <translation>Microphone volume</translation>
    </message>
    <message>
        <source>0 is the quietest, 255 the loudest setting of the device.</source>
        <translation>0 is the quietest, 255 the loudest setting of the device.</translation>
    </message>
    <message>
        <source>&amp;Headphones</source>
        <translation>&amp;Headphones</translation>
    </message>
    <message>
        <source>Headphone volume</source>
        <translation>Headphone volume</translation>
    </message>
    <message>
        <source>HDMI and AU&amp;X</source>
        <translation>HDMI and AU&amp;X</translation>
    </message>
    <message>
        <source>HDMI and AUX volume</source>
        <translation>HDMI and AUX volume</translation>
    </message>
    <message>
        <source>Sets the HDMI and the AUX volume together.</source>
        <translation>Sets the HDMI and the AUX volume together.</translation>
    </message>
    <message>
        <source>O&amp;n</source>
        <translation>O&amp;n</translation>
    </message>
    <message>
        <source>HDCP on</source>
        <translation>HDCP on</translation>
    </message>
    <message>
        <source>O&amp;ff</source>
        <translation>O&amp;ff</translation>
    </message>
    <message>
        <source>HDCP off</source>
        <translation>HDCP off</translation>
    </message>
    <message>
        <source>Content protection of the HDMI signal</source>
        <translation>Content protection of the HDMI signal</translation>
    </message>
    <message>
        <source>&amp;About</source>
        <translation>&amp;About</translation>
    </message>
    <message>
        <source>About this program (F1)</source>
        <translation>About this program (F1)</translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation>&amp;Quit</translation>
    </message>
    <message>
        <source>Quit (Ctrl+Q)</source>
        <translation>Quit (Ctrl+Q)</translation>
    </message>
    <message>
        <source>Program icon</source>
        <translation>Program icon</translation>
    </message>
    <message>
        <source>Legend for the stars.</source>
        <translation>Legend for the stars.</translation>
    </message>
</context>
</TS>
