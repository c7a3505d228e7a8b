# The two OpenCV modules that the algorithms use, as OpenCV::core and OpenCV::imgproc.
#
# Debian's own package file comes with all modules and their hundreds of dependencies; the pack needs only
# libopencv-core-dev and libopencv-imgproc-dev, which are found by header and library.
find_path(OPENCV_INCLUDE_DIR opencv2/imgproc.hpp PATH_SUFFIXES opencv4)
find_library(OPENCV_CORE_LIBRARY opencv_core)
find_library(OPENCV_IMGPROC_LIBRARY opencv_imgproc)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(OpenCvPieces
    REQUIRED_VARS OPENCV_INCLUDE_DIR OPENCV_CORE_LIBRARY OPENCV_IMGPROC_LIBRARY)

if(OpenCvPieces_FOUND AND NOT TARGET OpenCV::core)
    foreach(module core imgproc)
        string(TOUPPER ${module} upper)
        add_library(OpenCV::${module} SHARED IMPORTED)
        set_target_properties(OpenCV::${module} PROPERTIES
            IMPORTED_LOCATION "${OPENCV_${upper}_LIBRARY}"
            INTERFACE_INCLUDE_DIRECTORIES "${OPENCV_INCLUDE_DIR}")
    endforeach()
    target_link_libraries(OpenCV::imgproc INTERFACE OpenCV::core)
endif()
