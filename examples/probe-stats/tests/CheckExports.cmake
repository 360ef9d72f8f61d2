# Checks that ADDON exports vexaAddOn and nothing else, as NM lists it.

execute_process(COMMAND ${NM} -D --defined-only --format=posix ${ADDON}
    RESULT_VARIABLE status OUTPUT_VARIABLE symbols)
if(NOT status EQUAL 0 OR NOT symbols MATCHES "^vexaAddOn [^\n]*\n$")
    message(FATAL_ERROR "exported are:\n${symbols}")
endif()
