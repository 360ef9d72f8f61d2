# vexa_declared_functions(HEADER OUTPUT): writes to OUTPUT a line DECLARED(NAME) for each function that the host's header
# HEADER declares. Configuring does it, and does it again when the header changes, so that static checks find the file
# before anything is built.
function(vexa_declared_functions header output)
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${header})
    file(STRINGS ${header} declarations REGEX "^VEXA_HOST_API ")
    set(lines "")
    foreach(declaration IN LISTS declarations)
        if(NOT declaration MATCHES "(VexaUtil[A-Za-z0-9]+)\\(")
            message(FATAL_ERROR "${header}: expected a function VexaUtil... in: ${declaration}")
        endif()
        string(APPEND lines "DECLARED(${CMAKE_MATCH_1})\n")
    endforeach()
    file(CONFIGURE OUTPUT ${output} CONTENT "${lines}" @ONLY)
endfunction()
