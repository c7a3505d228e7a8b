# Part of the plug-in kit: find_package(LumivantKit) defines this function.
#
#   lumivant_add_plugin(NAME
#       KIND algorithm|dataSource
#       [EXTENSION]            an algorithm that belongs to the extension folder
#       SOURCES file…
#       [LIBRARIES target…])   what the plug-in needs beside the store
#
# Makes NAME.so in the folder in which the workbench looks for its kind ("baseArithm", "extArithm" or "DataSource"),
# below LUMIVANT_PLUGIN_OUTPUT_DIR, the build folder unless it is set.
function(lumivant_add_plugin name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "EXTENSION" "KIND" "SOURCES;LIBRARIES")
    if(arg_UNPARSED_ARGUMENTS)
        message(FATAL_ERROR "lumivant_add_plugin(${name}): unknown arguments: ${arg_UNPARSED_ARGUMENTS}")
    endif()
    if(NOT arg_SOURCES)
        message(FATAL_ERROR "lumivant_add_plugin(${name}): SOURCES is missing")
    endif()
    if(arg_KIND STREQUAL "algorithm" AND arg_EXTENSION)
        set(folder extArithm)
    elseif(arg_KIND STREQUAL "algorithm")
        set(folder baseArithm)
    elseif(arg_KIND STREQUAL "dataSource" AND NOT arg_EXTENSION)
        set(folder DataSource)
    else()
        message(FATAL_ERROR "lumivant_add_plugin(${name}): KIND is algorithm (with or without EXTENSION) or dataSource")
    endif()

    set(output_dir "${CMAKE_BINARY_DIR}")
    if(LUMIVANT_PLUGIN_OUTPUT_DIR)
        set(output_dir "${LUMIVANT_PLUGIN_OUTPUT_DIR}")
    endif()

    add_library(${name} MODULE ${arg_SOURCES})
    target_compile_features(${name} PRIVATE cxx_std_17)
    target_link_libraries(${name} PRIVATE Lumivant::ArithmParamMgr ${arg_LIBRARIES})
    set_target_properties(${name} PROPERTIES
        PREFIX ""
        SUFFIX ".so"
        CXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON
        LIBRARY_OUTPUT_DIRECTORY "${output_dir}/${folder}")
    # A missing function shows here and not when the workbench loads the plug-in. Sanitizers leave theirs open.
    get_target_property(link_options ${name} LINK_OPTIONS)
    if(NOT "${CMAKE_CXX_FLAGS} ${CMAKE_MODULE_LINKER_FLAGS} ${link_options}" MATCHES "-fsanitize")
        target_link_options(${name} PRIVATE "LINKER:-z,defs")
    endif()
endfunction()
