include(${CMAKE_CURRENT_LIST_DIR}/VexaArguments.cmake)

# vexa_add_macro_tests(PREFIX TARGET FOLDER folder [ADDON target...] [STYLE file] [HOST file] [STRICT] [BATCH] [BUDGET]
#                      [WORKING_DIRECTORY folder] [COVERAGE name])
#   Adds the test PREFIX.NAME for each NAME.macro in FOLDER. It runs vexa-standin test, which compares the results of
#   the add-on TARGET with NAME.expected in the same folder. ADDON names other add-ons that the macros need. STYLE is
#   the file of the host's style settings. HOST is the facts file of the host to answer like. With STRICT, the test
#   fails if an add-on breaks the host's contract. With BUDGET, the test also compares what the commands cost with
#   NAME.budget, unless a sanitizer is on. The commands run in WORKING_DIRECTORY, by default the current binary folder.
#   With COVERAGE, the tests add what the add-ons used of the host's contract to NAME.json in the top binary folder, and
#   the target NAME shows this coverage and writes NAME.html beside the file. Several calls may have the same name. Each
#   run of ctest starts the file anew.
function(vexa_add_macro_tests prefix target)
    cmake_parse_arguments(PARSE_ARGV 2 arg "STRICT;BATCH;BUDGET" "FOLDER;STYLE;HOST;WORKING_DIRECTORY;COVERAGE" "ADDON")
    vexa_refuse_wrong_arguments("vexa_add_macro_tests(${prefix})")
    if(NOT arg_FOLDER)
        message(FATAL_ERROR "vexa_add_macro_tests(${prefix}) has no folder: FOLDER folder")
    endif()
    set(options)
    foreach(addon IN LISTS target arg_ADDON)
        if(NOT TARGET ${addon})
            message(FATAL_ERROR "vexa_add_macro_tests(${prefix}): there is no target ${addon}")
        endif()
        list(APPEND options --addon $<TARGET_FILE:${addon}>)
    endforeach()
    if(arg_STYLE)
        get_filename_component(style ${arg_STYLE} ABSOLUTE)
        list(APPEND options --style ${style})
    endif()
    if(arg_HOST)
        get_filename_component(host ${arg_HOST} ABSOLUTE)
        list(APPEND options --host ${host})
    endif()
    if(arg_STRICT)
        list(APPEND options --strict)
    endif()
    if(arg_BATCH)
        list(APPEND options --batch)
    endif()
    vexa_sanitizer_in_use(is_sanitized)
    if(arg_BUDGET AND NOT is_sanitized)
        list(APPEND options --budget)
    endif()
    if(arg_COVERAGE)
        vexa_add_coverage_target(${arg_COVERAGE})
        list(APPEND options --coverage ${CMAKE_BINARY_DIR}/${arg_COVERAGE}.json)
    endif()
    if(NOT arg_WORKING_DIRECTORY)
        set(arg_WORKING_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR})
    endif()

    get_filename_component(folder ${arg_FOLDER} ABSOLUTE)
    file(GLOB macros CONFIGURE_DEPENDS ${folder}/*.macro)
    if(NOT macros)
        message(FATAL_ERROR "vexa_add_macro_tests(${prefix}): there is no macro in ${folder}, NAME.macro")
    endif()
    foreach(macro IN LISTS macros)
        get_filename_component(name ${macro} NAME_WLE)
        add_test(NAME ${prefix}.${name} COMMAND vexa::standin_runner test ${macro} ${options}
            WORKING_DIRECTORY ${arg_WORKING_DIRECTORY})
        vexa_run_sanitized(${prefix}.${name})
        if(arg_COVERAGE)
            set_property(TEST ${prefix}.${name} APPEND PROPERTY FIXTURES_REQUIRED ${arg_COVERAGE})
        endif()
    endforeach()
endfunction()

# vexa_add_coverage_target(NAME)
#   Adds the target NAME, which shows the coverage in NAME.json in the top binary folder, and writes NAME.html there. The
#   test NAME.start deletes the file before the tests that need the fixture NAME. Does nothing if the target exists.
function(vexa_add_coverage_target name)
    if(TARGET ${name})
        return()
    endif()
    set(file ${CMAKE_BINARY_DIR}/${name}.json)
    add_custom_target(${name}
        COMMAND vexa::standin_runner coverage ${file} -o ${CMAKE_BINARY_DIR}/${name}.html
        VERBATIM)
    add_test(NAME ${name}.start COMMAND ${CMAKE_COMMAND} -E rm -f ${file})
    set_tests_properties(${name}.start PROPERTIES FIXTURES_SETUP ${name})
endfunction()
