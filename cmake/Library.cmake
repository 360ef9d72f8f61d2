# The library itself. Its sources lie in the folders of its parts; a new header or source is listed here.

add_library(vexautilutil_utils SHARED
    filesystem/FileSystem.cpp
    host/HostGuards.cpp
    host/Mutex.cpp
    host/StyleValue.cpp
    host/TaskProgressBar.cpp
    macro/BooleanMacroOption.cpp
    macro/MacroCommandAbstract.cpp
    macro/MacroCommandError.cpp
    macro/MacroOptionInterface.cpp
    macro/MacroOptionPerformer.cpp
    macro/MacroTokens.cpp
    macro/SetMacroOption.cpp
    macro/StringMacroOption.cpp
    macro/UInt64MacroOption.cpp
    processor/MacroCommandProcessorAbstract.cpp
    processor/NameValueAssignment.cpp
    text/Assignment.cpp
    text/NumberText.cpp
    textfile/AsciiFile.cpp
    textfile/AsciiFileError.cpp
    textfile/InvalidInstructionsException.cpp
    textfile/LineSplitter.cpp)
target_sources(vexautilutil_utils PUBLIC FILE_SET HEADERS BASE_DIRS include FILES
    include/vexautilutil/AsciiFile.h
    include/vexautilutil/BooleanMacroOption.h
    include/vexautilutil/Export.h
    include/vexautilutil/FileSystem.h
    include/vexautilutil/HostGuards.h
    include/vexautilutil/InvalidInstructionsException.h
    include/vexautilutil/MacroCommandAbstract.h
    include/vexautilutil/MacroCommandError.h
    include/vexautilutil/MacroCommandProcessorAbstract.h
    include/vexautilutil/MacroOptionInterface.h
    include/vexautilutil/MacroOptionPerformer.h
    include/vexautilutil/MacroTokens.h
    include/vexautilutil/Mutex.h
    include/vexautilutil/SetMacroOption.h
    include/vexautilutil/StringMacroOption.h
    include/vexautilutil/StyleValue.h
    include/vexautilutil/TaskProgressBar.h
    include/vexautilutil/UInt64MacroOption.h
    include/vexautilutil/vexautilutil.h)
vexa_shared_library(vexautilutil_utils NAME vexautilutil
    EXPORTS ${PROJECT_SOURCE_DIR}/cmake/vexautilutil_utils.map)
target_include_directories(vexautilutil_utils PRIVATE ${PROJECT_SOURCE_DIR})
target_link_libraries(vexautilutil_utils PUBLIC vexa::hostapi vexa::hostlibs Boost::headers Boost::filesystem)
if(VEXA_HOST_PREFIX)
    get_filename_component(host_library_dir ${VEXA_HOST_LIBRARY} DIRECTORY)
    set_property(TARGET vexautilutil_utils APPEND PROPERTY INSTALL_RPATH ${host_library_dir})
endif()
