# Shared objects from sources with marked lines, for tests that look up these lines.

find_program(VEXA_GXX g++)
find_program(VEXA_CLANGXX NAMES clang++ clang++-14 clang++-19)
mark_as_advanced(VEXA_GXX VEXA_CLANGXX)

# vexa_marked_objects(NAME SOURCE [argument...]): builds SOURCE with g++ and, if it is there, with clang++, without and
# with optimization, without and with debug information. The arguments go to the compiler, too. Adds the target NAME,
# and sets the variable NAME to the files, COMPILER-OPTIMIZATION[-lines].so. They are custom commands, because a project
# has only one compiler of a language.
function(vexa_marked_objects name source)
    set(objects "")
    foreach(compiler IN ITEMS gxx clangxx)
        string(TOUPPER VEXA_${compiler} program)
        if(NOT ${program})
            continue()
        endif()
        foreach(variant IN ITEMS "O0" "O0-lines" "O2" "O2-lines")
            string(REPLACE "-lines" ";-g" flags "-${variant}")
            # Compilers number a file in another way if its path is relative.
            set(path ${source})
            if(variant MATCHES "O0")
                set(path ${CMAKE_CURRENT_SOURCE_DIR}/${source})
            endif()
            set(object ${CMAKE_CURRENT_BINARY_DIR}/${name}/${compiler}-${variant}.so)
            add_custom_command(OUTPUT ${object}
                COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_CURRENT_BINARY_DIR}/${name}
                COMMAND ${${program}} -std=c++17 -shared -fPIC -fvisibility=hidden ${flags}
                    ${path} -o ${object} ${ARGN}
                DEPENDS ${source}
                WORKING_DIRECTORY ${CMAKE_CURRENT_SOURCE_DIR}
                VERBATIM COMMAND_EXPAND_LISTS)
            list(APPEND objects ${object})
        endforeach()
    endforeach()
    add_custom_target(${name} ALL DEPENDS ${objects})
    set(${name} ${objects} PARENT_SCOPE)
endfunction()
