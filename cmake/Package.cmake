# Installs the files, and the CMake package for find_package(vexautilutil CONFIG). The components of an installation
# are:
#   runtime      the files that add-ons need to run
#   development  the files that add-ons need to be built
#   standin      the stand-in host, as a program and as a library

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/vexautilutil)

set(library_targets vexautilutil_utils)
if(VEXA_HOST_PREFIX)
    install(FILES cmake/FindVexaHost.cmake DESTINATION ${package_dir} COMPONENT development)
else()
    list(APPEND library_targets vexahostapi vexahostlibs)
endif()
install(TARGETS ${library_targets} EXPORT vexautilutilTargets
    LIBRARY COMPONENT runtime NAMELINK_COMPONENT development
    FILE_SET HEADERS COMPONENT development)
install(EXPORT vexautilutilTargets NAMESPACE vexa:: DESTINATION ${package_dir} COMPONENT development)
if(VEXA_BUILD_STANDIN)
    install(TARGETS vexastandin EXPORT vexautilutilStandinTargets
        LIBRARY COMPONENT standin
        FILE_SET HEADERS COMPONENT standin)
    if(TARGET vexa-standin)
        install(TARGETS vexa-standin EXPORT vexautilutilStandinTargets RUNTIME COMPONENT standin)
        install(FILES cmake/VexaCheck.cmake cmake/VexaMacroTests.cmake cmake/VexaSanitizedRunner.cmake
            DESTINATION ${package_dir} COMPONENT standin)
    endif()
    foreach(library IN ITEMS vexalayer vexaallocations)  # for the program alone, so that they are in their own folder
        if(TARGET ${library})
            install(TARGETS ${library} LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}/vexa-standin COMPONENT standin)
        endif()
    endforeach()
    install(EXPORT vexautilutilStandinTargets NAMESPACE vexa:: DESTINATION ${package_dir} COMPONENT standin)
endif()

configure_package_config_file(cmake/vexautilutilConfig.cmake.in vexautilutilConfig.cmake
    INSTALL_DESTINATION ${package_dir} NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(vexautilutilConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/vexautilutilConfig.cmake ${PROJECT_BINARY_DIR}/vexautilutilConfigVersion.cmake
    cmake/VexaAddOn.cmake cmake/VexaArguments.cmake DESTINATION ${package_dir} COMPONENT development)

# The pkg-config file, for builds without CMake. Its paths are relative to the file, so the installation can be moved.
file(RELATIVE_PATH pc_to_prefix ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
set(pc_host_libs -lvexahostlibs)
if(VEXA_HOST_PREFIX)
    set(pc_host_cflags -I${VEXA_HOST_INCLUDE_DIR})
    set(pc_host_libs ${VEXA_HOST_LIBRARY})
endif()
configure_file(cmake/vexautilutil.pc.in vexautilutil.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/vexautilutil.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
    COMPONENT development)
if(VEXA_BUILD_STANDIN)
    configure_file(cmake/vexastandin.pc.in vexastandin.pc @ONLY)
    install(FILES ${PROJECT_BINARY_DIR}/vexastandin.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT standin)
endif()
