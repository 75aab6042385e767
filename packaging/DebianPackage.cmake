# The Debian package: scripts/package makes it.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME upgradeui)
set(CPACK_PACKAGE_VERSION "${PROJECT_VERSION}")
set(CPACK_PACKAGE_CONTACT "UpgradeUI developers <upgradeui@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "upgrade dialogue of a label printer")
set(CPACK_PACKAGE_DESCRIPTION
"Follows an upgrade of the printer's software on its display: file found,
progress, completed, or one of the failures. The decisions of the person at the
printer go back to the upgrader, a separate process.
.
With upgrader-sim, which plays an upgrader, and the units of systemd.")
# The files of the printer's folders have places of their own, so they are gathered below DESTDIR.
set(CPACK_SET_DESTDIR ON)
set(CPACK_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION embedded)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# What no linker sees: the modules of the QML, the fonts behind links, and who makes the user and the folders.
list(JOIN font_packages ", " font_packages)
set(CPACK_DEBIAN_PACKAGE_DEPENDS
    "qml-module-qtqml, qml-module-qtquick2, qml-module-qtquick-window2, ${font_packages}"
    "systemd | systemd-standalone-sysusers | systemd-sysusers"
    "systemd | systemd-standalone-tmpfiles | systemd-tmpfiles")
list(JOIN CPACK_DEBIAN_PACKAGE_DEPENDS ", " CPACK_DEBIAN_PACKAGE_DEPENDS)
# The first gives display and touch panel to the groups that the user is in; with the second the titles have a bold face
# that is drawn, not calculated.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "udev, fonts-liberation")

set(control "${CMAKE_CURRENT_BINARY_DIR}/debian")
foreach(script postinst prerm postrm)
    configure_file(debian/${script} "${control}/${script}" COPYONLY)
    list(APPEND CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA "${control}/${script}")
endforeach()
file(WRITE "${control}/conffiles" "/etc/default/upgradeui\n")
list(APPEND CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA "${control}/conffiles")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

# The program holds a copy of its font, whose licence goes with it.
get_property(record GLOBAL PROPERTY UPGRADEUI_FONT_UPGRADEUI_FONT)
list(GET record 0 PROGRAM_FONT)
set(FONT_LICENCE "See the package ${program_font_package}.")
if(EXISTS "/usr/share/doc/${program_font_package}/copyright")
    file(READ "/usr/share/doc/${program_font_package}/copyright" FONT_LICENCE)
endif()
configure_file(debian/copyright.in "${control}/copyright" @ONLY)
file(CONFIGURE OUTPUT "${control}/changelog" CONTENT "upgradeui (@PROJECT_VERSION@) stable; urgency=medium

  * Version @PROJECT_VERSION@.

 -- @CPACK_PACKAGE_CONTACT@  Thu, 01 Jan 2026 00:00:00 +0000
" @ONLY)
add_custom_command(
    OUTPUT "${control}/changelog.gz"
    COMMAND gzip -9nkf "${control}/changelog"
    DEPENDS "${control}/changelog"
    VERBATIM)
add_custom_target(changelog ALL DEPENDS "${control}/changelog.gz")
install(FILES "${control}/copyright" "${control}/changelog.gz" DESTINATION "${CMAKE_INSTALL_DATADIR}/doc/upgradeui")

include(CPack)
