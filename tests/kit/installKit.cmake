# Installs the kit component of BUILD into the fresh folder KIT and sees whether it is complete.
cmake_minimum_required(VERSION 3.25)

file(REMOVE_RECURSE "${KIT}")
execute_process(
    COMMAND "${CMAKE_COMMAND}" --install "${BUILD}" --component kit --prefix "${KIT}"
    OUTPUT_QUIET
    COMMAND_ERROR_IS_FATAL ANY)

set(expected
    arithmParam.h arithmParamMgr.h paramExport.h paramLists.h paramPictures.h pictureLayout.h
    algorithm.h dataSource.h
    libArithmParamMgr.so libArithmParamMgr.so.1 libArithmParamMgr.so.1.0.0
    LumivantKitConfig.cmake LumivantKitConfigVersion.cmake LumivantKitTargets.cmake LumivantKitPlugin.cmake
    plugins.md invertGray.cpp grayRamp.cpp)
file(GLOB_RECURSE installed "${KIT}/*")
list(TRANSFORM installed REPLACE ".*/" "" OUTPUT_VARIABLE names)
foreach(name IN LISTS expected)
    if(NOT name IN_LIST names)
        message(SEND_ERROR "The kit lacks ${name}")
    endif()
endforeach()

# What is private to the store stays out of it, and so do the folders of the machine that built it.
foreach(name IN ITEMS paramData.h paramTable.h pixelBuffer.h sharedList.h)
    if(name IN_LIST names)
        message(SEND_ERROR "The kit holds the private ${name}")
    endif()
endforeach()
foreach(file IN LISTS installed)
    if(file MATCHES "[.](cmake|h|txt)$")
        file(READ "${file}" text)
        string(FIND "${text}" "${BUILD}" position)
        if(NOT position EQUAL -1)
            message(SEND_ERROR "${file} names the build folder")
        endif()
    endif()
endforeach()
