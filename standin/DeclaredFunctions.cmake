# Writes to OUTPUT a line DECLARED(NAME) for each function that the host's header HEADER declares.

file(STRINGS ${HEADER} declarations REGEX "^VEXA_HOST_API ")
set(lines "")
foreach(declaration IN LISTS declarations)
    if(NOT declaration MATCHES "(VexaUtil[A-Za-z0-9]+)\\(")
        message(FATAL_ERROR "${HEADER}: expected a function VexaUtil... in: ${declaration}")
    endif()
    string(APPEND lines "DECLARED(${CMAKE_MATCH_1})\n")
endforeach()
file(WRITE ${OUTPUT} "${lines}")
