# The plug-in kit: all that a plug-in author needs, and nothing else of ours.
#
#   cmake --install BUILD_FOLDER --component kit --prefix KIT_FOLDER
#
# Layout: the store library in lib/, its headers in include/lumivant/paramStore/, the C interfaces in include/lumivant/,
# the CMake package in lib/cmake/LumivantKit/, the guide and projects to copy in share/lumivant/.
include(CMakePackageConfigHelpers)
include(GNUInstallDirs)

set(kit_cmake_dir "${CMAKE_INSTALL_LIBDIR}/cmake/LumivantKit")
set(kit_include_dir "${CMAKE_INSTALL_INCLUDEDIR}/lumivant")

# The same names work installed or not: <lumivant/algorithm.h>, <arithmParamMgr.h> or <paramStore/arithmParamMgr.h>.
target_include_directories(ArithmParamMgr INTERFACE
    "$<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/src>"
    "$<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/src/paramStore>"
    "$<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/sdk/include>"
    "$<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>"
    "$<INSTALL_INTERFACE:${kit_include_dir}>"
    "$<INSTALL_INTERFACE:${kit_include_dir}/paramStore>")
add_library(Lumivant::ArithmParamMgr ALIAS ArithmParamMgr)

install(TARGETS ArithmParamMgr EXPORT LumivantKit
    LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT kit NAMELINK_COMPONENT kit)
list(TRANSFORM store_headers PREPEND "${PROJECT_SOURCE_DIR}/src/paramStore/" OUTPUT_VARIABLE kit_store_headers)
install(FILES ${kit_store_headers} DESTINATION "${kit_include_dir}/paramStore" COMPONENT kit)
install(FILES
    "${PROJECT_SOURCE_DIR}/sdk/include/lumivant/algorithm.h"
    "${PROJECT_SOURCE_DIR}/sdk/include/lumivant/dataSource.h"
    DESTINATION "${kit_include_dir}" COMPONENT kit)
install(FILES "${PROJECT_SOURCE_DIR}/docs/plugins.md"
    DESTINATION "${CMAKE_INSTALL_DATADIR}/lumivant" COMPONENT kit)
install(DIRECTORY "${PROJECT_SOURCE_DIR}/sdk/templates"
    DESTINATION "${CMAKE_INSTALL_DATADIR}/lumivant" COMPONENT kit)

install(EXPORT LumivantKit
    FILE LumivantKitTargets.cmake
    NAMESPACE Lumivant::
    DESTINATION "${kit_cmake_dir}" COMPONENT kit)
configure_package_config_file(
    "${PROJECT_SOURCE_DIR}/cmake/LumivantKitConfig.cmake.in"
    "${PROJECT_BINARY_DIR}/kit/LumivantKitConfig.cmake"
    INSTALL_DESTINATION "${kit_cmake_dir}"
    NO_SET_AND_CHECK_MACRO)
# The kit's version is that of the store's binary interface.
write_basic_package_version_file(
    "${PROJECT_BINARY_DIR}/kit/LumivantKitConfigVersion.cmake"
    VERSION 1.0.0
    COMPATIBILITY SameMajorVersion)
install(FILES
    "${PROJECT_BINARY_DIR}/kit/LumivantKitConfig.cmake"
    "${PROJECT_BINARY_DIR}/kit/LumivantKitConfigVersion.cmake"
    "${PROJECT_SOURCE_DIR}/cmake/LumivantKitPlugin.cmake"
    DESTINATION "${kit_cmake_dir}" COMPONENT kit)
