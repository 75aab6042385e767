# The one place for warning, sanitizer and hardening flags. Every target of ours links `project_flags`, except those of
# generated sources; hardening applies to every target, in every configuration.
add_library(project_flags INTERFACE)
target_compile_features(project_flags INTERFACE cxx_std_20)
target_include_directories(project_flags INTERFACE "${PROJECT_SOURCE_DIR}")
target_compile_options(project_flags INTERFACE
    -Wall -Wextra -Wpedantic -Werror
    -Wconversion -Wsign-conversion -Wshadow -Wold-style-cast -Wnon-virtual-dtor -Woverloaded-virtual
    -Wcast-align -Wformat=2 -Wimplicit-fallthrough)

# GCC 12 sees overlapping copies inside std::string that are not there (GCC bug 105329).
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    target_compile_options(project_flags INTERFACE -Wno-restrict)
endif()

if(UPGRADEUI_SANITIZERS)
    target_compile_options(project_flags INTERFACE
        -fsanitize=${UPGRADEUI_SANITIZERS} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(project_flags INTERFACE -fsanitize=${UPGRADEUI_SANITIZERS})
endif()

# scripts/check-hardening checks the result.
include(CheckCXXCompilerFlag)
add_compile_options(-fstack-protector-strong -fstack-clash-protection -D_GLIBCXX_ASSERTIONS -U_FORTIFY_SOURCE)
if(CMAKE_SYSTEM_PROCESSOR STREQUAL "x86_64")
    add_compile_options(-fcf-protection)
endif()
# Sanitizers have to see uninitialized variables, and do not know the checked functions of the C library. Without
# optimisation __OPTIMIZE__ is undefined, which counts as 0: the C library then warns about any other value.
if(NOT UPGRADEUI_SANITIZERS)
    check_cxx_compiler_flag(-ftrivial-auto-var-init=zero has_auto_var_init) # clang before version 16 lacks it
    if(has_auto_var_init)
        add_compile_options(-ftrivial-auto-var-init=zero)
    endif()
    add_compile_options("-D_FORTIFY_SOURCE=(3*__OPTIMIZE__)")
endif()
add_link_options(-Wl,-z,relro,-z,now,-z,noexecstack)

include(CheckPIESupported)
check_pie_supported()

# asio_loop(<target>): what a target needs whose sources run a loop of Boost.Asio. The thread sanitizer does not know the
# fences around its handlers, and says so; they are for loops that several threads run, of which we have none.
function(asio_loop target)
    if(UPGRADEUI_SANITIZERS MATCHES "thread")
        target_compile_definitions(${target} PUBLIC BOOST_ASIO_DISABLE_FENCED_BLOCK)
    endif()
endfunction()
