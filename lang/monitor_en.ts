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
    <name>BatchDetailsDialog</name>
    <message>
        <source>Batch Details</source>
        <translation>Batch Details</translation>
    </message>
    <message>
        <source>Project:</source>
        <translation>Project:</translation>
    </message>
    <message>
        <source>Last error:</source>
        <translation>Last error:</translation>
    </message>
    <message>
        <source>Tasks</source>
        <translation>Tasks</translation>
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
        <translation>Network failure</translation>
    </message>
    <message>
        <source>Can&apos;t connect to server</source>
        <translation>Can&apos;t connect to server</translation>
    </message>
    <message>
        <source>Disconnected from server</source>
        <translation>Disconnected from server</translation>
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
<context>
    <name>Monitor</name>
    <message>
        <source>Add Photos</source>
        <translation>Add Photos</translation>
    </message>
    <message>
        <source>Align Photos</source>
        <translation>Align Photos</translation>
    </message>
    <message>
        <source>Align Chunks</source>
        <translation>Align Chunks</translation>
    </message>
    <message>
        <source>Analyze Photos</source>
        <translation>Analyze Photos</translation>
    </message>
    <message>
        <source>Build Contours</source>
        <translation>Build Contours</translation>
    </message>
    <message>
        <source>Build DEM</source>
        <translation>Build DEM</translation>
    </message>
    <message>
        <source>Build Dense Cloud</source>
        <translation>Build Dense Cloud</translation>
    </message>
    <message>
        <source>Build Mesh</source>
        <translation>Build Mesh</translation>
    </message>
    <message>
        <source>Build Orthomosaic</source>
        <translation>Build Orthomosaic</translation>
    </message>
    <message>
        <source>Build Texture</source>
        <translation>Build Texture</translation>
    </message>
    <message>
        <source>Build Tiled Model</source>
        <translation>Build Tiled Model</translation>
    </message>
    <message>
        <source>Build UV</source>
        <translation>Build UV</translation>
    </message>
    <message>
        <source>Classify Ground Points</source>
        <translation>Classify Ground Points</translation>
    </message>
    <message>
        <source>Close Holes</source>
        <translation>Close Holes</translation>
    </message>
    <message>
        <source>Compact Dense Cloud</source>
        <translation>Compact Dense Cloud</translation>
    </message>
    <message>
        <source>Decimate Mesh</source>
        <translation>Decimate Mesh</translation>
    </message>
    <message>
        <source>Detect Markers</source>
        <translation>Detect Markers</translation>
    </message>
    <message>
        <source>Duplicate Chunk</source>
        <translation>Duplicate Chunk</translation>
    </message>
    <message>
        <source>Export Cameras</source>
        <translation>Export Cameras</translation>
    </message>
    <message>
        <source>Export Contours</source>
        <translation>Export Contours</translation>
    </message>
    <message>
        <source>Export DEM</source>
        <translation>Export DEM</translation>
    </message>
    <message>
        <source>Export Depth Map</source>
        <translation>Export Depth Map</translation>
    </message>
    <message>
        <source>Export Masks</source>
        <translation>Export Masks</translation>
    </message>
    <message>
        <source>Export Matches</source>
        <translation>Export Matches</translation>
    </message>
    <message>
        <source>Export Model</source>
        <translation>Export Model</translation>
    </message>
    <message>
        <source>Export Orthomosaic</source>
        <translation>Export Orthomosaic</translation>
    </message>
    <message>
        <source>Export Orthophotos</source>
        <translation>Export Orthophotos</translation>
    </message>
    <message>
        <source>Export Panorama</source>
        <translation>Export Panorama</translation>
    </message>
    <message>
        <source>Export Points</source>
        <translation>Export Points</translation>
    </message>
    <message>
        <source>Export Report</source>
        <translation>Export Report</translation>
    </message>
    <message>
        <source>Export Shapes</source>
        <translation>Export Shapes</translation>
    </message>
    <message>
        <source>Export Texture</source>
        <translation>Export Texture</translation>
    </message>
    <message>
        <source>Export Tiled Model</source>
        <translation>Export Tiled Model</translation>
    </message>
    <message>
        <source>Import Cameras</source>
        <translation>Import Cameras</translation>
    </message>
    <message>
        <source>Import Dem</source>
        <translation>Import Dem</translation>
    </message>
    <message>
        <source>Import Masks</source>
        <translation>Import Masks</translation>
    </message>
    <message>
        <source>Import Model</source>
        <translation>Import Model</translation>
    </message>
    <message>
        <source>Import Shapes</source>
        <translation>Import Shapes</translation>
    </message>
    <message>
        <source>Invert Masks</source>
        <translation>Invert Masks</translation>
    </message>
    <message>
        <source>Load Project</source>
        <translation>Load Project</translation>
    </message>
    <message>
        <source>Match Photos</source>
        <translation>Match Photos</translation>
    </message>
    <message>
        <source>Merge Chunks</source>
        <translation>Merge Chunks</translation>
    </message>
    <message>
        <source>Optimize Alignment</source>
        <translation>Optimize Alignment</translation>
    </message>
    <message>
        <source>Refine Markers</source>
        <translation>Refine Markers</translation>
    </message>
    <message>
        <source>Refine Points</source>
        <translation>Refine Points</translation>
    </message>
    <message>
        <source>Reset Masks</source>
        <translation>Reset Masks</translation>
    </message>
    <message>
        <source>Reset Orthomosaic</source>
        <translation>Reset Orthomosaic</translation>
    </message>
    <message>
        <source>Run Script</source>
        <translation>Run Script</translation>
    </message>
    <message>
        <source>Save Project</source>
        <translation>Save Project</translation>
    </message>
    <message>
        <source>Select Dense Points</source>
        <translation>Select Dense Points</translation>
    </message>
    <message>
        <source>Smooth Model</source>
        <translation>Smooth Model</translation>
    </message>
    <message>
        <source>Track Markers</source>
        <translation>Track Markers</translation>
    </message>
    <message>
        <source>Triangulate Points</source>
        <translation>Triangulate Points</translation>
    </message>
    <message>
        <source>Undistort Photos</source>
        <translation>Undistort Photos</translation>
    </message>
    <message>
        <source>Update Orthomosaic</source>
        <translation>Update Orthomosaic</translation>
    </message>
    <message>
        <source>Highest</source>
        <translation>Highest</translation>
    </message>
    <message>
        <source>High</source>
        <translation>High</translation>
    </message>
    <message>
        <source>Normal</source>
        <translation>Normal</translation>
    </message>
    <message>
        <source>Low</source>
        <translation>Low</translation>
    </message>
    <message>
        <source>Lowest</source>
        <translation>Lowest</translation>
    </message>
    <message>
        <source>#</source>
        <translation>#</translation>
    </message>
    <message>
        <source>Project</source>
        <translation>Project</translation>
    </message>
    <message>
        <source>Started</source>
        <translation>Started</translation>
    </message>
    <message>
        <source>Status</source>
        <translation>Status</translation>
    </message>
    <message>
        <source>Priority</source>
        <translation>Priority</translation>
    </message>
    <message>
        <source>Current Task</source>
        <translation>Current Task</translation>
    </message>
    <message>
        <source>Elapsed / Left</source>
        <translation>Elapsed / Left</translation>
    </message>
    <message>
        <source>Failures</source>
        <translation>Failures</translation>
    </message>
    <message>
        <source>Nodes</source>
        <translation>Nodes</translation>
    </message>
    <message>
        <source>Host</source>
        <translation>Host</translation>
    </message>
    <message>
        <source>Batch #</source>
        <translation>Batch #</translation>
    </message>
    <message>
        <source>Progress</source>
        <translation>Progress</translation>
    </message>
    <message>
        <source>Last Error</source>
        <translation>Last Error</translation>
    </message>
    <message>
        <source>Waiting...</source>
        <translation>Waiting...</translation>
    </message>
    <message>
        <source>Host name:</source>
        <translation>Host name:</translation>
    </message>
    <message>
        <source>Port:</source>
        <translation>Port:</translation>
    </message>
    <message>
        <source>Connect</source>
        <translation>Connect</translation>
    </message>
    <message>
        <source>Disconnect</source>
        <translation>Disconnect</translation>
    </message>
    <message>
        <source>Pause</source>
        <translation>Pause</translation>
    </message>
    <message>
        <source>Resume</source>
        <translation>Resume</translation>
    </message>
    <message>
        <source>Abort</source>
        <translation>Abort</translation>
    </message>
    <message>
        <source>Set Priority</source>
        <translation>Set Priority</translation>
    </message>
    <message>
        <source>Details...</source>
        <translation>Details...</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>Stop</translation>
    </message>
    <message>
        <source>Batches</source>
        <translation>Batches</translation>
    </message>
