<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en_US" sourcelanguage="en_US">
<context>
    <name>MainWindow</name>
    <message>
        <source>BootloaderVersion:</source>
        <translation>BootloaderVersion:</translation>
    </message>
    <message>
        <source>Browse Files in Card</source>
        <translation>Browse Files in Card</translation>
    </message>
    <message>
        <source>Date</source>
        <translation>Date</translation>
    </message>
    <message>
        <source>Delete All Files</source>
        <translation>Delete All Files</translation>
    </message>
    <message>
        <source>Delete File</source>
        <translation>Delete File</translation>
    </message>
    <message>
        <source>Download File</source>
        <translation>Download File</translation>
    </message>
    <message>
        <source>Download Progress:</source>
        <translation>Download Progress:</translation>
    </message>
    <message>
        <source>Duration</source>
        <translation>Duration</translation>
    </message>
    <message>
        <source>File Operate</source>
        <translation>File Operate</translation>
    </message>
    <message>
        <source>Format Card</source>
        <translation>Format Card</translation>
    </message>
    <message>
        <source>HardwareType:</source>
        <translation>HardwareType:</translation>
    </message>
    <message>
        <source>HardwareVersion:</source>
        <translation>HardwareVersion:</translation>
    </message>
    <message>
        <source>Link Device</source>
        <translation>Link Device</translation>
    </message>
    <message>
        <source>Link Fail!</source>
        <translation>Link Fail!</translation>
    </message>
    <message>
        <source>Link Success!</source>
        <translation>Link Success!</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>ProtocolVersion:</source>
        <translation>ProtocolVersion:</translation>
    </message>
    <message>
        <source>Select All</source>
        <translation>Select All</translation>
    </message>
    <message>
        <source>Size</source>
        <translation>Size</translation>
    </message>
    <message>
        <source>SoftwareVersion:</source>
        <translation>SoftwareVersion:</translation>
    </message>
    <message>
        <source>Version Information</source>
        <translation>Version Information</translation>
    </message>
    <message>
        <source>language:</source>
        <translation>language:</translation>
    </message>
</context>
</TS>
