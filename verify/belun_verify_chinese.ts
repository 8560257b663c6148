<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_CN" sourcelanguage="en_US">
<context>
    <name>verify</name>
    <message>
        <source>1 byte</source>
        <translation>1 字节</translation>
    </message>
    <message>
        <source>%1 bytes</source>
        <translation>%1 字节</translation>
    </message>
    <message>
        <source>entry %1 of the list</source>
        <translation>列表第 %1 项</translation>
    </message>
    <message>
        <source>%1: same size (%2)</source>
        <translation>%1：大小相同（%2）</translation>
    </message>
    <message>
        <source>%1: the same, byte for byte (%2)</source>
        <translation>%1：逐字节相同（%2）</translation>
    </message>
    <message>
        <source>%1: same size, but the contents differ from byte %2 onwards</source>
        <translation>%1：大小相同，但从第 %2 字节起内容不同</translation>
    </message>
    <message>
        <source>%1: shorter by %2: the download was cut</source>
        <translation>%1：少 %2：下载中断，文件不完整</translation>
    </message>
    <message>
        <source>%1: longer by %2: the tail of an older file</source>
        <translation>%1：多 %2：末尾残留旧文件的内容</translation>
    </message>
    <message>
        <source>%1: not on this computer (%2)</source>
        <translation>%1：本机没有（%2）</translation>
    </message>
    <message>
        <source>%1: not on the card</source>
        <translation>%1：卡内没有</translation>
    </message>
    <message>
        <source>%1: neither on the card nor on this computer</source>
        <translation>%1：卡内和本机都没有</translation>
    </message>
    <message>
        <source>%1: cannot be compared: %2</source>
        <translation>%1：无法比对：%2</translation>
    </message>
    <message>
        <source>no details: %1</source>
        <translation>未取得文件信息：%1</translation>
    </message>
    <message>
        <source>no content: %1</source>
        <translation>未取得文件内容：%1</translation>
    </message>
    <message>
        <source>the camera sends %1, and its details say %2</source>
        <translation>相机发送 %1，而文件信息为 %2</translation>
    </message>
    <message>
        <source>the card&apos;s list has this name more than once</source>
        <translation>卡内列表中有重复的名称</translation>
    </message>
    <message>
        <source>it has no name</source>
        <translation>没有名称</translation>
    </message>
    <message>
        <source>the window cannot download a recording of this name</source>
        <translation>下载窗口无法下载此名称的录像</translation>
    </message>
    <message>
        <source>it has 2 GiB or more, which the window cannot download (%1)</source>
        <translation>文件达到或超过 2 GiB，下载窗口无法下载（%1）</translation>
    </message>
    <message>
        <source>a link has this name on this computer</source>
        <translation>本机的同名项是链接</translation>
    </message>
    <message>
        <source>a folder has this name on this computer</source>
        <translation>本机的同名项是文件夹</translation>
    </message>
    <message>
        <source>what has this name on this computer is not a file</source>
        <translation>本机的同名项不是普通文件</translation>
    </message>
    <message>
        <source>no file on this computer can have this name</source>
        <translation>本机无法使用此文件名</translation>
    </message>
    <message>
        <source>the file on this computer cannot be read: %1</source>
        <translation>本机文件无法读取：%1</translation>
    </message>
    <message>
        <source>the file on this computer was changed meanwhile</source>
        <translation>比对期间本机文件被改动</translation>
    </message>
    <message>
        <source>there is no route to the camera at %1 (%2)</source>
        <translation>没有通往相机 %1 的网络路由（%2）</translation>
    </message>
    <message>
        <source>the camera at %1 refuses the connection</source>
        <translation>相机 %1 拒绝连接</translation>
    </message>
    <message>
        <source>the camera at %1 did not answer within %2 s</source>
        <translation>相机 %1 在 %2 秒内没有响应</translation>
    </message>
    <message>
        <source>the camera sent nothing for %1 s</source>
        <translation>相机连续 %1 秒没有发送数据</translation>
    </message>
    <message>
        <source>the camera&apos;s answer took more than %1 s</source>
        <translation>相机的应答超过 %1 秒仍未结束</translation>
    </message>
    <message>
        <source>the camera closed the connection before its answer was complete</source>
        <translation>应答尚未完整，相机就关闭了连接</translation>
    </message>
    <message>
        <source>the camera answered with status %1</source>
        <translation>相机返回状态 %1</translation>
    </message>
    <message>
        <source>the camera&apos;s answer is too long</source>
        <translation>相机的应答过长</translation>
    </message>
    <message>
        <source>the camera&apos;s answer was not understood</source>
        <translation>无法识别相机的应答</translation>
    </message>
    <message>
        <source>The folder %1 cannot be read: %2.</source>
        <translation>无法读取文件夹 %1：%2。</translation>
    </message>
    <message>
        <source>The recordings cannot be counted: %1.</source>
        <translation>无法取得录像数量：%1。</translation>
    </message>
    <message>
        <source>The recordings cannot be listed: %1.</source>
        <translation>无法取得录像列表：%1。</translation>
    </message>
    <message>
        <source>No details of %1: %2.</source>
        <translation>未取得 %1 的文件信息：%2。</translation>
    </message>
    <message>
        <source>No content of %1: %2.</source>
        <translation>未取得 %1 的内容：%2。</translation>
    </message>
    <message>
        <source>There is no option %1.</source>
        <translation>没有选项 %1。</translation>
    </message>
    <message>
        <source>The option %1 needs a value.</source>
        <translation>选项 %1 需要一个值。</translation>
    </message>
    <message>
        <source>The option %1 takes no value.</source>
        <translation>选项 %1 不带值。</translation>
    </message>
    <message>
        <source>--timeout takes whole seconds from 1 to %1, not %2.</source>
        <translation>--timeout 的值须为 1 到 %1 的整数秒，不能是 %2。</translation>
    </message>
    <message>
        <source>%1 See belun-verify --help.</source>
        <translation>%1请参阅 belun-verify --help。</translation>
    </message>
    <message>
        <source>%1 is no folder. See belun-verify --help.</source>
        <translation>%1 不是文件夹。请参阅 belun-verify --help。</translation>
    </message>
    <message>
        <source>The report cannot be written: %1.</source>
        <translation>无法输出结果：%1。</translation>
    </message>
    <message>
        <source>Interrupted. Do not delete yet.</source>
        <translation>已中断。请先不要删除。</translation>
    </message>
    <message>
        <source>Press Enter to close.</source>
        <translation>按回车键关闭。</translation>
    </message>
    <message>
        <source>Usage: belun-verify [OPTION...] [NAME...]

