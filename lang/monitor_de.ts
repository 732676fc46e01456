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
    <name>BatchDetailsDialog</name>
    <message>
        <source>Batch Details</source>
        <translation>Stapeldetails</translation>
    </message>
    <message>
        <source>Project:</source>
        <translation>Projekt:</translation>
    </message>
    <message>
        <source>Last error:</source>
        <translation>Letzter Fehler:</translation>
    </message>
    <message>
        <source>Tasks</source>
        <translation>Aufgaben</translation>
    </message>
</context>
<context>
    <name>CurrentRowAnnouncer</name>
    <message>
        <source>%1: %2</source>
        <comment>a column header and the cell below it</comment>
        <translation>%1: %2</translation>
    </message>
</context>
<context>
    <name>Errors</name>
    <message>
        <source>Network failure</source>
        <translation>Netzwerkfehler</translation>
    </message>
    <message>
        <source>Can&apos;t connect to server</source>
        <translation>Keine Verbindung zum Server möglich</translation>
    </message>
    <message>
        <source>Disconnected from server</source>
        <translation>Verbindung zum Server getrennt</translation>
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
<context>
    <name>Monitor</name>
    <message>
        <source>Add Photos</source>
        <translation>Fotos hinzufügen</translation>
    </message>
    <message>
        <source>Align Photos</source>
        <translation>Fotos ausrichten</translation>
    </message>
    <message>
        <source>Align Chunks</source>
        <translation>Chunks ausrichten</translation>
    </message>
    <message>
        <source>Analyze Photos</source>
        <translation>Fotos analysieren</translation>
    </message>
    <message>
        <source>Build Contours</source>
        <translation>Höhenlinien erstellen</translation>
    </message>
    <message>
        <source>Build DEM</source>
        <translation>DEM erstellen</translation>
    </message>
    <message>
        <source>Build Dense Cloud</source>
        <translation>Dichte Punktwolke erstellen</translation>
    </message>
    <message>
        <source>Build Mesh</source>
        <translation>Mesh erstellen</translation>
    </message>
    <message>
        <source>Build Orthomosaic</source>
        <translation>Orthomosaik erstellen</translation>
    </message>
    <message>
        <source>Build Texture</source>
        <translation>Textur erstellen</translation>
    </message>
    <message>
        <source>Build Tiled Model</source>
        <translation>Gekacheltes Modell erstellen</translation>
    </message>
    <message>
        <source>Build UV</source>
        <translation>UV erstellen</translation>
    </message>
    <message>
        <source>Classify Ground Points</source>
        <translation>Bodenpunkte klassifizieren</translation>
    </message>
    <message>
        <source>Close Holes</source>
        <translation>Löcher schließen</translation>
    </message>
    <message>
        <source>Compact Dense Cloud</source>
        <translation>Dichte Punktwolke verdichten</translation>
    </message>
    <message>
        <source>Decimate Mesh</source>
        <translation>Mesh vereinfachen</translation>
    </message>
    <message>
        <source>Detect Markers</source>
        <translation>Marker erkennen</translation>
    </message>
    <message>
        <source>Duplicate Chunk</source>
        <translation>Chunk duplizieren</translation>
    </message>
    <message>
        <source>Export Cameras</source>
        <translation>Kameras exportieren</translation>
    </message>
    <message>
        <source>Export Contours</source>
        <translation>Höhenlinien exportieren</translation>
    </message>
    <message>
        <source>Export DEM</source>
        <translation>DEM exportieren</translation>
    </message>
    <message>
        <source>Export Depth Map</source>
        <translation>Tiefenkarte exportieren</translation>
    </message>
    <message>
        <source>Export Masks</source>
        <translation>Masken exportieren</translation>
    </message>
    <message>
        <source>Export Matches</source>
        <translation>Übereinstimmungen exportieren</translation>
    </message>
    <message>
        <source>Export Model</source>
        <translation>Modell exportieren</translation>
    </message>
    <message>
        <source>Export Orthomosaic</source>
        <translation>Orthomosaik exportieren</translation>
    </message>
    <message>
        <source>Export Orthophotos</source>
        <translation>Orthofotos exportieren</translation>
    </message>
    <message>
        <source>Export Panorama</source>
        <translation>Panorama exportieren</translation>
    </message>
    <message>
        <source>Export Points</source>
        <translation>Punkte exportieren</translation>
    </message>
    <message>
        <source>Export Report</source>
        <translation>Bericht exportieren</translation>
    </message>
    <message>
        <source>Export Shapes</source>
        <translation>Formen exportieren</translation>
    </message>
    <message>
        <source>Export Texture</source>
        <translation>Textur exportieren</translation>
    </message>
    <message>
        <source>Export Tiled Model</source>
        <translation>Gekacheltes Modell exportieren</translation>
    </message>
    <message>
        <source>Import Cameras</source>
        <translation>Kameras importieren</translation>
    </message>
    <message>
        <source>Import Dem</source>
        <translation>Dem importieren</translation>
    </message>
    <message>
        <source>Import Masks</source>
        <translation>Masken importieren</translation>
    </message>
    <message>
        <source>Import Model</source>
        <translation>Modell importieren</translation>
    </message>
    <message>
        <source>Import Shapes</source>
        <translation>Formen importieren</translation>
    </message>
    <message>
        <source>Invert Masks</source>
        <translation>Masken invertieren</translation>
    </message>
    <message>
        <source>Load Project</source>
        <translation>Projekt laden</translation>
    </message>
    <message>
        <source>Match Photos</source>
        <translation>Fotos abgleichen</translation>
    </message>
    <message>
        <source>Merge Chunks</source>
        <translation>Chunks zusammenführen</translation>
    </message>
    <message>
        <source>Optimize Alignment</source>
        <translation>Ausrichtung optimieren</translation>
    </message>
    <message>
        <source>Refine Markers</source>
        <translation>Marker verfeinern</translation>
    </message>
    <message>
        <source>Refine Points</source>
        <translation>Punkte verfeinern</translation>
    </message>
    <message>
        <source>Reset Masks</source>
        <translation>Masken zurücksetzen</translation>
    </message>
    <message>
        <source>Reset Orthomosaic</source>
        <translation>Orthomosaik zurücksetzen</translation>
    </message>
    <message>
        <source>Run Script</source>
        <translation>Skript ausführen</translation>
    </message>
    <message>
        <source>Save Project</source>
        <translation>Projekt speichern</translation>
    </message>
    <message>
        <source>Select Dense Points</source>
        <translation>Dichte Punkte auswählen</translation>
    </message>
    <message>
        <source>Smooth Model</source>
        <translation>Modell glätten</translation>
    </message>
    <message>
        <source>Track Markers</source>
        <translation>Marker verfolgen</translation>
    </message>
    <message>
        <source>Triangulate Points</source>
        <translation>Punkte triangulieren</translation>
    </message>
    <message>
        <source>Undistort Photos</source>
        <translation>Fotos entzerren</translation>
    </message>
    <message>
        <source>Update Orthomosaic</source>
        <translation>Orthomosaik aktualisieren</translation>
    </message>
    <message>
        <source>Highest</source>
        <translation>Höchste</translation>
    </message>
    <message>
        <source>High</source>
        <translation>Hoch</translation>
    </message>
    <message>
        <source>Normal</source>
        <translation>Normal</translation>
    </message>
    <message>
        <source>Low</source>
        <translation>Niedrig</translation>
    </message>
    <message>
        <source>Lowest</source>
        <translation>Niedrigste</translation>
    </message>
    <message>
        <source>#</source>
        <translation>#</translation>
    </message>
    <message>
        <source>Project</source>
        <translation>Projekt</translation>
    </message>
    <message>
        <source>Started</source>
        <translation>Gestartet</translation>
    </message>
    <message>
        <source>Status</source>
        <translation>Status</translation>
    </message>
    <message>
        <source>Priority</source>
        <translation>Priorität</translation>
    </message>
    <message>
        <source>Current Task</source>
        <translation>Aktuelle Aufgabe</translation>
    </message>
    <message>
        <source>Elapsed / Left</source>
        <translation>Vergangen / Verbleibend</translation>
    </message>
    <message>
        <source>Failures</source>
        <translation>Fehler</translation>
    </message>
    <message>
        <source>Nodes</source>
        <translation>Knoten</translation>
    </message>
    <message>
        <source>Host</source>
        <translation>Host</translation>
    </message>
    <message>
        <source>Batch #</source>
        <translation>Stapel #</translation>
    </message>
    <message>
        <source>Progress</source>
        <translation>Fortschritt</translation>
    </message>
    <message>
        <source>Last Error</source>
        <translation>Letzter Fehler</translation>
    </message>
    <message>
        <source>Waiting...</source>
        <translation>Wartet...</translation>
    </message>
    <message>
        <source>Host name:</source>
        <translation>Hostname:</translation>
    </message>
    <message>
        <source>Port:</source>
        <translation>Port:</translation>
    </message>
    <message>
        <source>Connect</source>
        <translation>Verbinden</translation>
    </message>
    <message>
        <source>Disconnect</source>
        <translation>Trennen</translation>
    </message>
    <message>
        <source>Pause</source>
        <translation>Anhalten</translation>
    </message>
    <message>
        <source>Resume</source>
        <translation>Fortsetzen</translation>
    </message>
    <message>
        <source>Abort</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Set Priority</source>
        <translation>Priorität setzen</translation>
    </message>
    <message>
        <source>Details...</source>
        <translation>Details...</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>Stoppen</translation>
    </message>
    <message>
        <source>Batches</source>
        <translation>Stapel</translation>
    </message>
