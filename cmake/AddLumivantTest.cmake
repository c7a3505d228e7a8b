# lumivant_add_test(NAME SOURCES … [LIBRARIES …] [DEPENDS …])
#
# One Qt Test program. Each runs in a folder of its own (build/test-run/NAME), where the program also lies, so that a
# test that needs discovery makes its plug-in folders beside it without meeting those of another test.
# The sanitizers must not trust what they note of the thread-local memory of libraries that are loaded later: with this C
# library the addresses can be wrong, and they end the program. The leak check finds that memory by way of its threads all
# the same.
set(LUMIVANT_ASAN_OPTIONS
    "detect_leaks=1:strict_string_checks=1:detect_stack_use_after_return=1:allocator_may_return_null=1:intercept_tls_get_addr=0")
set(LUMIVANT_TEST_ENV
    "QT_QPA_PLATFORM=offscreen"
    "QT_LOGGING_RULES=qt.qpa.*=false"
    "LC_ALL=C.UTF-8"
    "ASAN_OPTIONS=${LUMIVANT_ASAN_OPTIONS}"
    "UBSAN_OPTIONS=print_stacktrace=1"
    "LSAN_OPTIONS=suppressions=${CMAKE_SOURCE_DIR}/tests/lsan.supp:print_suppressions=0"
    "TSAN_OPTIONS=suppressions=${CMAKE_SOURCE_DIR}/tests/tsan.supp:second_deadlock_stack=1:history_size=4:allocator_may_return_null=1:intercept_tls_get_addr=0")

# Seconds until a test that hangs is ended; under a sanitizer a test computes for up to twenty times as long.
set(LUMIVANT_TEST_TIMEOUT 300)
if(LUMIVANT_SANITIZE)
    set(LUMIVANT_TEST_TIMEOUT 1500)
    list(APPEND LUMIVANT_TEST_ENV "QTEST_FUNCTION_TIMEOUT=1400000")  # milliseconds; Qt's own limit is 300 s
endif()
# An emulator is slow, too, and a test that starts itself once more needs it for that.
if(CMAKE_CROSSCOMPILING)
    set(LUMIVANT_TEST_TIMEOUT 3000)
    string(REPLACE ";" "|" emulator "${CMAKE_CROSSCOMPILING_EMULATOR}")
    list(APPEND LUMIVANT_TEST_ENV "LUMIVANT_TEST_EMULATOR=${emulator}" "QTEST_FUNCTION_TIMEOUT=2000000")
endif()

if(NOT TARGET lumivantTestHeaders)  # this file is read in each folder that has tests
    lumivant_header_owner(lumivantTestHeaders
        LIBRARIES lumivantTestSupport Qt5::Widgets Qt5::Test
        HEADERS ${LUMIVANT_TEST_HEADERS})
endif()

function(lumivant_add_test name)
    cmake_parse_arguments(arg "" "" "SOURCES;LIBRARIES;DEPENDS" ${ARGN})
    set(folder "${CMAKE_BINARY_DIR}/test-run/${name}")
    add_executable(${name} ${arg_SOURCES})
    target_link_libraries(${name} PRIVATE lumivantCore lumivantTestSupport lumivant_options Qt5::Test ${arg_LIBRARIES})
    set_target_properties(${name} PROPERTIES
        RUNTIME_OUTPUT_DIRECTORY "${folder}"
        BUILD_RPATH "${CMAKE_BINARY_DIR}/lib")
    lumivant_share_precompiled(${name} lumivantTestHeaders)
    if(arg_DEPENDS)
        add_dependencies(${name} ${arg_DEPENDS})
    endif()
    add_test(NAME ${name} COMMAND ${name} WORKING_DIRECTORY "${folder}")
    set_tests_properties(${name} PROPERTIES ENVIRONMENT "${LUMIVANT_TEST_ENV}" TIMEOUT ${LUMIVANT_TEST_TIMEOUT})
    if(LUMIVANT_QUICK)
        set_tests_properties(${name} PROPERTIES LABELS quick)
        add_dependencies(lumivantQuickTests ${name})
    endif()
endfunction()
