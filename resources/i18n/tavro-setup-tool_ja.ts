<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ja">
<context>
    <name>AboutWindow</name>
    <message>
        <source>About Tavro Setup Tool</source>
        <translation>Tavro Setup Tool のバージョン情報</translation>
    </message>
    <message>
        <source>Volume, record quality and HDCP settings for one USB video capture device.</source>
        <translation>USB ビデオキャプチャーデバイスの音量、録画品質、HDCP を設定します。</translation>
    </message>
    <message>
        <source>MIT License</source>
        <translation>MIT ライセンス</translation>
    </message>
    <message>
        <source>&amp;Close</source>
        <translation>閉じる(&amp;C)</translation>
    </message>
    <message>
        <source>Program icon</source>
        <translation>プログラムのアイコン</translation>
    </message>
</context>
<context>
    <name>AlertWindow</name>
    <message>
        <source>Capture device not reached</source>
        <translation>キャプチャーデバイスに接続できませんでした</translation>
    </message>
    <message>
        <source>The capture device could not be reached. Check the cable, your rights on the device, and whether it answers after plugging it in again. The program ends when you close this message.</source>
        <translation>キャプチャーデバイスに接続できませんでした。ケーブル、デバイスを使う権限、接続し直したときに応答するかどうかを確認してください。このメッセージを閉じるとプログラムは終了します。</translation>
    </message>
    <message>
        <source>&lt;span style=&quot;font-size:large; font-weight:600&quot;&gt;The capture device could not be reached&lt;/span&gt;</source>
        <translation>&lt;span style=&quot;font-size:large; font-weight:600&quot;&gt;キャプチャーデバイスに接続できませんでした&lt;/span&gt;</translation>
    </message>
    <message>
        <source>Please check these points, then start the program again.</source>
        <translation>次の点を確認してから、プログラムを起動し直してください。</translation>
    </message>
    <message>
        <source>Is it plugged in? Push the USB cable in firmly at both ends, or try another USB port, without a hub. lsusb must list it as %1.</source>
        <translation>接続されていますか？ USB ケーブルの両端をしっかり差し込むか、ハブを使わずに別の USB ポートで試してください。lsusb に %1 と表示される必要があります。</translation>
    </message>
    <message>
        <source>Do you have permission to use it? Log in directly at this computer, not remotely. Without the kernel driver uvcvideo it also needs the udev rule 70‑tavro‑setup‑tool.rules (see the README).</source>
        <translation>アクセス権がありますか？ リモートではなく、このコンピューターに直接ログインしてください。カーネルのドライバー uvcvideo がない場合は、udev ルール 70‑tavro‑setup‑tool.rules も必要です (README を参照)。</translation>
    </message>
    <message>
        <source>Does it answer? Unplug it, wait ten seconds and plug it in again.</source>
        <translation>応答していますか？ デバイスを取り外し、10 秒待ってから接続し直してください。</translation>
    </message>
    <message>
        <source>The system log shows the cause: journalctl -t tavro-setup-tool</source>
        <translation>原因はシステムログで確認できます: journalctl -t tavro-setup-tool</translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation>終了(&amp;Q)</translation>
    </message>
    <message>
        <source>Closes this message and ends the program.</source>
        <translation>このメッセージを閉じてプログラムを終了します。</translation>
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
        <translation>バージョン</translation>
    </message>
    <message>
        <source>FW_VERSION</source>
        <comment>FW_VERSION</comment>
        <extracomment>The version numbers follow, as in &quot;Firmware v1.2.3.4&quot;.</extracomment>
        <translation>ファームウェア</translation>
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
        <translation>USB ビデオキャプチャーデバイス</translation>
    </message>
    <message>
        <source>&amp;Record quality</source>
        <translation>録画品質(&amp;R)</translation>
    </message>
    <message>
        <source>Record quality</source>
        <translation>録画品質</translation>
    </message>
    <message>
        <source>Bit rate of the H.264 recording made by the device.</source>
        <translation>デバイスが行う H.264 録画のビットレート。</translation>
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
        <translation>現在のビットレート</translation>
    </message>
    <message>
        <source>For H.264 recording</source>
        <translation>H.264 録画用</translation>
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
        <translation>マイク(&amp;M)</translation>
    </message>
    <message>
        <source>Microphone volume</source>
        <translation>マイクの音量</translation>
    </message>
    <message>
        <source>0 is the quietest, 255 the loudest setting of the device.</source>
        <translation>0 が最小、255 が最大です。</translation>
    </message>
    <message>
        <source>&amp;Headphones</source>
        <translation>ヘッドホン(&amp;H)</translation>
    </message>
    <message>
        <source>Headphone volume</source>
        <translation>ヘッドホンの音量</translation>
    </message>
    <message>
        <source>HDMI and AU&amp;X</source>
        <translation>HDMI と AUX(&amp;X)</translation>
    </message>
    <message>
        <source>HDMI and AUX volume</source>
        <translation>HDMI と AUX の音量</translation>
    </message>
    <message>
        <source>Sets the HDMI and the AUX volume together.</source>
        <translation>HDMI と AUX の音量をまとめて設定します。</translation>
    </message>
    <message>
        <source>O&amp;n</source>
        <translation>オン(&amp;N)</translation>
    </message>
    <message>
        <source>HDCP on</source>
        <translation>HDCP オン</translation>
    </message>
    <message>
        <source>O&amp;ff</source>
        <translation>オフ(&amp;F)</translation>
    </message>
    <message>
        <source>HDCP off</source>
        <translation>HDCP オフ</translation>
    </message>
    <message>
        <source>Content protection of the HDMI signal</source>
        <translation>HDMI 信号のコンテンツ保護</translation>
    </message>
    <message>
        <source>&amp;About</source>
        <translation>バージョン情報(&amp;A)</translation>
    </message>
    <message>
        <source>About this program (F1)</source>
        <translation>バージョン情報 (F1)</translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation>終了(&amp;Q)</translation>
    </message>
    <message>
        <source>Quit (Ctrl+Q)</source>
        <translation>終了 (Ctrl+Q)</translation>
    </message>
    <message>
        <source>Program icon</source>
        <translation>プログラムのアイコン</translation>
    </message>
    <message>
        <source>Legend for the stars.</source>
        <translation>星の数が示す段階の凡例です。</translation>
    </message>
</context>
</TS>