</context>
<context>
    <name>TaskStatusWidget</name>
    <message>
        <source>%1/%2 completed</source>
        <translation>%1/%2 abgeschlossen</translation>
    </message>
    <message>
        <source>%1/%2 nodes active</source>
        <translation>%1/%2 Knoten aktiv</translation>
    </message>
    <message>
        <source>%1 failures</source>
        <translation>%1 Fehler</translation>
    </message>
    <message>
        <source>Waiting...</source>
        <translation>Wartet...</translation>
    </message>
    <message>
        <source>elapsed</source>
        <translation>vergangen</translation>
    </message>
    <message>
        <source>left</source>
        <translation>verbleibend</translation>
    </message>
    <message>
        <source>%1%</source>
        <comment>progress in percent</comment>
        <translation>%1 %</translation>
    </message>
</context>
<context>
    <name>Web</name>
    <message>
        <source>Views</source>
        <translation>Ansichten</translation>
    </message>
    <message>
        <source>Farm summary</source>
        <translation>Farmübersicht</translation>
    </message>
    <message>
        <source>data as of %1</source>
        <translation>Stand: %1</translation>
    </message>
    <message>
        <source>Disconnected from server since %1 — showing the last known state</source>
        <translation>Verbindung zum Server seit %1 getrennt – der letzte bekannte Stand wird angezeigt</translation>
    </message>
    <message>
        <source>Connected to the server again</source>
        <translation>Wieder mit dem Server verbunden</translation>
    </message>
    <message>
        <source>Signed in as %1 (%2)</source>
        <translation>Angemeldet als %1 (%2)</translation>
    </message>
    <message>
        <source>No sign-in (%1)</source>
        <translation>Ohne Anmeldung (%1)</translation>
    </message>
    <message>
        <source>viewer</source>
        <translation>Betrachter</translation>
    </message>
    <message>
        <source>operator</source>
        <translation>Operator</translation>
    </message>
    <message>
        <source>Language</source>
        <translation>Sprache</translation>
    </message>
    <message>
        <source>Filter</source>
        <translation>Filter</translation>
    </message>
    <message>
        <source>All statuses</source>
        <translation>Alle Status</translation>
    </message>
    <message>
        <source>Search</source>
        <translation>Suchen</translation>
    </message>
    <message>
        <source>Text in any column</source>
        <translation>Text in einer beliebigen Spalte</translation>
    </message>
    <message numerus="yes">
        <source>%n selected</source>
        <translation>
            <numerusform>%n ausgewählt</numerusform>
            <numerusform>%n ausgewählt</numerusform>
        </translation>
    </message>
    <message>
        <source>Clear selection</source>
        <translation>Auswahl aufheben</translation>
    </message>
    <message>
        <source>Actions</source>
        <translation>Aktionen</translation>
    </message>
    <message>
        <source>Actions for #%1</source>
        <translation>Aktionen für #%1</translation>
    </message>
    <message numerus="yes">
        <source>Pause %n batches: %1</source>
        <translation>
            <numerusform>%n Stapel anhalten: %1</numerusform>
            <numerusform>%n Stapel anhalten: %1</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Resume %n batches: %1</source>
        <translation>
            <numerusform>%n Stapel fortsetzen: %1</numerusform>
            <numerusform>%n Stapel fortsetzen: %1</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Abort %n batches: %1</source>
        <translation>
            <numerusform>%n Stapel abbrechen: %1</numerusform>
            <numerusform>%n Stapel abbrechen: %1</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Pause %n nodes: %1</source>
        <translation>
            <numerusform>%n Knoten anhalten: %1</numerusform>
            <numerusform>%n Knoten anhalten: %1</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Resume %n nodes: %1</source>
        <translation>
            <numerusform>%n Knoten fortsetzen: %1</numerusform>
            <numerusform>%n Knoten fortsetzen: %1</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Stop %n nodes: %1</source>
        <translation>
            <numerusform>%n Knoten stoppen: %1</numerusform>
            <numerusform>%n Knoten stoppen: %1</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Priority %1 for %n batches: %2</source>
        <translation>
            <numerusform>Priorität %1 für %n Stapel: %2</numerusform>
            <numerusform>Priorität %1 für %n Stapel: %2</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Priority %1 for %n nodes: %2</source>
        <translation>
            <numerusform>Priorität %1 für %n Knoten: %2</numerusform>
            <numerusform>Priorität %1 für %n Knoten: %2</numerusform>
        </translation>
    </message>
    <message>
        <source>Confirm</source>
        <translation>Bestätigen</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Zurück</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
    <message>
        <source>Accepted</source>
        <translation>Angenommen</translation>
    </message>
    <message>
        <source>Refused: %1</source>
        <translation>Abgelehnt: %1</translation>
    </message>
    <message>
        <source>No answer in time: %1</source>
        <translation>Keine Antwort in der erwarteten Zeit: %1</translation>
    </message>
    <message>
        <source>Server unreachable: %1</source>
        <translation>Server nicht erreichbar: %1</translation>
    </message>
    <message>
        <source>Not allowed: %1</source>
        <translation>Nicht erlaubt: %1</translation>
    </message>
    <message>
        <source>No batches</source>
        <translation>Keine Stapel</translation>
    </message>
    <message>
        <source>No nodes</source>
        <translation>Keine Knoten</translation>
    </message>
    <message>
        <source>No batch matches the filter</source>
        <translation>Kein Stapel entspricht dem Filter</translation>
    </message>
    <message>
        <source>No node matches the filter</source>
        <translation>Kein Knoten entspricht dem Filter</translation>
    </message>
    <message>
        <source>Batch #%1</source>
        <translation>Stapel #%1</translation>
    </message>
    <message>
        <source>Back to the batch list</source>
        <translation>Zurück zur Stapelliste</translation>
    </message>
    <message>
        <source>The farm has no batch #%1</source>
        <translation>Die Farm hat keinen Stapel #%1</translation>
    </message>
    <message>
        <source>Loading...</source>
        <translation>Wird geladen...</translation>
    </message>
    <message>
        <source>Shown: %1 of %2</source>
        <translation>Angezeigt: %1 von %2</translation>
    </message>
    <message>
        <source>Results</source>
        <translation>Ergebnisse</translation>
    </message>
    <message>
        <source>Sort by %1</source>
        <translation>Nach %1 sortieren</translation>
    </message>
    <message>
        <source>Select</source>
        <translation>Auswählen</translation>
    </message>
    <message>
        <source>Light</source>
        <translation>Hell</translation>
    </message>
    <message>
        <source>Dark</source>
        <translation>Dunkel</translation>
    </message>
    <message>
        <source>Theme</source>
        <translation>Farbschema</translation>
    </message>
    <message>
        <source>Reconnecting...</source>
        <translation>Verbindung wird wiederhergestellt...</translation>
    </message>
</context>
</TS>
