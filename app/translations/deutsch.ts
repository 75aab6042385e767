<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE">
<context>
    <name>ConnectACPower</name>
    <message>
        <source>Upgrade file found. Connect AC power to initiate upgrade.

Note: Do not unplug AC power until the upgrade is complete.</source>
        <translation>Update-Datei gefunden. Schließen Sie das Netzteil an, um das Update zu starten.

Hinweis: Trennen Sie das Netzteil erst, wenn das Update abgeschlossen ist.</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
</context>
<context>
    <name>KCMain</name>
    <message>
        <source>Upgrade UI</source>
        <translation>Update-Oberfläche</translation>
    </message>
</context>
<context>
    <name>KCProgressBar</name>
    <message>
        <source>Progress: %1%</source>
        <translation>Fortschritt: %1&#xa0;%</translation>
    </message>
</context>
<context>
    <name>NextBootSafe</name>
    <message>
        <source>An error has occurred during upgrade and the printer needs to reboot in recovery mode.</source>
        <translation>Beim Update ist ein Fehler aufgetreten. Der Drucker muss im Wiederherstellungsmodus neu gestartet werden.</translation>
    </message>
    <message>
        <source>Reboot Now</source>
        <translation>Neu starten</translation>
    </message>
</context>
<context>
    <name>PopupCloseButton</name>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
</context>
<context>
    <name>PopupIcon</name>
    <message>
        <source>Alert</source>
        <translation>Warnung</translation>
    </message>
    <message>
        <source>Question</source>
        <translation>Frage</translation>
    </message>
    <message>
        <source>In progress</source>
        <translation>Läuft</translation>
    </message>
    <message>
        <source>Success</source>
        <translation>Erfolg</translation>
    </message>
    <message>
        <source>Error</source>
        <translation>Fehler</translation>
    </message>
</context>
<context>
    <name>SystemIntegrityFailed</name>
    <message>
        <source>Printer unable to boot due to corrupted system files. Please insert a USB flash drive with valid upgrade file to start repair.</source>
        <translation>Der Drucker kann wegen beschädigter Systemdateien nicht starten. Stecken Sie einen USB-Stick mit einer gültigen Update-Datei ein, um die Reparatur zu starten.</translation>
    </message>
    <message>
        <source>Repair</source>
        <translation>Reparieren</translation>
    </message>
</context>
<context>
    <name>UpgradeCompleted</name>
    <message>
        <source>Upgrade to Version %1 is successful!</source>
        <translation>Update auf Version %1 erfolgreich!</translation>
    </message>
    <message>
        <source>Printer will reboot in %1 seconds...</source>
        <translation>Der Drucker startet in %1&#xa0;s neu&#xa0;…</translation>
    </message>
    <message>
        <source>Reboot Now</source>
        <translation>Neu starten</translation>
    </message>
</context>
<context>
    <name>UpgradeCompletedNoReboot</name>
    <message>
        <source>Upgrade Complete.</source>
        <translation>Update abgeschlossen.</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
</context>
<context>
    <name>UpgradeFailed</name>
    <message>
        <source>An error has occurred during upgrade. Re-insert USB flash drive to try again.</source>
        <translation>Beim Update ist ein Fehler aufgetreten. Stecken Sie den USB-Stick erneut ein, um es noch einmal zu versuchen.</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
</context>
<context>
    <name>UpgradeFileCorrupted</name>
    <message>
        <source>Upgrade file may be corrupted. Please check that you have a valid upgrade file or try downloading the file again. Re-insert USB flash drive to try again.</source>
        <translation>Die Update-Datei ist möglicherweise beschädigt. Prüfen Sie, ob die Datei gültig ist, oder laden Sie sie noch einmal herunter. Stecken Sie den USB-Stick erneut ein, um es noch einmal zu versuchen.</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
</context>
<context>
    <name>UpgradeFileFound</name>
    <message>
        <source>Upgrade file found. Upgrade now?

