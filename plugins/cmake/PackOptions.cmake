# How every target of the pack is compiled: link pack_options.
set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_AUTOUIC ON)

if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
    set(CMAKE_BUILD_TYPE Release CACHE STRING "Build type" FORCE)
endif()

# Files above 2 GB on 32-bit processors, too.
if(CMAKE_SIZEOF_VOID_P EQUAL 4)
    add_compile_definitions(_FILE_OFFSET_BITS=64)
endif()

add_library(pack_options INTERFACE)
target_compile_options(pack_options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual
    $<$<BOOL:${LUMIVANT_WERROR}>:-Werror>
    $<$<CONFIG:Debug>:-Og>)
# The helper library is linked whole by name; a plug-in needs only the libraries that it uses.
target_link_options(pack_options INTERFACE "LINKER:--as-needed")

if(LUMIVANT_SANITIZE STREQUAL "address")
    set(_sanitizers -fsanitize=address,undefined -fno-sanitize-recover=all)
elseif(LUMIVANT_SANITIZE STREQUAL "undefined")
    set(_sanitizers -fsanitize=undefined -fno-sanitize-recover=all)
elseif(LUMIVANT_SANITIZE STREQUAL "thread")
    set(_sanitizers -fsanitize=thread)
elseif(LUMIVANT_SANITIZE)
    message(FATAL_ERROR "Unknown LUMIVANT_SANITIZE=${LUMIVANT_SANITIZE}: use address, undefined or thread.")
endif()
if(_sanitizers)
    add_compile_options(${_sanitizers} -fno-omit-frame-pointer)
    add_link_options(${_sanitizers})
endif()
