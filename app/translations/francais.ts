<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="fr_FR">
<context>
    <name>ConnectACPower</name>
    <message>
        <source>Upgrade file found. Connect AC power to initiate upgrade.

Note: Do not unplug AC power until the upgrade is complete.</source>
        <translation>Fichier de mise à jour trouvé. Branchez l’alimentation secteur pour lancer la mise à jour.

Remarque&#xa0;: ne débranchez pas l’alimentation avant la fin de la mise à jour.</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Annuler</translation>
    </message>
</context>
<context>
    <name>KCMain</name>
    <message>
        <source>Upgrade UI</source>
        <translation>Interface de mise à jour</translation>
    </message>
</context>
<context>
    <name>KCProgressBar</name>
    <message>
        <source>Progress: %1%</source>
        <translation>Progression&#xa0;: %1&#xa0;%</translation>
    </message>
</context>
<context>
    <name>NextBootSafe</name>
    <message>
        <source>An error has occurred during upgrade and the printer needs to reboot in recovery mode.</source>
        <translation>Une erreur s’est produite pendant la mise à jour. L’imprimante doit redémarrer en mode de récupération.</translation>
    </message>
    <message>
        <source>Reboot Now</source>
        <translation>Redémarrer</translation>
    </message>
</context>
<context>
    <name>PopupCloseButton</name>
    <message>
        <source>Close</source>
        <translation>Fermer</translation>
    </message>
</context>
<context>
    <name>PopupIcon</name>
    <message>
        <source>Alert</source>
        <translation>Alerte</translation>
    </message>
    <message>
        <source>Question</source>
        <translation>Question</translation>
    </message>
    <message>
        <source>In progress</source>
        <translation>En cours</translation>
    </message>
    <message>
        <source>Success</source>
        <translation>Réussite</translation>
    </message>
    <message>
        <source>Error</source>
        <translation>Erreur</translation>
    </message>
</context>
<context>
    <name>SystemIntegrityFailed</name>
    <message>
        <source>Printer unable to boot due to corrupted system files. Please insert a USB flash drive with valid upgrade file to start repair.</source>
        <translation>L’imprimante ne peut pas démarrer car des fichiers système sont endommagés. Insérez une clé USB contenant un fichier de mise à jour valide pour lancer la réparation.</translation>
    </message>
    <message>
        <source>Repair</source>
        <translation>Réparer</translation>
    </message>
</context>
<context>
    <name>UpgradeCompleted</name>
    <message>
        <source>Upgrade to Version %1 is successful!</source>
        <translation>Mise à jour vers la version %1 réussie&#xa0;!</translation>
    </message>
    <message>
        <source>Printer will reboot in %1 seconds...</source>
        <translation>L’imprimante redémarrera dans %1&#xa0;s…</translation>
    </message>
    <message>
        <source>Reboot Now</source>
        <translation>Redémarrer</translation>
    </message>
</context>
<context>
    <name>UpgradeCompletedNoReboot</name>
    <message>
        <source>Upgrade Complete.</source>
        <translation>Mise à jour terminée.</translation>
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
        <translation>Une erreur s’est produite pendant la mise à jour. Réinsérez la clé USB pour réessayer.</translation>
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
        <translation>Le fichier de mise à jour est peut-être endommagé. Vérifiez qu’il est valide ou téléchargez-le à nouveau. Réinsérez la clé USB pour réessayer.</translation>
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
        <translation>Fichier de mise à jour trouvé. Mettre à jour maintenant&#xa0;?

Remarque&#xa0;: tous les travaux d’impression en cours et en attente seront annulés au lancement de la mise à jour. Celle-ci peut prendre quelques minutes. N’éteignez pas l’imprimante.</translation>
    </message>
    <message>
        <source>Remove USB drive after the upgrade completes.</source>
        <translation>Retirez la clé USB une fois la mise à jour terminée.</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Annuler</translation>
    </message>
    <message>
        <source>Upgrade</source>
        <translation>Mettre à jour</translation>
    </message>
</context>
<context>
    <name>UpgradeFileIncompatible</name>
    <message>
        <source>Upgrade file is not compatible with device. Please check that you have a newer version and the correct region. Re-insert USB flash drive to try again.</source>
        <translation>Le fichier de mise à jour n’est pas compatible avec l’appareil. Vérifiez que la version est plus récente et que la région est correcte. Réinsérez la clé USB pour réessayer.</translation>
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
        <translation>Fichier de mise à jour introuvable. Vérifiez qu’une clé USB contenant un fichier de mise à jour valide est insérée, puis réessayez.</translation>
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
        <translation>Progression de la mise à jour&#xa0;: %1&#xa0;%</translation>
    </message>
    <message>
        <source>Note: This may take a few minutes. Please do not power off your printer.</source>
        <translation>Remarque&#xa0;: cela peut prendre quelques minutes. N’éteignez pas l’imprimante.</translation>
    </message>
</context>
<context>
    <name>main</name>
    <message>
        <source>Initiating the software upgrade...</source>
        <translation>Lancement de la mise à jour du logiciel…</translation>
    </message>
    <message>
        <source>Preparing for the software upgrade...</source>
        <translation>Préparation de la mise à jour du logiciel…</translation>
    </message>
    <message>
        <source>Copying the package...</source>
        <translation>Copie du paquet…</translation>
    </message>
    <message>
        <source>Validating the package...</source>
        <translation>Validation du paquet…</translation>
    </message>
    <message>
        <source>Validating the configuration...</source>
        <translation>Validation de la configuration…</translation>
    </message>
    <message>
        <source>Backingup the current version...</source>
        <translation>Sauvegarde de la version actuelle…</translation>
    </message>
    <message>
        <source>Ending other applications...</source>
        <translation>Fermeture des autres applications…</translation>
    </message>
    <message>
        <source>Extracting the package...</source>
        <translation>Extraction du paquet…</translation>
    </message>
    <message>
        <source>Verifying software upgrade...</source>
        <translation>Vérification de la mise à jour du logiciel…</translation>
    </message>
    <message>
        <source>Executing post upgrade activities...</source>
        <translation>Exécution des tâches de fin de mise à jour…</translation>
    </message>
    <message>
        <source>Upgrade Available</source>
        <translation>Mise à jour disponible</translation>
    </message>
    <message>
        <source>Upgrade</source>
        <translation>Mise à jour</translation>
    </message>
    <message>
        <source>Upgrade Failed</source>
        <translation>Échec de la mise à jour</translation>
    </message>
    <message>
        <source>No Upgrade File Found</source>
        <translation>Fichier introuvable</translation>
    </message>
    <message>
        <source>Incompatible Upgrade File</source>
        <translation>Fichier incompatible</translation>
    </message>
    <message>
        <source>Error Occurred</source>
        <translation>Une erreur s’est produite</translation>
    </message>
</context>
</TS>
