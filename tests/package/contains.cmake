# Checks that the file TEXT contains the text of the file PART; with COMMENT, as an example in a header comment.

file(READ ${TEXT} text)
file(READ ${PART} part)
if(COMMENT)
    set(prefix "///     ")
    string(REGEX REPLACE "\n$" "" part "${part}")
    string(REPLACE "\n" "\n${prefix}" part "${prefix}${part}")
    string(REGEX REPLACE " +\n" "\n" part "${part}")
endif()
string(FIND "${text}" "${part}" position)
if(position EQUAL -1)
    message(FATAL_ERROR "${TEXT} does not contain the text of ${PART}")
endif()
