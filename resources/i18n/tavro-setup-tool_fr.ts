<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="fr">
<context>
    <name>AboutWindow</name>
    <message>
        <source>About Tavro Setup Tool</source>
        <translation>À propos de Tavro Setup Tool</translation>
    </message>
    <message>
        <source>Volume, record quality and HDCP settings for one USB video capture device.</source>
        <translation>Réglages du volume, de la qualité d’enregistrement et de HDCP d’un boîtier d’acquisition vidéo USB.</translation>
    </message>
    <message>
        <source>MIT License</source>
        <translation>Licence MIT</translation>
    </message>
    <message>
        <source>&amp;Close</source>
        <translation>&amp;Fermer</translation>
    </message>
    <message>
        <source>Program icon</source>
        <translation>Icône du programme</translation>
    </message>
</context>
<context>
    <name>AlertWindow</name>
    <message>
        <source>Capture device not reached</source>
        <translation>Boîtier d’acquisition injoignable</translation>
    </message>
    <message>
        <source>The capture device could not be reached. Check the cable, your rights on the device, and whether it answers after plugging it in again. The program ends when you close this message.</source>
        <translation>Le boîtier d’acquisition n’a pas pu être joint. Vérifiez le câble, vos droits sur le boîtier, et s’il répond une fois rebranché. Le programme se ferme lorsque vous fermez ce message.</translation>
    </message>
    <message>
        <source>&lt;span style=&quot;font-size:large; font-weight:600&quot;&gt;The capture device could not be reached&lt;/span&gt;</source>
        <translation>&lt;span style=&quot;font-size:large; font-weight:600&quot;&gt;Le boîtier d’acquisition n’a pas pu être joint&lt;/span&gt;</translation>
    </message>
    <message>
        <source>Please check these points, then start the program again.</source>
        <translation>Vérifiez les points suivants, puis relancez le programme.</translation>
    </message>
    <message>
        <source>Is it plugged in? Push the USB cable in firmly at both ends, or try another USB port, without a hub. lsusb must list it as %1.</source>
        <translation>Est-il branché&#x202f;? Enfoncez bien le câble USB aux deux extrémités, ou essayez un autre port USB, sans concentrateur. lsusb doit afficher %1.</translation>
    </message>
    <message>
        <source>Do you have permission to use it? Log in directly at this computer, not remotely. Without the kernel driver uvcvideo it also needs the udev rule 70‑tavro‑setup‑tool.rules (see the README).</source>
        <translation>Avez-vous le droit de l’utiliser&#x202f;? Ouvrez une session directement sur cet ordinateur, pas à distance. Sans le pilote uvcvideo du noyau, il faut aussi la règle udev 70‑tavro‑setup‑tool.rules (voir le README).</translation>
    </message>
    <message>
        <source>Does it answer? Unplug it, wait ten seconds and plug it in again.</source>
        <translation>Répond-il&#x202f;? Débranchez-le, attendez dix secondes et rebranchez-le.</translation>
    </message>
    <message>
        <source>The system log shows the cause: journalctl -t tavro-setup-tool</source>
        <translation>Le journal du système indique la cause&#xa0;: journalctl -t tavro-setup-tool</translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation>&amp;Quitter</translation>
    </message>
    <message>
        <source>Closes this message and ends the program.</source>
        <translation>Ferme ce message et quitte le programme.</translation>
    </message>
</context>
<context>
    <name>Localizable</name>
    <message>
        <source>%1%</source>
        <comment>Value of a slider in percent</comment>
        <translation>%1&#x202f;%</translation>
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
        <translation>Micrologiciel</translation>
    </message>
    <message>
        <source>HIGH</source>
        <comment>High</comment>
        <extracomment>A level of the record quality, 14 letters at most.</extracomment>
        <translation>Élevée</translation>
    </message>
    <message>
        <source>MIDDLE</source>
        <comment>Middle</comment>
        <extracomment>A level of the record quality, 14 letters at most.</extracomment>
        <translation>Moyenne</translation>
    </message>
    <message>
        <source>LOW</source>
        <comment>Low</comment>
        <extracomment>A level of the record quality, 14 letters at most.</extracomment>
        <translation>Faible</translation>
    </message>
</context>
<context>
    <name>SettingsWindow</name>
    <message>
        <source>USB video capture device</source>
        <translation>Boîtier d’acquisition vidéo USB</translation>
    </message>
    <message>
        <source>&amp;Record quality</source>
        <translation>&amp;Qualité vidéo</translation>
    </message>
    <message>
        <source>Record quality</source>
        <translation>Qualité vidéo de l’enregistrement</translation>
    </message>
    <message>
        <source>Bit rate of the H.264 recording made by the device.</source>
        <translation>Débit de l’enregistrement H.264 effectué par le boîtier.</translation>
    </message>
    <message>
        <source>High</source>
        <translation>Élevé</translation>
    </message>
    <message>
        <source>Middle</source>
        <translation>Moyen</translation>
    </message>
    <message>
        <source>Low</source>
        <translation>Faible</translation>
    </message>
    <message>
        <source>Current bit rate</source>
        <translation>Débit actuel</translation>
    </message>
    <message>
        <source>For H.264 recording</source>
        <translation>Enregistrement H.264</translation>
    </message>
    <message>
        <source>Volume</source>
        <translation>Volume</translation>
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
        <translation>&amp;Micro</translation>
    </message>
    <message>
        <source>Microphone volume</source>
        <translation>Volume du micro</translation>
    </message>
    <message>
        <source>0 is the quietest, 255 the loudest setting of the device.</source>
        <translation>0 est le réglage le plus faible du boîtier, 255 le plus fort.</translation>
    </message>
    <message>
        <source>&amp;Headphones</source>
        <translation>&amp;Casque</translation>
    </message>
    <message>
        <source>Headphone volume</source>
        <translation>Volume du casque</translation>
    </message>
    <message>
        <source>HDMI and AU&amp;X</source>
        <translation>HDMI et AU&amp;X</translation>
    </message>
    <message>
        <source>HDMI and AUX volume</source>
        <translation>Volume HDMI et AUX</translation>
    </message>
    <message>
        <source>Sets the HDMI and the AUX volume together.</source>
        <translation>Règle à la fois les volumes HDMI et AUX.</translation>
    </message>
    <message>
        <source>O&amp;n</source>
        <translation>Acti&amp;vé</translation>
    </message>
    <message>
        <source>HDCP on</source>
        <translation>HDCP activé</translation>
    </message>
    <message>
        <source>O&amp;ff</source>
        <translation>&amp;Désactivé</translation>
    </message>
    <message>
        <source>HDCP off</source>
        <translation>HDCP désactivé</translation>
    </message>
    <message>
        <source>Content protection of the HDMI signal</source>
        <translation>Protection du contenu du signal HDMI</translation>
    </message>
    <message>
        <source>&amp;About</source>
        <translation>À &amp;propos</translation>
    </message>
    <message>
        <source>About this program (F1)</source>
        <translation>À propos de ce programme (F1)</translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation>Q&amp;uitter</translation>
    </message>
    <message>
        <source>Quit (Ctrl+Q)</source>
        <translation>Quitter (Ctrl+Q)</translation>
    </message>
    <message>
        <source>Program icon</source>
        <translation>Icône du programme</translation>
    </message>
    <message>
        <source>Legend for the stars.</source>
        <translation>Niveau de l’échelle d’étoiles&#x202f;; indique ce que signifient les étoiles.</translation>
    </message>
</context>
</TS>
