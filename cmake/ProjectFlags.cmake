# The one place for warning, sanitizer and hardening flags. Every target of ours links `project_flags`.
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

if(NOT UPGRADEUI_SANITIZERS)
    set(hardening -fstack-protector-strong -fstack-clash-protection
        -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2 -D_GLIBCXX_ASSERTIONS)
    if(CMAKE_SYSTEM_PROCESSOR STREQUAL "x86_64")
        list(APPEND hardening -fcf-protection)
    endif()
    target_compile_options(project_flags INTERFACE "$<$<CONFIG:Release>:${hardening}>")
    target_link_options(project_flags INTERFACE "$<$<CONFIG:Release>:-Wl,-z,relro,-z,now,-z,noexecstack>")
endif()

include(CheckPIESupported)
check_pie_supported()

# asio_loop(<target>): what a target needs whose sources run a loop of Boost.Asio. The thread sanitizer does not know the
# fences around its handlers, and says so; they are for loops that several threads run, of which we have none.
function(asio_loop target)
    if(UPGRADEUI_SANITIZERS MATCHES "thread")
        target_compile_definitions(${target} PUBLIC BOOST_ASIO_DISABLE_FENCED_BLOCK)
    endif()
endfunction()
