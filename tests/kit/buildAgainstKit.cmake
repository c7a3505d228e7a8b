# Configures and builds the project SOURCE in the fresh folder BUILD with the kit in KIT, and sees whether MODULE came
# out of it with the entry points SYMBOLS, compiled without any of the FORBIDDEN folders.
cmake_minimum_required(VERSION 3.25)

file(REMOVE_RECURSE "${BUILD}")
set(cross)
if(TOOLCHAIN)
    set(cross "-DCMAKE_TOOLCHAIN_FILE=${TOOLCHAIN}" "-DLUMIVANT_SYSROOT=${SYSROOT}")
endif()
execute_process(
    COMMAND "${CMAKE_COMMAND}" -S "${SOURCE}" -B "${BUILD}" -G "${GENERATOR}"
        "-DCMAKE_PREFIX_PATH=${KIT}"
        "-DCMAKE_CXX_COMPILER=${COMPILER}"
        "-DCMAKE_CXX_COMPILER_LAUNCHER=${LAUNCHER}"
        "-DCMAKE_CXX_FLAGS=${FLAGS}"
        ${cross}
        -DCMAKE_BUILD_TYPE=Debug
        -DCMAKE_EXPORT_COMPILE_COMMANDS=ON
    OUTPUT_QUIET
    COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND "${CMAKE_COMMAND}" --build "${BUILD}" COMMAND_ERROR_IS_FATAL ANY)

execute_process(
    COMMAND "${NM}" -D --defined-only "${BUILD}/${MODULE}"
    OUTPUT_VARIABLE exported
    COMMAND_ERROR_IS_FATAL ANY)
string(REPLACE "," ";" symbols "${SYMBOLS}")
foreach(symbol IN LISTS symbols)
    if(NOT exported MATCHES " T ${symbol}\n")
        message(SEND_ERROR "${MODULE} does not export ${symbol}")
    endif()
endforeach()

file(READ "${BUILD}/compile_commands.json" commands)
string(REPLACE "," ";" folders "${FORBIDDEN}")
foreach(folder IN LISTS folders)
    string(FIND "${commands}" "-I${folder}" plain)
    string(FIND "${commands}" "-isystem ${folder}" system)
    if(NOT plain EQUAL -1 OR NOT system EQUAL -1)
        message(SEND_ERROR "${MODULE} was compiled with ${folder}")
    endif()
endforeach()
