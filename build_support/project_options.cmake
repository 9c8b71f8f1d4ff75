# Language level, visibility, warnings and sanitizers of our own targets, carried by one interface
# target so that no other target repeats them.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
    set(CMAKE_BUILD_TYPE RelWithDebInfo)
endif()

# Everything that runs lies side by side, as it does when installed.
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/bin")
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/lib")

set(OPERA_SANITIZE "" CACHE STRING "Sanitizers to build with, as given to -fsanitize=")

add_library(project_options INTERFACE)
target_compile_definitions(project_options INTERFACE QT_NO_CAST_FROM_ASCII QT_NO_FOREACH
                                                     QT_NO_KEYWORDS QT_USE_QSTRINGBUILDER)
if(MSVC)
    target_compile_options(project_options INTERFACE /W4 /WX /permissive- /utf-8)
else()
    target_compile_options(project_options INTERFACE -Wall -Wextra -Wpedantic -Wshadow
                                                     -Wconversion -Werror)
endif()
if(OPERA_SANITIZE)
    target_compile_options(project_options INTERFACE -fsanitize=${OPERA_SANITIZE}
                                                     -fno-omit-frame-pointer
                                                     -fno-sanitize-recover=all)
    if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
        # It compares types by address, which a library that hides its own makes different.
        target_compile_options(project_options INTERFACE -fno-sanitize=function)
    endif()
    target_link_options(project_options INTERFACE -fsanitize=${OPERA_SANITIZE})
endif()
