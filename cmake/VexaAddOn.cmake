include(${CMAKE_CURRENT_LIST_DIR}/VexaArguments.cmake)

# vexa_add_addon(NAME SOURCES file... [DESCRIPTION file] [CHECK ON|OFF]
#                [MACRO file...] [LEVEL n] [TIME seconds] [HOST file] [WARNINGS_AS_ERRORS] [WORKING_DIRECTORY folder])
#   Adds the add-on NAME: a target that builds NAME.so, which a host loads. It exports only vexaAddOn and links the
#   library. Add other libraries by target_link_libraries(NAME PRIVATE ...). An installed add-on searches them in its
#   own folder, unless CMAKE_INSTALL_RPATH or its property INSTALL_RPATH is set.
#
#   DESCRIPTION is the description of the add-on's commands. It is copied to NAME.commands.json beside the add-on, where
#   vexa-standin finds it. The check reads the original, so its messages name the file to edit.
#
#   Also adds the test NAME-keeps-the-contract, which checks the add-on, if BUILD_TESTING is on and the package's
#   component standin was requested. CHECK OFF omits the test. The arguments after CHECK are those of vexa_add_check().
#   Without a MACRO, the test only loads the add-on.
function(vexa_add_addon name)
    set(check_values LEVEL TIME HOST WORKING_DIRECTORY)
    cmake_parse_arguments(PARSE_ARGV 1 arg "WARNINGS_AS_ERRORS" "CHECK;DESCRIPTION;${check_values}" "SOURCES;MACRO")
    vexa_refuse_wrong_arguments("vexa_add_addon(${name})")
    if(NOT arg_SOURCES)
        message(FATAL_ERROR "vexa_add_addon(${name}) has no sources: vexa_add_addon(${name} SOURCES file...)")
    elseif(DEFINED arg_CHECK AND NOT arg_CHECK MATCHES "^(ON|OFF|TRUE|FALSE)$")
        message(FATAL_ERROR "vexa_add_addon(${name}): CHECK is ON or OFF, not ${arg_CHECK}")
    endif()

    add_library(${name} MODULE ${arg_SOURCES})
    target_link_libraries(${name} PRIVATE vexa::vexautilutil vexa::hostapi)
    # Hidden visibility is not enough: instantiations of the standard library would still be exported, and some of them
    # prevent the shared object from being unloaded.
    set(exports ${CMAKE_CURRENT_BINARY_DIR}/${name}.exports.map)
    file(CONFIGURE OUTPUT ${exports} CONTENT "{ global: vexaAddOn; local: *; };\n")
    target_link_options(${name} PRIVATE LINKER:--version-script=${exports})
    set_target_properties(${name} PROPERTIES
        PREFIX ""
        C_VISIBILITY_PRESET hidden
        CXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON
        LINK_DEPENDS ${exports}
        BUILD_RPATH_USE_ORIGIN ON)
    if(arg_DESCRIPTION)
        get_filename_component(description ${arg_DESCRIPTION} ABSOLUTE)
        set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${description})
        file(GENERATE OUTPUT $<TARGET_FILE_DIR:${name}>/${name}.commands.json INPUT ${description})
    endif()
    if(NOT DEFINED CMAKE_INSTALL_RPATH)
        set_target_properties(${name} PROPERTIES INSTALL_RPATH $ORIGIN)
    endif()

    if((DEFINED BUILD_TESTING AND NOT BUILD_TESTING) OR (DEFINED arg_CHECK AND NOT arg_CHECK))
        return()
    elseif(NOT TARGET vexa::standin_runner)
        message(STATUS "${name} is not checked: there is no vexa-standin, of the package's component standin")
        return()
    endif()
    set(check)
    foreach(option IN ITEMS ${check_values} DESCRIPTION MACRO)
        if(DEFINED arg_${option})
            list(APPEND check ${option} ${arg_${option}})
        endif()
    endforeach()
    if(arg_WARNINGS_AS_ERRORS)
        list(APPEND check WARNINGS_AS_ERRORS)
    endif()
    vexa_add_check(${name}-keeps-the-contract ${name} ${check})
endfunction()