Compares the recordings on the camera&apos;s card with those in the folder DCIM on the
desktop, and says whether the card may be deleted. Changes nothing on either side.
With NAMEs it compares only these recordings.

  --content          compare every byte, not only sizes: reads the whole card
  --json             print a JSON object for each recording and for the summary
  --timeout SECONDS  give up when the camera is silent for so long (%1)
  --desktop DIR      look for DCIM in this folder
  --wait             wait for Enter at the end
  --help, --version

Status: 0 every recording of the card is on this computer and the same, as far as
it was compared; 1 it is not; 2 it could not be found out; 64 wrong options;
130 interrupted.</source>
        <translation>用法：belun-verify [选项...] [名称...]

将相机卡内的录像与桌面 DCIM 文件夹中的录像进行比对，告诉您卡内的录像能否删除。
两边的内容都不会被改动。指定名称时，只比对这些录像。

  --content      不只比较大小，还逐字节比对内容：需读取整张卡
  --json         每个录像和最后的总结各输出一个 JSON 对象
  --timeout 秒   相机超过这么久没有数据就放弃（%1）
  --desktop 目录 在此目录下查找 DCIM
  --wait         结束时等待按回车键
  --help, --version

退出状态：0 卡内每个录像都在本机，且在所比对的范围内相同；1 并非如此；
2 无法得知；64 选项有误；130 被中断。</translation>
    </message>
    <message>
        <source>The named recording is on this computer, the same, byte for byte.</source>
        <translation>指定的录像已在本机，逐字节相同。</translation>
    </message>
    <message>
        <source>All %1 named recordings are on this computer, the same, byte for byte.</source>
        <translation>指定的 %1 个录像均已在本机，逐字节相同。</translation>
    </message>
    <message>
        <source>The only recording of the card is on this computer, the same, byte for byte.</source>
        <translation>卡内唯一的录像已在本机，逐字节相同。</translation>
    </message>
    <message>
        <source>All %1 recordings of the card are on this computer, the same, byte for byte.</source>
        <translation>卡内全部 %1 个录像均已在本机，逐字节相同。</translation>
    </message>
    <message>
        <source>The named recording is on this computer with the same size. Sizes only; --content compares every byte.</source>
        <translation>指定的录像已在本机，大小相同。仅比较了大小；--content 可逐字节比对。</translation>
    </message>
    <message>
        <source>All %1 named recordings are on this computer with the same size. Sizes only; --content compares every byte.</source>
        <translation>指定的 %1 个录像均已在本机，大小相同。仅比较了大小；--content 可逐字节比对。</translation>
    </message>
    <message>
        <source>The only recording of the card is on this computer with the same size. Sizes only; --content compares every byte.</source>
        <translation>卡内唯一的录像已在本机，大小相同。仅比较了大小；--content 可逐字节比对。</translation>
    </message>
    <message>
        <source>All %1 recordings of the card are on this computer with the same size. Sizes only; --content compares every byte.</source>
        <translation>卡内全部 %1 个录像均已在本机，大小相同。仅比较了大小；--content 可逐字节比对。</translation>
    </message>
    <message>
        <source>the comparison could not be completed</source>
        <translation>比对未能完成</translation>
    </message>
    <message>
        <source>the camera&apos;s count (%1) and its list (%2) disagree</source>
        <translation>相机报告的录像数量（%1）与列表中的数量（%2）不一致</translation>
    </message>
    <message>
        <source>the card changed meanwhile, so compare again</source>
        <translation>比对期间卡内容发生了变化，请重新比对</translation>
    </message>
    <message>
        <source>The window lists only the first %1 recordings of a card.</source>
        <translation>下载窗口只列出卡内的前 %1 个录像。</translation>
    </message>
    <message>
        <source>, </source>
        <comment>between names</comment>
        <translation>、</translation>
    </message>
    <message>
        <source>Missing here: %1 bytes.</source>
        <translation>本机还缺 %1 字节。</translation>
    </message>
    <message>
        <source>Missing here: %1 bytes; free in %2: only %3 bytes. Make room first.</source>
        <translation>本机还缺 %1 字节，而 %2 只剩 %3 字节可用。请先腾出空间。</translation>
    </message>
    <message>
        <source>Missing here: %1 bytes; free in %2: %3 bytes.</source>
        <translation>本机还缺 %1 字节，%2 有 %3 字节可用。</translation>
    </message>
    <message>
        <source>The card holds no recordings.</source>
        <translation>卡内没有录像。</translation>
    </message>
    <message>
        <source>not known to be safe (%1 of %2): %3</source>
        <translation>以下录像尚不能确认安全（%2 个中的 %1 个）：%3</translation>
    </message>
    <message>
        <source>Do not delete yet: %1.</source>
        <translation>请先不要删除：%1。</translation>
    </message>
    <message>
        <source>; </source>
        <translation>；</translation>
    </message>
    <message>
        <source>%1 %2</source>
        <comment>two sentences</comment>
        <translation>%1%2</translation>
    </message>
    <message>
        <source>Counting the recordings</source>
        <translation>正在读取录像数量</translation>
    </message>
    <message>
        <source>Listing the recordings</source>
        <translation>正在读取录像列表</translation>
    </message>
    <message>
        <source>Size of %1/%2</source>
        <translation>正在读取大小 %1/%2</translation>
    </message>
    <message>
        <source>%1 %2: %3 %</source>
        <translation>%1 %2：%3 %</translation>
    </message>
    <message>
        <source>%1 %2: %3 %, %4 MB/s, %5 left</source>
        <translation>%1 %2：%3 %，%4 MB/s，剩余 %5</translation>
    </message>
    <message>
        <source>the camera sent more than it announced</source>
        <translation>相机发送的数据多于其声明的长度</translation>
    </message>
</context>
</TS>
