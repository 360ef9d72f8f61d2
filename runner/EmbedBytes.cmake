# vexa_embed_bytes(FILE OUTPUT): writes the bytes of FILE to OUTPUT as a list of numbers, for an array. Configuring does
# it, and does it again when the file changes. A file that is not all ASCII is refused: its numbers would fit no char.
function(vexa_embed_bytes file output)
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${file})
    file(READ ${file} bytes HEX)
    string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1," bytes "${bytes}")
    if(bytes MATCHES "0x[89a-f]")
        message(FATAL_ERROR "${file} has bytes in it that are not ASCII")
    endif()
    string(REGEX REPLACE "(0x0a,)" "\\1\n" bytes "${bytes}")
    file(CONFIGURE OUTPUT ${output} CONTENT "${bytes}" @ONLY)
endfunction()
