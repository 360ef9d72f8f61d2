# Installs each component of BUILD alone, under WORK: together they are the whole installation INSTALLED, and no file
# is in two of them.

set(together)
foreach(component IN ITEMS runtime development standin)
    set(prefix ${WORK}/${component})
    file(REMOVE_RECURSE ${prefix})
    execute_process(COMMAND ${CMAKE_COMMAND} --install ${BUILD} --prefix ${prefix} --component ${component}
        OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
    file(GLOB_RECURSE files RELATIVE ${prefix} ${prefix}/*)
    if(NOT files)
        message(SEND_ERROR "Nothing is in the component ${component}")
    endif()
    list(APPEND together ${files})
endforeach()

file(GLOB_RECURSE whole RELATIVE ${INSTALLED} ${INSTALLED}/*)
list(SORT whole)
list(SORT together)
if(NOT together STREQUAL whole)
    message(FATAL_ERROR "The components have\n${together}\nbut the whole installation is\n${whole}")
endif()