Note: All current and queued print jobs will be cancelled once upgrade starts. This may take a few minutes. Please do not power off your printer.</source>
        <translation>Update-Datei gefunden. Jetzt aktualisieren?

Hinweis: Beim Start des Updates werden alle laufenden und wartenden Druckaufträge abgebrochen. Das Update kann einige Minuten dauern. Schalten Sie den Drucker nicht aus.</translation>
    </message>
    <message>
        <source>Remove USB drive after the upgrade completes.</source>
        <translation>Ziehen Sie den USB-Stick nach dem Update ab.</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Upgrade</source>
        <translation>Aktualisieren</translation>
    </message>
</context>
<context>
    <name>UpgradeFileIncompatible</name>
    <message>
        <source>Upgrade file is not compatible with device. Please check that you have a newer version and the correct region. Re-insert USB flash drive to try again.</source>
        <translation>Die Update-Datei passt nicht zu diesem Gerät. Prüfen Sie, ob die Version neuer ist und die Region stimmt. Stecken Sie den USB-Stick erneut ein, um es noch einmal zu versuchen.</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
</context>
<context>
    <name>UpgradeFileNotFound</name>
    <message>
        <source>Unable to find upgrade file. Please check that a USB flash drive with valid upgrade file is inserted and try again.</source>
        <translation>Keine Update-Datei gefunden. Prüfen Sie, ob ein USB-Stick mit einer gültigen Update-Datei eingesteckt ist, und versuchen Sie es noch einmal.</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
</context>
<context>
    <name>UpgradeInProgress</name>
    <message>
        <source>Upgrade Progress: %1%</source>
        <translation>Fortschritt des Updates: %1&#xa0;%</translation>
    </message>
    <message>
        <source>Note: This may take a few minutes. Please do not power off your printer.</source>
        <translation>Hinweis: Dies kann einige Minuten dauern. Schalten Sie den Drucker nicht aus.</translation>
    </message>
</context>
<context>
    <name>main</name>
    <message>
        <source>Initiating the software upgrade...</source>
        <translation>Software-Update wird gestartet&#xa0;…</translation>
    </message>
    <message>
        <source>Preparing for the software upgrade...</source>
        <translation>Software-Update wird vorbereitet&#xa0;…</translation>
    </message>
    <message>
        <source>Copying the package...</source>
        <translation>Paket wird kopiert&#xa0;…</translation>
    </message>
    <message>
        <source>Validating the package...</source>
        <translation>Paket wird geprüft&#xa0;…</translation>
    </message>
    <message>
        <source>Validating the configuration...</source>
        <translation>Konfiguration wird geprüft&#xa0;…</translation>
    </message>
    <message>
        <source>Backingup the current version...</source>
        <translation>Aktuelle Version wird gesichert&#xa0;…</translation>
    </message>
    <message>
        <source>Ending other applications...</source>
        <translation>Andere Anwendungen werden beendet&#xa0;…</translation>
    </message>
    <message>
        <source>Extracting the package...</source>
        <translation>Paket wird entpackt&#xa0;…</translation>
    </message>
    <message>
        <source>Verifying software upgrade...</source>
        <translation>Software-Update wird überprüft&#xa0;…</translation>
    </message>
    <message>
        <source>Executing post upgrade activities...</source>
        <translation>Abschließende Schritte werden ausgeführt&#xa0;…</translation>
    </message>
    <message>
        <source>Upgrade Available</source>
        <translation>Update verfügbar</translation>
    </message>
    <message>
        <source>Upgrade</source>
        <translation>Update</translation>
    </message>
    <message>
        <source>Upgrade Failed</source>
        <translation>Update fehlgeschlagen</translation>
    </message>
    <message>
        <source>No Upgrade File Found</source>
        <translation>Keine Update-Datei gefunden</translation>
    </message>
    <message>
        <source>Incompatible Upgrade File</source>
        <translation>Update-Datei nicht kompatibel</translation>
    </message>
    <message>
        <source>Error Occurred</source>
        <translation>Fehler aufgetreten</translation>
    </message>
</context>
</TS>
