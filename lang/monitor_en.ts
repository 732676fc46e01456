<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en_US">
<context>
    <name>AboutDialog</name>
    <message>
        <source>About Monitor</source>
        <translation>About Monitor</translation>
    </message>
    <message>
        <source>Network processing monitor</source>
        <translation>Network processing monitor</translation>
    </message>
    <message>
        <source>Copyright © 2026 Korvane. All rights reserved.</source>
        <translation>Copyright © 2026 Korvane. All rights reserved.</translation>
    </message>
</context>
<context>
    <name>MainWindow</name>
    <message>
        <source>&amp;File</source>
        <translation>&amp;File</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>&amp;Help</translation>
    </message>
    <message>
        <source>E&amp;xit</source>
        <translation>E&amp;xit</translation>
    </message>
    <message>
        <source>About Monitor...</source>
        <translation>About Monitor...</translation>
    </message>
    <message>
        <source>Exit the application</source>
        <translation>Exit the application</translation>
    </message>
    <message>
        <source>Display program information, version number and copyright</source>
        <translation>Display program information, version number and copyright</translation>
    </message>
    <message>
        <source>Ready</source>
        <translation>Ready</translation>
    </message>
</context>
</TS>
