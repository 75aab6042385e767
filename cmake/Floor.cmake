# floor(<name> [SOURCES <file>...] [LINKS <target>...])
#
# One library target for each floor of the house. A floor whose sources are still to come is an interface
# target, so that what stands above it links it by name from the first day.
function(floor name)
    cmake_parse_arguments(arg "" "" "SOURCES;LINKS" ${ARGN})
    if(arg_SOURCES)
        add_library(${name} STATIC ${arg_SOURCES})
        target_link_libraries(${name} PUBLIC project_flags ${arg_LINKS})
    else()
        add_library(${name} INTERFACE)
        target_link_libraries(${name} INTERFACE project_flags ${arg_LINKS})
    endif()
endfunction()
