# screen_font(<variable> NAMES <file>... SUFFIXES <folder>... PLACE program|printer LANGUAGES <text> PACKAGE <name>...)
#
# Finds a free font of the build host that the screens need, the first of NAMES that there is, and puts its path into
# <variable>. PLACE tells whether it becomes part of the program or lies among the printer's fonts. What is staged,
# what is installed and the list that goes with it are made from these calls. PACKAGE is Debian's, one for each name.
function(screen_font variable)
    cmake_parse_arguments(arg "" "PLACE;LANGUAGES" "NAMES;SUFFIXES;PACKAGE" ${ARGN})
    find_file(${variable}
        NAMES ${arg_NAMES}
        PATHS /usr/share/fonts /usr/local/share/fonts
        PATH_SUFFIXES ${arg_SUFFIXES}
        DOC "A font of the screens, for ${arg_LANGUAGES}"
        NO_DEFAULT_PATH
        REQUIRED)
    get_filename_component(file "${${variable}}" NAME)
    list(FIND arg_NAMES "${file}" which)
    set(package "none of Debian's")
    if(NOT which EQUAL -1)
        list(GET arg_PACKAGE ${which} package)
    endif()
    set_property(GLOBAL APPEND PROPERTY UPGRADEUI_FONTS ${variable})
    set_property(GLOBAL PROPERTY UPGRADEUI_FONT_${variable} "${${variable}}" "${arg_PLACE}" "${arg_LANGUAGES}" "${package}")
endfunction()

# fonts_among_the_printers(<variable>): the paths of those with PLACE printer.
function(fonts_among_the_printers variable)
    set(paths)
    get_property(fonts GLOBAL PROPERTY UPGRADEUI_FONTS)
    foreach(font IN LISTS fonts)
        get_property(record GLOBAL PROPERTY UPGRADEUI_FONT_${font})
        list(GET record 0 path)
        list(GET record 1 place)
        if(place STREQUAL "printer")
            list(APPEND paths "${path}")
        endif()
    endforeach()
    set(${variable} "${paths}" PARENT_SCOPE)
endfunction()
