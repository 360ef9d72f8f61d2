# Installs BUILD for the tests under WORK: once to stay, and once to be moved after.

file(REMOVE_RECURSE ${WORK})
foreach(prefix IN ITEMS installed moving)
    execute_process(COMMAND ${CMAKE_COMMAND} --install ${BUILD} --prefix ${WORK}/${prefix} COMMAND_ERROR_IS_FATAL ANY)
endforeach()
file(RENAME ${WORK}/moving ${WORK}/moved)
