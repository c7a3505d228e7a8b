# Builds the plug-in pack the way an outsider would: installs the kit and builds plugins/ as a project of its own against
# it. The plug-ins land beside the program; the pack's tests run as one test of this build.
include(ExternalProject)

# Not CMAKE_BINARY_DIR/kit, where the kit's package files are made: they would be found there half finished.
set(pack_dir "${CMAKE_BINARY_DIR}/pack")
set(pack_kit_dir "${pack_dir}/kit")
set(pack_build_dir "${pack_dir}/build")

# The kit is installed again only when something in it changed, so that the pack is not linked anew on every build.
file(GLOB_RECURSE pack_kit_files CONFIGURE_DEPENDS
    "${CMAKE_SOURCE_DIR}/src/paramStore/*.h"
    "${CMAKE_SOURCE_DIR}/sdk/*"
    "${CMAKE_SOURCE_DIR}/cmake/LumivantKit*")
add_custom_command(OUTPUT "${pack_dir}/kit.stamp"
    COMMAND "${CMAKE_COMMAND}" --install "${CMAKE_BINARY_DIR}" --config $<CONFIG> --component kit
        --prefix "${pack_kit_dir}"
    COMMAND "${CMAKE_COMMAND}" -E touch "${pack_dir}/kit.stamp"
    DEPENDS ArithmParamMgr ${pack_kit_files}
    COMMENT "Installing the plug-in kit"
    VERBATIM)
add_custom_target(lumivantPackKit DEPENDS "${pack_dir}/kit.stamp")

set(pack_settings)
foreach(setting
        CMAKE_BUILD_TYPE CMAKE_CXX_COMPILER CMAKE_CXX_COMPILER_LAUNCHER CMAKE_CXX_FLAGS CMAKE_TOOLCHAIN_FILE
        CMAKE_EXPORT_COMPILE_COMMANDS CMAKE_MODULE_LINKER_FLAGS CMAKE_SKIP_INSTALL_RPATH CMAKE_INSTALL_LIBDIR
        LUMIVANT_SYSROOT LUMIVANT_WERROR LUMIVANT_TESTS LUMIVANT_SANITIZE)
    if(DEFINED ${setting} AND NOT "${${setting}}" STREQUAL "")
        list(APPEND pack_settings "-D${setting}:STRING=${${setting}}")
    endif()
endforeach()

# CMAKE_CACHE_ARGS, so that a setting changed here reaches a pack that was configured before.
ExternalProject_Add(lumivantPack
    SOURCE_DIR "${CMAKE_SOURCE_DIR}/plugins"
    BINARY_DIR "${pack_build_dir}"
    PREFIX "${pack_dir}/external"
    CMAKE_CACHE_ARGS
        ${pack_settings}
        "-DCMAKE_PREFIX_PATH:STRING=${pack_kit_dir}"
        "-DLUMIVANT_PLUGIN_OUTPUT_DIR:PATH=${CMAKE_RUNTIME_OUTPUT_DIRECTORY}"
    BUILD_ALWAYS ON
    INSTALL_COMMAND ""
    DEPENDS lumivantPackKit)

# Beside the programs, as the kit is beside their library.
install(CODE "execute_process(
    COMMAND \"${CMAKE_COMMAND}\" --install \"${pack_build_dir}\" --prefix \"\${CMAKE_INSTALL_PREFIX}\"
    COMMAND_ERROR_IS_FATAL ANY)" COMPONENT plugins)

if(LUMIVANT_TESTS)
    enable_testing()
    set(pack_processors 2)
    set(pack_timeout 900)
    if(LUMIVANT_SANITIZE)
        set(pack_timeout 3600)
    endif()
    if(CMAKE_CROSSCOMPILING)
        set(pack_processors 1)
        set(pack_timeout 7200)  # an emulator is slow
    endif()
    add_test(NAME plugin_pack
        COMMAND "${CMAKE_CTEST_COMMAND}" --test-dir "${pack_build_dir}" --parallel ${pack_processors}
            --output-on-failure --no-tests=error)
    set_tests_properties(plugin_pack PROPERTIES TIMEOUT ${pack_timeout} PROCESSORS ${pack_processors})
endif()
