# Debian packages, one for each component of the installation. `cpack -G DEB` builds them in a build tree of the preset
# deb, which uses Debian's paths. scripts/packages does both.

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_VENDOR ${PROJECT_NAME})
set(CPACK_PACKAGE_CONTACT "vexautilutil maintainers <maintainers@vexautilutil.example>" CACHE STRING
    "Who answers for the packages, as: NAME <ADDRESS>")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")  # each package has its own
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE
    WORLD_READ WORLD_EXECUTE)
set(CPACK_VERBATIM_VARIABLES ON)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS
    ${PROJECT_BINARY_DIR}/library ${PROJECT_BINARY_DIR}/hostlibs ${PROJECT_BINARY_DIR}/standin)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY >=)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/debian/DocFiles.cmake)
set(CPACK_VEXA_CHANGES ${PROJECT_SOURCE_DIR}/CHANGELOG.md)

# vexa_debian_package(COMPONENT NAME SECTION FIELD... DESCRIPTION summary line...)
#   Sets name, fields and description of a component's package. A FIELD is DEPENDS, RECOMMENDS or SUGGESTS, and its
#   value.
macro(vexa_debian_package component name section)
    cmake_parse_arguments(arg "" "DEPENDS;RECOMMENDS;SUGGESTS" "DESCRIPTION" ${ARGN})
    string(TOUPPER ${component} key)
    list(APPEND CPACK_COMPONENTS_ALL ${component})
    set(CPACK_DEBIAN_${key}_PACKAGE_NAME ${name})
    set(CPACK_DEBIAN_${key}_PACKAGE_SECTION ${section})
    if(NOT ${component} STREQUAL development)  # the only component without a shared library
        set(CPACK_DEBIAN_${key}_PACKAGE_CONTROL_EXTRA ${PROJECT_SOURCE_DIR}/cmake/debian/triggers)
    endif()
    foreach(field IN ITEMS DEPENDS RECOMMENDS SUGGESTS)
        set(CPACK_DEBIAN_${key}_PACKAGE_${field} ${arg_${field}})
    endforeach()
    list(JOIN arg_DESCRIPTION "\n" CPACK_DEBIAN_${key}_DESCRIPTION)
endmacro()

set(runtime libvexautilutil-utils${PROJECT_VERSION_MAJOR})
set(this_version "${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE}")
set(CPACK_COMPONENTS_ALL)
vexa_debian_package(runtime ${runtime} libs DESCRIPTION
    "building blocks for add-ons of a scientific-visualisation host"
    "Add-ons link this library to read the macro commands that the host hands them,"
    "to tell what is wrong with one, and to have them recorded and played back. It"
    "also reads text files line by line, with errors that name line and file."
    .
    "The class libraries of the host are included. Its functions are not: the"
    "process that loads an add-on supplies them.")
vexa_debian_package(development libvexautilutil-utils-dev libdevel
    DEPENDS "${runtime} (= ${this_version}), libboost-dev (>= 1.74), libboost-filesystem-dev (>= 1.74)"
    SUGGESTS vexa-standin
    DESCRIPTION
    "building blocks for add-ons of a scientific-visualisation host - headers"
    "What is needed to build an add-on: headers, the files to link with, a CMake"
    "package with vexa_add_addon(), and a pkg-config file."
    .
    "The package vexa-standin runs and tests add-ons where no host is installed.")
if(VEXA_BUILD_STANDIN)
    vexa_debian_package(standin vexa-standin devel
        DEPENDS "${runtime} (>= ${PROJECT_VERSION})"
        RECOMMENDS "libvexautilutil-utils-dev (= ${this_version})"
        SUGGESTS "cmake, g++, libgtest-dev, ninja-build"
        DESCRIPTION
        "runs, tests and checks add-ons without their host"
        "A stand-in for a scientific-visualisation host. The program vexa-standin runs"
        "macros of add-ons, records and plays them back, and checks that the add-ons"
        "keep the host's contract: it lets calls fail, presses stop, and says what an"
        "add-on did wrong and how to mend it."
        .
        "The library, with headers and a component of the CMake package, runs add-ons"
        "within their own tests.")
endif()

include(CPack)
