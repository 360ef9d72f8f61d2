# vexa_run_sanitized(TEST)
#   Lets the test TEST, which runs vexa-standin, load add-ons that are built with the address sanitizer by
#   CMAKE_CXX_FLAGS or add_compile_options(). The sanitizer's runtime must be the first library in a program, so the
#   test preloads it, unless vexa-standin was built with the sanitizer.
function(vexa_run_sanitized test)
    get_directory_property(options COMPILE_OPTIONS)
    get_target_property(own_sanitizers vexa::standin_runner VEXA_SANITIZE)
    if(NOT "${CMAKE_CXX_FLAGS} ${options}" MATCHES "-fsanitize=[a-z,]*address" OR own_sanitizers MATCHES "address")
        return()
    endif()
    set(runtime libasan.so)
    if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
        set(runtime libclang_rt.asan-${CMAKE_SYSTEM_PROCESSOR}.so)
    endif()
    execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${runtime}
        OUTPUT_VARIABLE runtime OUTPUT_STRIP_TRAILING_WHITESPACE)
    set_property(TEST ${test} APPEND PROPERTY ENVIRONMENT LD_PRELOAD=${runtime})
endfunction()

# vexa_sanitizer_in_use(RESULT)
#   Sets RESULT to true if CMAKE_CXX_FLAGS, add_compile_options() or the build of vexa-standin enable a sanitizer that has
#   an allocator of its own.
function(vexa_sanitizer_in_use result)
    get_directory_property(options COMPILE_OPTIONS)
    get_target_property(own_sanitizers vexa::standin_runner VEXA_SANITIZE)
    set(${result} FALSE PARENT_SCOPE)
    if("${CMAKE_CXX_FLAGS} ${options}" MATCHES "-fsanitize=[a-z,]*(address|thread|memory|leak)"
            OR own_sanitizers MATCHES "address|thread|memory|leak")
        set(${result} TRUE PARENT_SCOPE)
    endif()
endfunction()
