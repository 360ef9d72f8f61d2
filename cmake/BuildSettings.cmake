# Compiler settings for all targets of this project. Users of the installed package do not get them.

set(CMAKE_C_STANDARD 11)
set(CMAKE_C_STANDARD_REQUIRED ON)
set(CMAKE_C_EXTENSIONS OFF)
if(NOT CMAKE_CXX_STANDARD)  # scripts/compilers also builds with later ones
    set(CMAKE_CXX_STANDARD 17)
endif()
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
# The build id depends on the paths in a file, so the same sources must give the same paths in every folder.
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)
set(CMAKE_C_VISIBILITY_PRESET hidden)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)

set(vexa_c_warnings -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wcast-align -Wcast-qual
    -Wformat=2 -Wundef)
set(vexa_cxx_warnings ${vexa_c_warnings} -Wnon-virtual-dtor -Woverloaded-virtual -Wold-style-cast -Wextra-semi)
if(CMAKE_UNITY_BUILD AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # The warning means types in headers, and takes the sources of a unity build for headers.
    set(unity_warnings -Wno-subobject-linkage)
endif()

add_library(vexa_build_settings INTERFACE)
target_compile_options(vexa_build_settings INTERFACE
    "$<$<COMPILE_LANGUAGE:C>:${vexa_c_warnings}>"
    "$<$<COMPILE_LANGUAGE:CXX>:${vexa_cxx_warnings};${unity_warnings}>"
    $<$<BOOL:${VEXA_WARNINGS_AS_ERRORS}>:-Werror>)

# The headers of the standard library that take longest to compile and that most sources include. Each source includes
# what it uses all the same: clang-tidy compiles without precompiled headers.
set(vexa_precompiled_headers <algorithm> <chrono> <functional> <memory> <mutex> <optional> <string> <unordered_map>
    <vector>)

if(VEXA_SANITIZE)
    # The first sanitizer finding ends the program, so that the test fails.
    add_compile_options(-fsanitize=${VEXA_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${VEXA_SANITIZE})
endif()
if(VEXA_COVERAGE)
    add_compile_options(-fprofile-instr-generate -fcoverage-mapping)
    add_link_options(-fprofile-instr-generate)
endif()

# vexa_shared_library(TARGET NAME EXPORTS MAP)
#   Sets the properties of a shared library of this project. NAME is its name in the namespace vexa::. MAP is the
#   linker's list of exported names; without it, instantiations of the standard library would be exported, too.
function(vexa_shared_library target)
    cmake_parse_arguments(arg "" "NAME;EXPORTS" "" ${ARGN})
    add_library(vexa::${arg_NAME} ALIAS ${target})
    target_compile_features(${target} PUBLIC cxx_std_17)
    target_link_libraries(${target} PRIVATE $<BUILD_INTERFACE:vexa_build_settings>)
    # Calls inside a library are direct, because no other library may replace its functions. Calls of another library
    # are bound at load time, so they need no stub.
    target_compile_options(${target} PRIVATE -fno-semantic-interposition -fno-plt)
    target_link_options(${target} PRIVATE -Wl,--version-script=${arg_EXPORTS} -Wl,-z,relro,-z,now)
    set_target_properties(${target} PROPERTIES
        EXPORT_NAME ${arg_NAME}
        VERSION ${PROJECT_VERSION}
        SOVERSION ${PROJECT_VERSION_MAJOR}
        INSTALL_RPATH $ORIGIN
        LINK_DEPENDS ${arg_EXPORTS})
endfunction()
