<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_CN">
<context>
    <name>ConnectACPower</name>
    <message>
        <source>Upgrade file found. Connect AC power to initiate upgrade.

Note: Do not unplug AC power until the upgrade is complete.</source>
        <translation>已找到升级文件。请连接交流电源以开始升级。

注意：升级完成前，请勿断开交流电源。</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
</context>
<context>
    <name>KCMain</name>
    <message>
        <source>Upgrade UI</source>
        <translation>升级界面</translation>
    </message>
</context>
<context>
    <name>KCProgressBar</name>
    <message>
        <source>Progress: %1%</source>
        <translation>进度：%1%</translation>
    </message>
</context>
<context>
    <name>NextBootSafe</name>
    <message>
        <source>An error has occurred during upgrade and the printer needs to reboot in recovery mode.</source>
        <translation>升级过程中发生错误，打印机需要重启并进入恢复模式。</translation>
    </message>
    <message>
        <source>Reboot Now</source>
        <translation>立即重启</translation>
    </message>
</context>
<context>
    <name>PopupCloseButton</name>
    <message>
        <source>Close</source>
        <translation>关闭</translation>
    </message>
</context>
<context>
    <name>PopupIcon</name>
    <message>
        <source>Alert</source>
        <translation>警告</translation>
    </message>
    <message>
        <source>Question</source>
        <translation>询问</translation>
    </message>
    <message>
        <source>In progress</source>
        <translation>进行中</translation>
    </message>
    <message>
        <source>Success</source>
        <translation>成功</translation>
    </message>
    <message>
        <source>Error</source>
        <translation>错误</translation>
    </message>
</context>
<context>
    <name>SystemIntegrityFailed</name>
    <message>
        <source>Printer unable to boot due to corrupted system files. Please insert a USB flash drive with valid upgrade file to start repair.</source>
        <translation>系统文件已损坏，打印机无法启动。请插入带有有效升级文件的 U 盘以开始修复。</translation>
    </message>
    <message>
        <source>Repair</source>
        <translation>修复</translation>
    </message>
</context>
<context>
    <name>UpgradeCompleted</name>
    <message>
        <source>Upgrade to Version %1 is successful!</source>
        <translation>已成功升级到版本 %1！</translation>
    </message>
    <message>
        <source>Printer will reboot in %1 seconds...</source>
        <translation>打印机将在 %1 秒后重启…</translation>
    </message>
    <message>
        <source>Reboot Now</source>
        <translation>立即重启</translation>
    </message>
</context>
<context>
    <name>UpgradeCompletedNoReboot</name>
    <message>
        <source>Upgrade Complete.</source>
        <translation>升级完成。</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>确定</translation>
    </message>
</context>
<context>
    <name>UpgradeFailed</name>
    <message>
        <source>An error has occurred during upgrade. Re-insert USB flash drive to try again.</source>
        <translation>升级过程中发生错误。请重新插入 U 盘后重试。</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>确定</translation>
    </message>
</context>
<context>
    <name>UpgradeFileCorrupted</name>
    <message>
        <source>Upgrade file may be corrupted. Please check that you have a valid upgrade file or try downloading the file again. Re-insert USB flash drive to try again.</source>
        <translation>升级文件可能已损坏。请检查升级文件是否有效，或重新下载该文件。请重新插入 U 盘后重试。</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>确定</translation>
    </message>
</context>
<context>
    <name>UpgradeFileFound</name>
    <message>
        <source>Upgrade file found. Upgrade now?

Note: All current and queued print jobs will be cancelled once upgrade starts. This may take a few minutes. Please do not power off your printer.</source>
        <translation>已找到升级文件。现在升级吗？

注意：升级开始后，所有正在打印和排队的打印作业都将被取消。升级可能需要几分钟，请勿关闭打印机电源。</translation>
    </message>
    <message>
        <source>Remove USB drive after the upgrade completes.</source>
        <translation>升级完成后请拔出 U 盘。</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
    <message>
        <source>Upgrade</source>
        <translation>升级</translation>
    </message>
</context>
<context>
    <name>UpgradeFileIncompatible</name>
    <message>
        <source>Upgrade file is not compatible with device. Please check that you have a newer version and the correct region. Re-insert USB flash drive to try again.</source>
        <translation>升级文件与设备不兼容。请确认文件版本更新且区域正确。请重新插入 U 盘后重试。</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>确定</translation>
    </message>
</context>
<context>
    <name>UpgradeFileNotFound</name>
    <message>
        <source>Unable to find upgrade file. Please check that a USB flash drive with valid upgrade file is inserted and try again.</source>
        <translation>找不到升级文件。请检查是否已插入带有有效升级文件的 U 盘，然后重试。</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>确定</translation>
    </message>
</context>
<context>
    <name>UpgradeInProgress</name>
    <message>
        <source>Upgrade Progress: %1%</source>
        <translation>升级进度：%1%</translation>
    </message>
    <message>
        <source>Note: This may take a few minutes. Please do not power off your printer.</source>
        <translation>注意：升级可能需要几分钟，请勿关闭打印机电源。</translation>
    </message>
</context>
<context>
    <name>main</name>
    <message>
        <source>Initiating the software upgrade...</source>
        <translation>正在启动软件升级…</translation>
    </message>
    <message>
        <source>Preparing for the software upgrade...</source>
        <translation>正在准备软件升级…</translation>
    </message>
    <message>
        <source>Copying the package...</source>
        <translation>正在复制升级包…</translation>
    </message>
    <message>
        <source>Validating the package...</source>
        <translation>正在校验升级包…</translation>
    </message>
    <message>
        <source>Validating the configuration...</source>
        <translation>正在校验配置…</translation>
    </message>
    <message>
        <source>Backingup the current version...</source>
        <translation>正在备份当前版本…</translation>
    </message>
    <message>
        <source>Ending other applications...</source>
        <translation>正在结束其他应用程序…</translation>
    </message>
    <message>
        <source>Extracting the package...</source>
        <translation>正在解压升级包…</translation>
    </message>
    <message>
        <source>Verifying software upgrade...</source>
        <translation>正在验证软件升级…</translation>
    </message>
    <message>
        <source>Executing post upgrade activities...</source>
        <translation>正在执行升级后的操作…</translation>
    </message>
    <message>
        <source>Upgrade Available</source>
        <translation>有可用升级</translation>
    </message>
    <message>
        <source>Upgrade</source>
        <translation>升级</translation>
    </message>
    <message>
        <source>Upgrade Failed</source>
        <translation>升级失败</translation>
    </message>
    <message>
        <source>No Upgrade File Found</source>
        <translation>未找到升级文件</translation>
    </message>
    <message>
        <source>Incompatible Upgrade File</source>
        <translation>升级文件不兼容</translation>
    </message>
    <message>
        <source>Error Occurred</source>
        <translation>发生错误</translation>
    </message>
</context>
</TS>
