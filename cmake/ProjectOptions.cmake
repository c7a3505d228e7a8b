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
    # Precompiled headers are compared by their content, and none of ours names a time.
    set(CMAKE_CXX_COMPILER_LAUNCHER
        "${CMAKE_COMMAND}" -E env "CCACHE_SLOPPINESS=pch_defines,time_macros" "${LUMIVANT_CCACHE}")
endif()
include(Precompiled)

# Every test program is a link of its own; lld needs a third of the time.
find_program(LUMIVANT_LLD ld.lld)
if(LUMIVANT_LLD AND LUMIVANT_TESTS AND NOT CMAKE_CROSSCOMPILING)
    add_link_options(-fuse-ld=lld)
endif()

# Files above 2 GB on 32-bit processors, too.
if(CMAKE_SIZEOF_VOID_P EQUAL 4)
    add_compile_definitions(_FILE_OFFSET_BITS=64)
endif()

add_library(lumivant_options INTERFACE)
target_compile_options(lumivant_options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual
    $<$<BOOL:${LUMIVANT_WERROR}>:-Werror>
    $<$<CONFIG:Debug>:-Og>)

if(LUMIVANT_SANITIZE STREQUAL "address")
    set(_sanitizers -fsanitize=address,undefined -fno-sanitize-recover=all)
elseif(LUMIVANT_SANITIZE STREQUAL "undefined")
    set(_sanitizers -fsanitize=undefined -fno-sanitize-recover=all)
elseif(LUMIVANT_SANITIZE STREQUAL "thread")
    set(_sanitizers -fsanitize=thread)
elseif(LUMIVANT_SANITIZE STREQUAL "fuzzer")
    # Clang only. What is built is observed by the fuzzer; the fuzzer itself is linked in fuzz/.
    set(_sanitizers -fsanitize=address,undefined,float-cast-overflow -fno-sanitize-recover=all)
    add_compile_options(-fsanitize=fuzzer-no-link)
elseif(LUMIVANT_SANITIZE)
    message(FATAL_ERROR "Unknown LUMIVANT_SANITIZE=${LUMIVANT_SANITIZE}: use address, undefined, thread or fuzzer.")
endif()
if(_sanitizers)
    add_compile_options(${_sanitizers} -fno-omit-frame-pointer)
    add_link_options(${_sanitizers})
endif()
