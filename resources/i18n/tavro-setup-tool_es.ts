<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="es">
<context>
    <name>AboutWindow</name>
    <message>
        <source>About Tavro Setup Tool</source>
        <translation>Acerca de Tavro Setup Tool</translation>
    </message>
    <message>
        <source>Volume, record quality and HDCP settings for one USB video capture device.</source>
        <translation>Ajustes de volumen, calidad de grabación y HDCP de un dispositivo de captura de vídeo USB.</translation>
    </message>
    <message>
        <source>MIT License</source>
        <translation>Licencia MIT</translation>
    </message>
    <message>
        <source>&amp;Close</source>
        <translation>&amp;Cerrar</translation>
    </message>
    <message>
        <source>Program icon</source>
        <translation>Icono del programa</translation>
    </message>
</context>
<context>
    <name>AlertWindow</name>
    <message>
        <source>Capture device not reached</source>
        <translation>No se pudo acceder al dispositivo de captura</translation>
    </message>
    <message>
        <source>The capture device could not be reached. Check the cable, your rights on the device, and whether it answers after plugging it in again. The program ends when you close this message.</source>
        <translation>No se pudo acceder al dispositivo de captura. Compruebe el cable, sus permisos sobre el dispositivo y si responde al volver a conectarlo. El programa se cierra al cerrar este mensaje.</translation>
    </message>
    <message>
        <source>&lt;span style=&quot;font-size:large; font-weight:600&quot;&gt;The capture device could not be reached&lt;/span&gt;</source>
        <translation>&lt;span style=&quot;font-size:large; font-weight:600&quot;&gt;No se pudo acceder al dispositivo de captura&lt;/span&gt;</translation>
    </message>
    <message>
        <source>Please check these points, then start the program again.</source>
        <translation>Compruebe estos puntos y vuelva a iniciar el programa.</translation>
    </message>
    <message>
        <source>Is it plugged in? Push the USB cable in firmly at both ends, or try another USB port, without a hub. lsusb must list it as %1.</source>
        <translation>¿Está conectado? Conecte firmemente ambos extremos del cable USB, o pruebe con otro puerto USB, sin concentrador. lsusb debe mostrarlo como %1.</translation>
    </message>
    <message>
        <source>Do you have permission to use it? Log in directly at this computer, not remotely. Without the kernel driver uvcvideo it also needs the udev rule 70‑tavro‑setup‑tool.rules (see the README).</source>
        <translation>¿Tiene permiso para usarlo? Inicie sesión directamente en este equipo, no de forma remota. Sin el controlador uvcvideo del núcleo también hace falta la regla de udev 70‑tavro‑setup‑tool.rules (véase el README).</translation>
    </message>
    <message>
        <source>Does it answer? Unplug it, wait ten seconds and plug it in again.</source>
        <translation>¿Responde? Desconéctelo, espere diez segundos y vuelva a conectarlo.</translation>
    </message>
    <message>
        <source>The system log shows the cause: journalctl -t tavro-setup-tool</source>
        <translation>El registro del sistema indica la causa: journalctl -t tavro-setup-tool</translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation>&amp;Salir</translation>
    </message>
    <message>
        <source>Closes this message and ends the program.</source>
        <translation>Cierra este mensaje y sale del programa.</translation>
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
        <translation>Versión</translation>
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
        <translation>Alta</translation>
    </message>
    <message>
        <source>MIDDLE</source>
        <comment>Middle</comment>
        <extracomment>A level of the record quality, 14 letters at most.</extracomment>
        <translation>Media</translation>
    </message>
    <message>
        <source>LOW</source>
        <comment>Low</comment>
        <extracomment>A level of the record quality, 14 letters at most.</extracomment>
        <translation>Baja</translation>
    </message>
</context>
<context>
    <name>SettingsWindow</name>
    <message>
        <source>USB video capture device</source>
        <translation>Dispositivo de captura de vídeo USB</translation>
    </message>
    <message>
        <source>&amp;Record quality</source>
        <translation>&amp;Calidad de grabación</translation>
    </message>
    <message>
        <source>Record quality</source>
        <translation>Calidad de grabación</translation>
    </message>
    <message>
        <source>Bit rate of the H.264 recording made by the device.</source>
        <translation>Tasa de bits de la grabación H.264 realizada por el dispositivo.</translation>
    </message>
    <message>
        <source>High</source>
        <translation>Alta</translation>
    </message>
    <message>
        <source>Middle</source>
        <translation>Media</translation>
    </message>
    <message>
        <source>Low</source>
        <translation>Baja</translation>
    </message>
    <message>
        <source>Current bit rate</source>
        <translation>Tasa de bits actual</translation>
    </message>
    <message>
        <source>For H.264 recording</source>
        <translation>Para grabación H.264</translation>
    </message>
    <message>
        <source>Volume</source>
        <translation>Volumen</translation>
    </message>
    <message>
        <source>Min</source>
        <translation>Mín.</translation>
    </message>
    <message>
        <source>Max</source>
        <translation>Máx.</translation>
    </message>
    <message>
        <source>&amp;Microphone</source>
        <translation>&amp;Micrófono</translation>
    </message>
    <message>
        <source>Microphone volume</source>
        <translation>Volumen del micrófono</translation>
    </message>
    <message>
        <source>0 is the quietest, 255 the loudest setting of the device.</source>
        <translation>0 es el ajuste más bajo del dispositivo y 255 el más alto.</translation>
    </message>
    <message>
        <source>&amp;Headphones</source>
        <translation>&amp;Auriculares</translation>
    </message>
    <message>
        <source>Headphone volume</source>
        <translation>Volumen de los auriculares</translation>
    </message>
    <message>
        <source>HDMI and AU&amp;X</source>
        <translation>HDMI y AU&amp;X</translation>
    </message>
    <message>
        <source>HDMI and AUX volume</source>
        <translation>Volumen de HDMI y AUX</translation>
    </message>
    <message>
        <source>Sets the HDMI and the AUX volume together.</source>
        <translation>Ajusta a la vez el volumen de HDMI y el de AUX.</translation>
    </message>
    <message>
        <source>O&amp;n</source>
        <translation>Ac&amp;tivado</translation>
    </message>
    <message>
        <source>HDCP on</source>
        <translation>HDCP activado</translation>
    </message>
    <message>
        <source>O&amp;ff</source>
        <translation>&amp;Desactivado</translation>
    </message>
    <message>
        <source>HDCP off</source>
        <translation>HDCP desactivado</translation>
    </message>
    <message>
        <source>Content protection of the HDMI signal</source>
        <translation>Protección de contenido de la señal HDMI</translation>
    </message>
    <message>
        <source>&amp;About</source>
        <translation>Ac&amp;erca de</translation>
    </message>
    <message>
        <source>About this program (F1)</source>
        <translation>Acerca de este programa (F1)</translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation>&amp;Salir</translation>
    </message>
    <message>
        <source>Quit (Ctrl+Q)</source>
        <translation>Salir (Ctrl+Q)</translation>
    </message>
    <message>
        <source>Program icon</source>
        <translation>Icono del programa</translation>
    </message>
    <message>
        <source>Legend for the stars.</source>
        <translation>Nivel de la escala de estrellas; indica qué significan.</translation>
    </message>
</context>
</TS>
