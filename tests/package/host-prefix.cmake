# Builds the library alone, from SOURCE with OPTIONS, against a copy of the host's headers and class libraries of
# INSTALLED, and installs it for the tests: under WORK/on-host.

file(REMOVE_RECURSE ${WORK}/host ${WORK}/on-host)
file(COPY ${INSTALLED}/include/vexa DESTINATION ${WORK}/host/include)
file(GLOB libraries ${INSTALLED}/${LIBDIR}/libvexahostlibs.so*)
file(COPY ${libraries} DESTINATION ${WORK}/host/lib)

set(build ${WORK}/build/host-prefix)
set(configure -S ${SOURCE} -B ${build} -DVEXA_HOST_PREFIX=${WORK}/host ${OPTIONS})
set(compile --build ${build} --parallel 2)
set(install --install ${build} --prefix ${WORK}/on-host)
foreach(step IN ITEMS configure compile install)
    execute_process(COMMAND ${CMAKE_COMMAND} ${${step}} COMMAND_ERROR_IS_FATAL ANY)
endforeach()

foreach(left_out IN ITEMS ${build}/hostlibs ${build}/standin ${build}/tests ${WORK}/on-host/include/vexa
        ${WORK}/on-host/include/vexastandin)
    if(EXISTS ${left_out})
        message(FATAL_ERROR "There is ${left_out}")
    endif()
endforeach()
file(GLOB libraries RELATIVE ${WORK}/on-host/${LIBDIR} ${WORK}/on-host/${LIBDIR}/*.so)
if(NOT libraries STREQUAL "libvexautilutil_utils.so")
    message(FATAL_ERROR "Installed are: ${libraries}")
endif()
