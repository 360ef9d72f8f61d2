# vexa_test_program(NAME SOURCES file... [LIBRARIES target...])
#   Adds a GoogleTest program that links the stand-in host and RapidCheck.
function(vexa_test_program name)
    cmake_parse_arguments(arg "" "" "SOURCES;LIBRARIES" ${ARGN})
    add_executable(${name} ${arg_SOURCES})
    target_link_libraries(${name} PRIVATE vexa_build_settings ${arg_LIBRARIES} vexa::standin
        GTest::gtest_main rapidcheck)
    target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
    target_precompile_headers(${name} PRIVATE <gtest/gtest.h>)  # half of the time that most tests take to compile
    set(prefix "")
    if(VEXA_HOST_PREFIX)
        set(prefix TEST_PREFIX Foreign.)
    endif()
    gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST ${prefix})
endfunction()
