<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="es_ES">
<context>
    <name>ConnectACPower</name>
    <message>
        <source>Upgrade file found. Connect AC power to initiate upgrade.

Note: Do not unplug AC power until the upgrade is complete.</source>
        <translation>Archivo de actualización encontrado. Conecte la alimentación de CA para iniciar la actualización.

Nota: No desconecte la alimentación de CA hasta que finalice la actualización.</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Cancelar</translation>
    </message>
</context>
<context>
    <name>KCMain</name>
    <message>
        <source>Upgrade UI</source>
        <translation>Interfaz de actualización</translation>
    </message>
</context>
<context>
    <name>KCProgressBar</name>
    <message>
        <source>Progress: %1%</source>
        <translation>Progreso: %1&#xa0;%</translation>
    </message>
</context>
<context>
    <name>NextBootSafe</name>
    <message>
        <source>An error has occurred during upgrade and the printer needs to reboot in recovery mode.</source>
        <translation>Se ha producido un error durante la actualización y es necesario reiniciar la impresora en modo de recuperación.</translation>
    </message>
    <message>
        <source>Reboot Now</source>
        <translation>Reiniciar ahora</translation>
    </message>
</context>
<context>
    <name>PopupCloseButton</name>
    <message>
        <source>Close</source>
        <translation>Cerrar</translation>
    </message>
</context>
<context>
    <name>PopupIcon</name>
    <message>
        <source>Alert</source>
        <translation>Alerta</translation>
    </message>
    <message>
        <source>Question</source>
        <translation>Pregunta</translation>
    </message>
    <message>
        <source>In progress</source>
        <translation>En curso</translation>
    </message>
    <message>
        <source>Success</source>
        <translation>Correcto</translation>
    </message>
    <message>
        <source>Error</source>
        <translation>Error</translation>
    </message>
</context>
<context>
    <name>SystemIntegrityFailed</name>
    <message>
        <source>Printer unable to boot due to corrupted system files. Please insert a USB flash drive with valid upgrade file to start repair.</source>
        <translation>La impresora no puede arrancar porque hay archivos del sistema dañados. Inserte una memoria USB con un archivo de actualización válido para iniciar la reparación.</translation>
    </message>
    <message>
        <source>Repair</source>
        <translation>Reparar</translation>
    </message>
</context>
<context>
    <name>UpgradeCompleted</name>
    <message>
        <source>Upgrade to Version %1 is successful!</source>
        <translation>¡Actualización a la versión %1 realizada correctamente!</translation>
    </message>
    <message>
        <source>Printer will reboot in %1 seconds...</source>
        <translation>La impresora se reiniciará en %1&#xa0;s…</translation>
    </message>
    <message>
        <source>Reboot Now</source>
        <translation>Reiniciar ahora</translation>
    </message>
</context>
<context>
    <name>UpgradeCompletedNoReboot</name>
    <message>
        <source>Upgrade Complete.</source>
        <translation>Actualización completada.</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>Aceptar</translation>
    </message>
</context>
<context>
    <name>UpgradeFailed</name>
    <message>
        <source>An error has occurred during upgrade. Re-insert USB flash drive to try again.</source>
        <translation>Se ha producido un error durante la actualización. Vuelva a insertar la memoria USB para intentarlo de nuevo.</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>Aceptar</translation>
    </message>
</context>
<context>
    <name>UpgradeFileCorrupted</name>
    <message>
        <source>Upgrade file may be corrupted. Please check that you have a valid upgrade file or try downloading the file again. Re-insert USB flash drive to try again.</source>
        <translation>Es posible que el archivo de actualización esté dañado. Compruebe que el archivo es válido o descárguelo otra vez. Vuelva a insertar la memoria USB para intentarlo de nuevo.</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>Aceptar</translation>
    </message>
</context>
<context>
    <name>UpgradeFileFound</name>
    <message>
        <source>Upgrade file found. Upgrade now?

Note: All current and queued print jobs will be cancelled once upgrade starts. This may take a few minutes. Please do not power off your printer.</source>
        <translation>Archivo de actualización encontrado. ¿Actualizar ahora?

Nota: Al iniciar la actualización se cancelarán todos los trabajos de impresión en curso y en cola. Puede tardar unos minutos. No apague la impresora.</translation>
    </message>
    <message>
        <source>Remove USB drive after the upgrade completes.</source>
        <translation>Retire la memoria USB cuando finalice la actualización.</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Cancelar</translation>
    </message>
    <message>
        <source>Upgrade</source>
        <translation>Actualizar</translation>
    </message>
</context>
<context>
    <name>UpgradeFileIncompatible</name>
    <message>
        <source>Upgrade file is not compatible with device. Please check that you have a newer version and the correct region. Re-insert USB flash drive to try again.</source>
        <translation>El archivo de actualización no es compatible con el dispositivo. Compruebe que la versión es más reciente y que la región es correcta. Vuelva a insertar la memoria USB para intentarlo de nuevo.</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>Aceptar</translation>
    </message>
</context>
<context>
    <name>UpgradeFileNotFound</name>
    <message>
        <source>Unable to find upgrade file. Please check that a USB flash drive with valid upgrade file is inserted and try again.</source>
        <translation>No se encuentra el archivo de actualización. Compruebe que haya insertada una memoria USB con un archivo de actualización válido e inténtelo de nuevo.</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>Aceptar</translation>
    </message>
</context>
<context>
    <name>UpgradeInProgress</name>
    <message>
        <source>Upgrade Progress: %1%</source>
        <translation>Progreso de la actualización: %1&#xa0;%</translation>
    </message>
    <message>
        <source>Note: This may take a few minutes. Please do not power off your printer.</source>
        <translation>Nota: Puede tardar unos minutos. No apague la impresora.</translation>
    </message>
</context>
<context>
    <name>main</name>
    <message>
        <source>Initiating the software upgrade...</source>
        <translation>Iniciando la actualización del software…</translation>
    </message>
    <message>
        <source>Preparing for the software upgrade...</source>
        <translation>Preparando la actualización del software…</translation>
    </message>
    <message>
        <source>Copying the package...</source>
        <translation>Copiando el paquete…</translation>
    </message>
    <message>
        <source>Validating the package...</source>
        <translation>Validando el paquete…</translation>
    </message>
    <message>
        <source>Validating the configuration...</source>
        <translation>Validando la configuración…</translation>
    </message>
    <message>
        <source>Backingup the current version...</source>
        <translation>Guardando copia de la versión actual…</translation>
    </message>
    <message>
        <source>Ending other applications...</source>
        <translation>Cerrando otras aplicaciones…</translation>
    </message>
    <message>
        <source>Extracting the package...</source>
        <translation>Extrayendo el paquete…</translation>
    </message>
    <message>
        <source>Verifying software upgrade...</source>
        <translation>Verificando la actualización del software…</translation>
    </message>
    <message>
        <source>Executing post upgrade activities...</source>
        <translation>Realizando las tareas posteriores a la actualización…</translation>
    </message>
    <message>
        <source>Upgrade Available</source>
        <translation>Actualización disponible</translation>
    </message>
    <message>
        <source>Upgrade</source>
        <translation>Actualización</translation>
    </message>
    <message>
        <source>Upgrade Failed</source>
        <translation>Error de actualización</translation>
    </message>
    <message>
        <source>No Upgrade File Found</source>
        <translation>Archivo no encontrado</translation>
    </message>
    <message>
        <source>Incompatible Upgrade File</source>
        <translation>Archivo no compatible</translation>
    </message>
    <message>
        <source>Error Occurred</source>
        <translation>Se ha producido un error</translation>
    </message>
</context>
</TS>
