<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_CN" sourcelanguage="en_US">
<context>
    <name>MainWindow</name>
    <message>
        <source>BootloaderVersion:</source>
        <translation>Bootloader版本：</translation>
    </message>
    <message>
        <source>Browse Files in Card</source>
        <translation>浏览相机卡内文件</translation>
    </message>
    <message>
        <source>Date</source>
        <translation>日期</translation>
    </message>
    <message>
        <source>Delete All Files</source>
        <translation>删除卡内所有文件</translation>
    </message>
    <message>
        <source>Delete File</source>
        <translation>删除选中文件</translation>
    </message>
    <message>
        <source>Download File</source>
        <translation>下载选中文件</translation>
    </message>
    <message>
        <source>Download Progress:</source>
        <translation>下载进度：</translation>
    </message>
    <message>
        <source>Duration</source>
        <translation>时长</translation>
    </message>
    <message>
        <source>File Operate</source>
        <translation>文件操作</translation>
    </message>
    <message>
        <source>Format Card</source>
        <translation>格式化卡</translation>
    </message>
    <message>
        <source>HardwareType:</source>
        <translation>硬件类型：</translation>
    </message>
    <message>
        <source>HardwareVersion:</source>
        <translation>硬件版本：</translation>
    </message>
    <message>
        <source>Link Device</source>
        <translation>连接设备</translation>
    </message>
    <message>
        <source>Link Fail!</source>
        <translation>连接失败！</translation>
    </message>
    <message>
        <source>Link Success!</source>
        <translation>连接成功！</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>名称</translation>
    </message>
    <message>
        <source>ProtocolVersion:</source>
        <translation>协议版本：</translation>
    </message>
    <message>
        <source>Select All</source>
        <translation>全选</translation>
    </message>
    <message>
        <source>Size</source>
        <translation>大小</translation>
    </message>
    <message>
        <source>SoftwareVersion:</source>
        <translation>软件版本：</translation>
    </message>
    <message>
        <source>Version Information</source>
        <translation>版本信息</translation>
    </message>
    <message>
        <source>language:</source>
        <translation>语言：</translation>
    </message>
    <message>
        <source>MainWindow</source>
        <translation>口</translation>
    </message>
</context>
</TS>
