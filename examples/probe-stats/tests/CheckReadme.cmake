# Runs MACRO with RUNNER, its OPTIONS and ADDON, in the folder of README.md, and checks its exit STATUS, and that
# README.md shows what it prints. In batch mode: how much is shown of the status line depends on the speed of the
# machine.

execute_process(COMMAND ${RUNNER} run ${MACRO} --addon ${ADDON} ${OPTIONS} --batch
    RESULT_VARIABLE status OUTPUT_VARIABLE output ERROR_VARIABLE errors)
if(NOT status EQUAL STATUS)
    message(FATAL_ERROR "${MACRO}: exit status ${status} instead of ${STATUS}\n${output}${errors}")
endif()
if(output STREQUAL "")
    message(FATAL_ERROR "${MACRO}: printed nothing")
endif()
file(READ README.md readme)
foreach(text IN ITEMS "${output}" "${errors}")
    string(FIND "${readme}" "${text}" place)
    if(place EQUAL -1)
        message(FATAL_ERROR "README.md does not show this output of ${MACRO}:\n${text}")
    endif()
endforeach()