</context>
<context>
    <name>TaskStatusWidget</name>
    <message>
        <source>%1/%2 completed</source>
        <translation>%1/%2 completed</translation>
    </message>
    <message>
        <source>%1/%2 nodes active</source>
        <translation>%1/%2 nodes active</translation>
    </message>
    <message>
        <source>%1 failures</source>
        <translation>%1 failures</translation>
    </message>
    <message>
        <source>Waiting...</source>
        <translation>Waiting...</translation>
    </message>
    <message>
        <source>elapsed</source>
        <translation>elapsed</translation>
    </message>
    <message>
        <source>left</source>
        <translation>left</translation>
    </message>
    <message>
        <source>%1%</source>
        <comment>progress in percent</comment>
        <translation>%1%</translation>
    </message>
</context>
<context>
    <name>Web</name>
    <message>
        <source>Views</source>
        <translation>Views</translation>
    </message>
    <message>
        <source>Farm summary</source>
        <translation>Farm summary</translation>
    </message>
    <message>
        <source>data as of %1</source>
        <translation>data as of %1</translation>
    </message>
    <message>
        <source>Disconnected from server since %1 — showing the last known state</source>
        <translation>Disconnected from server since %1 — showing the last known state</translation>
    </message>
    <message>
        <source>Connected to the server again</source>
        <translation>Connected to the server again</translation>
    </message>
    <message>
        <source>Signed in as %1 (%2)</source>
        <translation>Signed in as %1 (%2)</translation>
    </message>
    <message>
        <source>No sign-in (%1)</source>
        <translation>No sign-in (%1)</translation>
    </message>
    <message>
        <source>viewer</source>
        <translation>viewer</translation>
    </message>
    <message>
        <source>operator</source>
        <translation>operator</translation>
    </message>
    <message>
        <source>Language</source>
        <translation>Language</translation>
    </message>
    <message>
        <source>Filter</source>
        <translation>Filter</translation>
    </message>
    <message>
        <source>All statuses</source>
        <translation>All statuses</translation>
    </message>
    <message>
        <source>Search</source>
        <translation>Search</translation>
    </message>
    <message>
        <source>Text in any column</source>
        <translation>Text in any column</translation>
    </message>
    <message numerus="yes">
        <source>%n selected</source>
        <translation>
            <numerusform>%n selected</numerusform>
            <numerusform>%n selected</numerusform>
        </translation>
    </message>
    <message>
        <source>Clear selection</source>
        <translation>Clear selection</translation>
    </message>
    <message>
        <source>Actions</source>
        <translation>Actions</translation>
    </message>
    <message>
        <source>Actions for #%1</source>
        <translation>Actions for #%1</translation>
    </message>
    <message numerus="yes">
        <source>Pause %n batches: %1</source>
        <translation>
            <numerusform>Pause %n batch: %1</numerusform>
            <numerusform>Pause %n batches: %1</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Resume %n batches: %1</source>
        <translation>
            <numerusform>Resume %n batch: %1</numerusform>
            <numerusform>Resume %n batches: %1</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Abort %n batches: %1</source>
        <translation>
            <numerusform>Abort %n batch: %1</numerusform>
            <numerusform>Abort %n batches: %1</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Pause %n nodes: %1</source>
        <translation>
            <numerusform>Pause %n node: %1</numerusform>
            <numerusform>Pause %n nodes: %1</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Resume %n nodes: %1</source>
        <translation>
            <numerusform>Resume %n node: %1</numerusform>
            <numerusform>Resume %n nodes: %1</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Stop %n nodes: %1</source>
        <translation>
            <numerusform>Stop %n node: %1</numerusform>
            <numerusform>Stop %n nodes: %1</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Priority %1 for %n batches: %2</source>
        <translation>
            <numerusform>Priority %1 for %n batch: %2</numerusform>
            <numerusform>Priority %1 for %n batches: %2</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Priority %1 for %n nodes: %2</source>
        <translation>
            <numerusform>Priority %1 for %n node: %2</numerusform>
            <numerusform>Priority %1 for %n nodes: %2</numerusform>
        </translation>
    </message>
    <message>
        <source>Confirm</source>
        <translation>Confirm</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Cancel</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Close</translation>
    </message>
    <message>
        <source>Accepted</source>
        <translation>Accepted</translation>
    </message>
    <message>
        <source>Refused: %1</source>
        <translation>Refused: %1</translation>
    </message>
    <message>
        <source>No answer in time: %1</source>
        <translation>No answer in time: %1</translation>
    </message>
    <message>
        <source>Server unreachable: %1</source>
        <translation>Server unreachable: %1</translation>
    </message>
    <message>
        <source>Not allowed: %1</source>
        <translation>Not allowed: %1</translation>
    </message>
    <message>
        <source>No batches</source>
        <translation>No batches</translation>
    </message>
    <message>
        <source>No nodes</source>
        <translation>No nodes</translation>
    </message>
    <message>
        <source>No batch matches the filter</source>
        <translation>No batch matches the filter</translation>
    </message>
    <message>
        <source>No node matches the filter</source>
        <translation>No node matches the filter</translation>
    </message>
    <message>
        <source>Batch #%1</source>
        <translation>Batch #%1</translation>
    </message>
    <message>
        <source>Back to the batch list</source>
        <translation>Back to the batch list</translation>
    </message>
    <message>
        <source>The farm has no batch #%1</source>
        <translation>The farm has no batch #%1</translation>
    </message>
    <message>
        <source>Loading...</source>
        <translation>Loading...</translation>
    </message>
    <message>
        <source>Shown: %1 of %2</source>
        <translation>Shown: %1 of %2</translation>
    </message>
    <message>
        <source>Results</source>
        <translation>Results</translation>
    </message>
    <message>
        <source>Sort by %1</source>
        <translation>Sort by %1</translation>
    </message>
    <message>
        <source>Select</source>
        <translation>Select</translation>
    </message>
    <message>
        <source>Light</source>
        <translation>Light</translation>
    </message>
    <message>
        <source>Dark</source>
        <translation>Dark</translation>
    </message>
    <message>
        <source>Theme</source>
        <translation>Theme</translation>
    </message>
    <message>
        <source>Reconnecting...</source>
        <translation>Reconnecting...</translation>
    </message>
</context>
</TS>
