# How every target of the project is compiled: link lumivant_options.
set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_AUTOMOC ON)
set(CMAKE_AUTOUIC ON)
set(CMAKE_AUTORCC ON)

if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
    set(CMAKE_BUILD_TYPE Release CACHE STRING "Build type" FORCE)
endif()

find_program(LUMIVANT_CCACHE ccache)
if(LUMIVANT_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    set(CMAKE_CXX_COMPILER_LAUNCHER "${LUMIVANT_CCACHE}")
endif()

add_library(lumivant_options INTERFACE)
target_compile_options(lumivant_options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual
    $<$<BOOL:${LUMIVANT_WERROR}>:-Werror>
    $<$<CONFIG:Debug>:-Og>)

if(LUMIVANT_SANITIZE STREQUAL "address")
    set(_sanitizers -fsanitize=address,undefined -fno-sanitize-recover=undefined)
elseif(LUMIVANT_SANITIZE STREQUAL "undefined")
    set(_sanitizers -fsanitize=undefined -fno-sanitize-recover=undefined)
elseif(LUMIVANT_SANITIZE STREQUAL "thread")
    set(_sanitizers -fsanitize=thread)
elseif(LUMIVANT_SANITIZE)
    message(FATAL_ERROR "Unknown LUMIVANT_SANITIZE=${LUMIVANT_SANITIZE}: use address, undefined or thread.")
endif()
if(_sanitizers)
    add_compile_options(${_sanitizers} -fno-omit-frame-pointer)
    add_link_options(${_sanitizers})
endif()
