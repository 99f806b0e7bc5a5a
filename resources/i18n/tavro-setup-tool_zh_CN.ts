<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_CN">
<context>
    <name>AboutWindow</name>
    <message>
        <source>About Tavro Setup Tool</source>
        <translation>关于 Tavro Setup Tool</translation>
    </message>
    <message>
        <source>Volume, record quality and HDCP settings for one USB video capture device.</source>
        <translation>设置 USB 视频采集设备的音量、录制质量和 HDCP。</translation>
    </message>
    <message>
        <source>MIT License</source>
        <translation>MIT 许可证</translation>
    </message>
    <message>
        <source>&amp;Close</source>
        <translation>关闭(&amp;C)</translation>
    </message>
    <message>
        <source>Program icon</source>
        <translation>程序图标</translation>
    </message>
</context>
<context>
    <name>AlertWindow</name>
    <message>
        <source>Capture device not reached</source>
        <translation>无法连接到采集设备</translation>
    </message>
    <message>
        <source>The capture device could not be reached. Check the cable, your rights on the device, and whether it answers after plugging it in again. The program ends when you close this message.</source>
        <translation>无法连接到采集设备。请检查线缆、您对设备的权限，以及重新插入后设备是否响应。关闭此消息后程序将退出。</translation>
    </message>
    <message>
        <source>&lt;span style=&quot;font-size:large; font-weight:600&quot;&gt;The capture device could not be reached&lt;/span&gt;</source>
        <translation>&lt;span style=&quot;font-size:large; font-weight:600&quot;&gt;无法连接到采集设备&lt;/span&gt;</translation>
    </message>
    <message>
        <source>Please check these points, then start the program again.</source>
        <translation>请检查以下几点，然后重新启动程序。</translation>
    </message>
    <message>
        <source>Is it plugged in? Push the USB cable in firmly at both ends, or try another USB port, without a hub. lsusb must list it as %1.</source>
        <translation>设备插好了吗？请将 USB 线缆两端插紧，或换用另一个 USB 接口，不要经过集线器。lsusb 应将其列为 %1。</translation>
    </message>
    <message>
        <source>Do you have permission to use it? Log in directly at this computer, not remotely. Without the kernel driver uvcvideo it also needs the udev rule 70‑tavro‑setup‑tool.rules (see the README).</source>
        <translation>您有权使用它吗？请直接在这台电脑上登录，不要远程登录。如果没有内核驱动 uvcvideo，还需要 udev 规则 70‑tavro‑setup‑tool.rules（见 README）。</translation>
    </message>
    <message>
        <source>Does it answer? Unplug it, wait ten seconds and plug it in again.</source>
        <translation>它有响应吗？请拔下设备，等待十秒后再插入。</translation>
    </message>
    <message>
        <source>The system log shows the cause: journalctl -t tavro-setup-tool</source>
        <translation>具体原因见系统日志：journalctl -t tavro-setup-tool</translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation>退出(&amp;Q)</translation>
    </message>
    <message>
        <source>Closes this message and ends the program.</source>
        <translation>关闭此消息并退出程序。</translation>
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
        <translation>版本</translation>
    </message>
    <message>
        <source>FW_VERSION</source>
        <comment>FW_VERSION</comment>
        <extracomment>The version numbers follow, as in &quot;Firmware v1.2.3.4&quot;.</extracomment>
        <translation>固件</translation>
    </message>
    <message>
        <source>HIGH</source>
        <comment>High</comment>
        <extracomment>A level of the record quality, 14 letters at most.</extracomment>
        <translation>高</translation>
    </message>
    <message>
        <source>MIDDLE</source>
        <comment>Middle</comment>
        <extracomment>A level of the record quality, 14 letters at most.</extracomment>
        <translation>中</translation>
    </message>
    <message>
        <source>LOW</source>
        <comment>Low</comment>
        <extracomment>A level of the record quality, 14 letters at most.</extracomment>
        <translation>低</translation>
    </message>
</context>
<context>
    <name>SettingsWindow</name>
    <message>
        <source>USB video capture device</source>
        <translation>USB 视频采集设备</translation>
    </message>
    <message>
        <source>&amp;Record quality</source>
        <translation>录制质量(&amp;R)</translation>
    </message>
    <message>
        <source>Record quality</source>
        <translation>录制质量</translation>
    </message>
    <message>
        <source>Bit rate of the H.264 recording made by the device.</source>
        <translation>设备 H.264 录制的码率。</translation>
    </message>
    <message>
        <source>High</source>
        <translation>高</translation>
    </message>
    <message>
        <source>Middle</source>
        <translation>中</translation>
    </message>
    <message>
        <source>Low</source>
        <translation>低</translation>
    </message>
    <message>
        <source>Current bit rate</source>
        <translation>当前码率</translation>
    </message>
    <message>
        <source>For H.264 recording</source>
        <translation>用于 H.264 录制</translation>
    </message>
    <message>
        <source>Volume</source>
        <translation>音量</translation>
    </message>
    <message>
        <source>Min</source>
        <translation>最小</translation>
    </message>
    <message>
        <source>Max</source>
        <translation>最大</translation>
    </message>
    <message>
        <source>&amp;Microphone</source>
        <translation>麦克风(&amp;M)</translation>
    </message>
    <message>
        <source>Microphone volume</source>
        <translation>麦克风音量</translation>
    </message>
    <message>
        <source>0 is the quietest, 255 the loudest setting of the device.</source>
        <translation>0 为设备最小音量，255 为最大音量。</translation>
    </message>
    <message>
        <source>&amp;Headphones</source>
        <translation>耳机(&amp;H)</translation>
    </message>
    <message>
        <source>Headphone volume</source>
        <translation>耳机音量</translation>
    </message>
    <message>
        <source>HDMI and AU&amp;X</source>
        <translation>HDMI 和 AUX(&amp;X)</translation>
    </message>
    <message>
        <source>HDMI and AUX volume</source>
        <translation>HDMI 和 AUX 音量</translation>
    </message>
    <message>
        <source>Sets the HDMI and the AUX volume together.</source>
        <translation>同时设置 HDMI 和 AUX 音量。</translation>
    </message>
    <message>
        <source>O&amp;n</source>
        <translation>开(&amp;N)</translation>
    </message>
    <message>
        <source>HDCP on</source>
        <translation>HDCP 开</translation>
    </message>
    <message>
        <source>O&amp;ff</source>
        <translation>关(&amp;F)</translation>
    </message>
    <message>
        <source>HDCP off</source>
        <translation>HDCP 关</translation>
    </message>
    <message>
        <source>Content protection of the HDMI signal</source>
        <translation>HDMI 信号的内容保护</translation>
    </message>
    <message>
        <source>&amp;About</source>
        <translation>关于(&amp;A)</translation>
    </message>
    <message>
        <source>About this program (F1)</source>
        <translation>关于此程序 (F1)</translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation>退出(&amp;Q)</translation>
    </message>
    <message>
        <source>Quit (Ctrl+Q)</source>
        <translation>退出 (Ctrl+Q)</translation>
    </message>
    <message>
        <source>Program icon</source>
        <translation>程序图标</translation>
    </message>
    <message>
        <source>Legend for the stars.</source>
        <translation>星级图例，说明星星的含义。</translation>
    </message>
</context>
</TS>
