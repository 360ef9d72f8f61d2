# Checks the error messages of vexa_add_addon().

if(CALL)
    include(${CMAKE_CURRENT_LIST_DIR}/../../cmake/VexaAddOn.cmake)
    vexa_add_addon(${CALL})
    return()
endif()

function(refuses call why)
    execute_process(COMMAND ${CMAKE_COMMAND} "-DCALL=${call}" -P ${CMAKE_CURRENT_FUNCTION_LIST_FILE}
        RESULT_VARIABLE status ERROR_VARIABLE message)
    string(REGEX REPLACE "[ \n]+" " " message "${message}")
    string(FIND "${message}" "${why}" position)
    if(status EQUAL 0 OR position EQUAL -1)
        message(SEND_ERROR "Expected '${why}' for: ${call}, but found: ${message}")
    endif()
endfunction()

refuses("stats" "vexa_add_addon(stats) has no sources")
refuses("stats;stats.cpp" "vexa_add_addon(stats) does not know: stats.cpp")
refuses("stats;SOURCES" "vexa_add_addon(stats) has no value for: SOURCES")
refuses("stats;SOURCES;stats.cpp;LEVEL" "vexa_add_addon(stats) has no value for: LEVEL")
refuses("stats;CHECK;OFF" "vexa_add_addon(stats) has no sources")
refuses("stats;SOURCES;stats.cpp;CHECK;perhaps" "vexa_add_addon(stats): CHECK is ON or OFF, not perhaps")
