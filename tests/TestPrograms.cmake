# Half of the time that most tests take to compile is GoogleTest's header. The first test program precompiles it for all,
# except with another host's class libraries: there the first program defines macros that others do not.
function(vexa_precompile_gtest name)
    get_property(first GLOBAL PROPERTY VEXA_FIRST_TEST_PROGRAM)
    if(first AND NOT VEXA_HOST_PREFIX)
        target_precompile_headers(${name} REUSE_FROM ${first})
    else()
        target_precompile_headers(${name} PRIVATE <gtest/gtest.h>)
        set_property(GLOBAL PROPERTY VEXA_FIRST_TEST_PROGRAM ${name})
    endif()
endfunction()

# vexa_test_program(NAME SOURCES file... [LIBRARIES target...])
#   Adds a GoogleTest program that links the stand-in host and RapidCheck.
function(vexa_test_program name)
    cmake_parse_arguments(arg "" "" "SOURCES;LIBRARIES" ${ARGN})
    add_executable(${name} ${arg_SOURCES})
    target_link_libraries(${name} PRIVATE vexa_build_settings ${arg_LIBRARIES} vexa::standin
        GTest::gtest_main rapidcheck)
    target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
    vexa_precompile_gtest(${name})
    set(prefix "")
    if(VEXA_HOST_PREFIX)
        set(prefix TEST_PREFIX Foreign.)
    endif()
    gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST ${prefix})
endfunction()
