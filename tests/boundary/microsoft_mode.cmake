# Compiles each public header alone, and the record layouts, in Microsoft mode.
# Arguments: CLANG, INCLUDE_DIR, STAND_IN_DIR, SOURCES (one per header), LAYOUT.
cmake_minimum_required(VERSION 3.25)
include(${CMAKE_CURRENT_LIST_DIR}/clang_microsoft.cmake)

set(failed FALSE)
foreach(source IN LISTS SOURCES LAYOUT)
    clang_in_microsoft_mode(result output ${source} -Wall -Wextra -Werror -fsyntax-only)
    if(NOT result EQUAL 0)
        message("${source}:\n${output}")
        set(failed TRUE)
    endif()
endforeach()
if(failed OR NOT SOURCES)
    message(FATAL_ERROR "the public headers do not compile in Microsoft mode")
endif()
