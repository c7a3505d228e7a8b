# The board: 32-bit ARM, hard-float, with Debian's cross compiler and a Debian 12 armhf sysroot (scripts/board makes one).
# Any project can be built with it, a plug-in too:
#
#   cmake -S . -B build/board -DCMAKE_TOOLCHAIN_FILE=…/cmake/toolchains/armhf.cmake -DLUMIVANT_SYSROOT=FOLDER
#
# Without LUMIVANT_SYSROOT the environment variable of that name counts, then build/sysroot-armhf of this repository.
# Programs of the build are run by CTest through qemu-user where that is installed.

list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES LUMIVANT_SYSROOT)  # try_compile reads this file anew
if(NOT LUMIVANT_SYSROOT)
    set(LUMIVANT_SYSROOT "$ENV{LUMIVANT_SYSROOT}")
endif()
if(NOT LUMIVANT_SYSROOT)
    set(LUMIVANT_SYSROOT "${CMAKE_CURRENT_LIST_DIR}/../../build/sysroot-armhf")
endif()
get_filename_component(LUMIVANT_SYSROOT "${LUMIVANT_SYSROOT}" ABSOLUTE)
if(NOT IS_DIRECTORY "${LUMIVANT_SYSROOT}/usr/lib/arm-linux-gnueabihf")
    message(FATAL_ERROR "${LUMIVANT_SYSROOT} is no armhf sysroot: run scripts/board sysroot, or set LUMIVANT_SYSROOT.")
endif()

set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR armv7l)
set(CMAKE_C_COMPILER arm-linux-gnueabihf-gcc)
set(CMAKE_CXX_COMPILER arm-linux-gnueabihf-g++)
set(CMAKE_LIBRARY_ARCHITECTURE arm-linux-gnueabihf)
set(CMAKE_SYSROOT "${LUMIVANT_SYSROOT}")
set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE armhf)

set(CMAKE_FIND_ROOT_PATH "${LUMIVANT_SYSROOT}")
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
# A kit lies outside of the sysroot and is named by CMAKE_PREFIX_PATH; the machine's own packages do not lie there.
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE BOTH)

# The sysroot's libraries need others of the sysroot.
foreach(kind EXE SHARED MODULE)
    set(CMAKE_${kind}_LINKER_FLAGS_INIT
        "-Wl,-rpath-link,${LUMIVANT_SYSROOT}/usr/lib/arm-linux-gnueabihf -Wl,-rpath-link,${LUMIVANT_SYSROOT}/lib/arm-linux-gnueabihf")
endforeach()

find_program(LUMIVANT_EMULATOR NAMES qemu-arm-static qemu-arm)
if(LUMIVANT_EMULATOR)
    set(CMAKE_CROSSCOMPILING_EMULATOR "${LUMIVANT_EMULATOR};-L;${LUMIVANT_SYSROOT}")
endif()

# Qt's moc, uic and rcc have to be those of this machine, in every project that is built with this file.
set(CMAKE_PROJECT_INCLUDE "${CMAKE_CURRENT_LIST_DIR}/hostQtTools.cmake")
