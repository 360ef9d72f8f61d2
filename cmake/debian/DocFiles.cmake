# Adds the files that Debian requires in each package (copyright, change log), and compresses the manual pages. CPack
# runs it after the installation and before it builds the packages.

string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)

function(pack file)
    execute_process(COMMAND gzip --best --no-name --force ${file} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

foreach(component IN LISTS CPACK_COMPONENTS_ALL)
    string(TOUPPER ${component} key)
    set(share ${CPACK_TEMPORARY_DIRECTORY}/${component}${CPACK_PACKAGING_INSTALL_PREFIX}/share)
    set(doc ${share}/doc/${CPACK_DEBIAN_${key}_PACKAGE_NAME})
    configure_file(${CMAKE_CURRENT_LIST_DIR}/copyright ${doc}/copyright COPYONLY)
    configure_file(${CPACK_VEXA_CHANGES} ${doc}/changelog COPYONLY)
    configure_file(${CMAKE_CURRENT_LIST_DIR}/changelog.in ${doc}/changelog.Debian @ONLY)
    file(GLOB pages ${share}/man/man*/*.[1-9])
    foreach(file IN ITEMS ${doc}/changelog ${doc}/changelog.Debian ${pages})
        pack(${file})
    endforeach()
endforeach()
