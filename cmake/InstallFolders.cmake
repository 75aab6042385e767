# Where an installation has what is not in one of the usual folders.

# Of the program, which looks for its translations beside itself.
set(UPGRADEUI_PROGRAM_FOLDER "${CMAKE_INSTALL_LIBEXECDIR}/upgradeui")

# An installed program has the printer's folders below "/", unless there is a folder "printer" beside it.
set(UPGRADEUI_DEVICE_ROOT "/" CACHE STRING
    "Where the printer's folders are installed; a relative one is below the prefix, e.g. libexec/upgradeui/printer")
string(REGEX REPLACE "/$" "" UPGRADEUI_DEVICE_FOLDER "${UPGRADEUI_DEVICE_ROOT}")

# "boot/qt/qml" is searched before it: an integrator's own library goes there.
set(UPGRADEUI_CONTROLS_FOLDER "hard disk/qt/qml" CACHE STRING
    "Where the control library is installed, below the device root")
