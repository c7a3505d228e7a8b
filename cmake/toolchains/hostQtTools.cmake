# Qt's CMake packages name the tools of their own tree, which in a sysroot are programs of the board. They leave a tool
# alone that is a target already, so it is made one here, before any find_package(Qt5).
if(CMAKE_PROJECT_NAME STREQUAL "CMAKE_TRY_COMPILE")
    return()
endif()
foreach(tool moc rcc uic qmake)
    find_program(LUMIVANT_HOST_${tool} NAMES ${tool}
        PATHS /usr/lib/qt5/bin "/usr/lib/${CMAKE_HOST_SYSTEM_PROCESSOR}-linux-gnu/qt5/bin"
        NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH)
    find_program(LUMIVANT_HOST_${tool} NAMES ${tool}-qt5 ${tool} NO_CMAKE_FIND_ROOT_PATH REQUIRED)
    if(NOT TARGET Qt5::${tool})
        add_executable(Qt5::${tool} IMPORTED GLOBAL)
        set_target_properties(Qt5::${tool} PROPERTIES IMPORTED_LOCATION "${LUMIVANT_HOST_${tool}}")
    endif()
endforeach()
