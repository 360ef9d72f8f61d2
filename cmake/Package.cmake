# Installing, and the CMake package that find_package(vexautilutil CONFIG) finds.

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/vexautilutil)

install(TARGETS vexahostapi vexahostlibs vexautilutil_utils EXPORT vexautilutilTargets FILE_SET HEADERS)
install(EXPORT vexautilutilTargets NAMESPACE vexa:: DESTINATION ${package_dir})
if(VEXA_BUILD_STANDIN)
    install(TARGETS vexastandin EXPORT vexautilutilStandinTargets FILE_SET HEADERS)
    if(TARGET vexa-standin)
        install(TARGETS vexa-standin EXPORT vexautilutilStandinTargets)
        install(FILES cmake/VexaCheck.cmake DESTINATION ${package_dir})
    endif()
    install(EXPORT vexautilutilStandinTargets NAMESPACE vexa:: DESTINATION ${package_dir})
endif()

configure_package_config_file(cmake/vexautilutilConfig.cmake.in vexautilutilConfig.cmake
    INSTALL_DESTINATION ${package_dir} NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(vexautilutilConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/vexautilutilConfig.cmake ${PROJECT_BINARY_DIR}/vexautilutilConfigVersion.cmake
    DESTINATION ${package_dir})

# pkg-config, for those who do not build with CMake. Its paths are relative to the file, so the tree can move.
file(RELATIVE_PATH pc_to_prefix ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
configure_file(cmake/vexautilutil.pc.in vexautilutil.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/vexautilutil.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
