include_guard(GLOBAL)

# vexa_refuse_wrong_arguments(CALL)
#   Ends the configuration with what is wrong, where cmake_parse_arguments(... arg ...) met what it does not know, or a
#   keyword without its value. CALL says whose arguments they are.
function(vexa_refuse_wrong_arguments call)
    if(arg_UNPARSED_ARGUMENTS)
        message(FATAL_ERROR "${call} does not know: ${arg_UNPARSED_ARGUMENTS}")
    elseif(arg_KEYWORDS_MISSING_VALUES)
        message(FATAL_ERROR "${call} has no value for: ${arg_KEYWORDS_MISSING_VALUES}")
    endif()
endfunction()
