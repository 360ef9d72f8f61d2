# Finds the host maker's declarations and class libraries: vexa::hostapi and vexa::hostlibs.
#   VEXA_HOST_PREFIX   the folder with include/vexa/VexaUtil.h and lib/libvexahostlibs.so
#   VEXA_HOST_LIBRARY  the file of the class libraries, if it has another name or place

find_path(VEXA_HOST_INCLUDE_DIR vexa/VexaUtil.h PATHS ${VEXA_HOST_PREFIX}/include NO_DEFAULT_PATH NO_CACHE)
find_library(VEXA_HOST_LIBRARY vexahostlibs
    PATHS ${VEXA_HOST_PREFIX} PATH_SUFFIXES lib lib/${CMAKE_LIBRARY_ARCHITECTURE} NO_DEFAULT_PATH NO_CACHE)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(VexaHost REQUIRED_VARS VEXA_HOST_INCLUDE_DIR VEXA_HOST_LIBRARY
    REASON_FAILURE_MESSAGE "VEXA_HOST_PREFIX is '${VEXA_HOST_PREFIX}', but should be the folder with \
include/vexa/VexaUtil.h and lib/libvexahostlibs.so")

if(VexaHost_FOUND AND NOT TARGET vexa::hostapi)
    add_library(vexa::hostapi INTERFACE IMPORTED)
    target_include_directories(vexa::hostapi INTERFACE ${VEXA_HOST_INCLUDE_DIR})
    target_compile_features(vexa::hostapi INTERFACE cxx_std_17)

    add_library(vexa::hostlibs SHARED IMPORTED)
    set_target_properties(vexa::hostlibs PROPERTIES IMPORTED_LOCATION ${VEXA_HOST_LIBRARY})
    target_link_libraries(vexa::hostlibs INTERFACE vexa::hostapi)
endif()
