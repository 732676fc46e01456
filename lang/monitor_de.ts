<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE">
<context>
    <name>AboutDialog</name>
    <message>
        <source>About Monitor</source>
        <translation>Über Monitor</translation>
    </message>
    <message>
        <source>Network processing monitor</source>
        <translation>Monitor für Netzwerkverarbeitung</translation>
    </message>
    <message>
        <source>Copyright © 2026 Korvane. All rights reserved.</source>
        <translation>Copyright © 2026 Korvane. Alle Rechte vorbehalten.</translation>
    </message>
</context>
<context>
    <name>MainWindow</name>
    <message>
        <source>&amp;File</source>
        <translation>&amp;Datei</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>&amp;Hilfe</translation>
    </message>
    <message>
        <source>E&amp;xit</source>
        <translation>&amp;Beenden</translation>
    </message>
    <message>
        <source>About Monitor...</source>
        <translation>Über Monitor...</translation>
    </message>
    <message>
        <source>Exit the application</source>
        <translation>Die Anwendung beenden</translation>
    </message>
    <message>
        <source>Display program information, version number and copyright</source>
        <translation>Programminformationen, Versionsnummer und Copyright anzeigen</translation>
    </message>
    <message>
        <source>Ready</source>
        <translation>Bereit</translation>
    </message>
</context>
</TS>
