include_guard(GLOBAL)

# vexa_refuse_wrong_arguments(CALL)
#   Stops CMake with an error if cmake_parse_arguments(... arg ...) found an unknown argument, or a keyword without its
#   value. CALL is the name of the function in the error.
function(vexa_refuse_wrong_arguments call)
    if(arg_UNPARSED_ARGUMENTS)
        message(FATAL_ERROR "${call} does not know: ${arg_UNPARSED_ARGUMENTS}")
    elseif(arg_KEYWORDS_MISSING_VALUES)
        message(FATAL_ERROR "${call} has no value for: ${arg_KEYWORDS_MISSING_VALUES}")
    endif()
endfunction()
