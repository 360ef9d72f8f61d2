# Runs MACRO of the folder EXAMPLE with RUNNER and ADDON, in a copy of it at WORK, for it writes files. Checks its exit
# STATUS, that README.md shows what it prints, and the names LEFT in the folder. In batch mode: how much is shown of the
# status line depends on the speed of the machine.

file(REMOVE_RECURSE ${WORK})
file(COPY ${EXAMPLE}/${MACRO} ${EXAMPLE}/data DESTINATION ${WORK})
execute_process(COMMAND ${RUNNER} run ${MACRO} --addon ${ADDON} --batch WORKING_DIRECTORY ${WORK}
    RESULT_VARIABLE status OUTPUT_VARIABLE output ERROR_VARIABLE errors)
string(APPEND output "${errors}")
if(NOT status EQUAL STATUS OR output STREQUAL "")
    message(FATAL_ERROR "${MACRO}: exit status ${status} instead of ${STATUS}, or nothing printed\n${output}")
endif()
file(READ ${EXAMPLE}/README.md readme)
string(FIND "${readme}" "${output}" place)
if(place EQUAL -1)
    message(FATAL_ERROR "README.md does not show this output of ${MACRO}:\n${output}")
endif()
file(GLOB left RELATIVE ${WORK} ${WORK}/*)
if(NOT left STREQUAL LEFT)
    message(FATAL_ERROR "${MACRO} left ${left} instead of ${LEFT}")
endif()
