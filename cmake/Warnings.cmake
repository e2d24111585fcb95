# The warnings that every target of the project is built with; all of them are errors.
add_library(quista_warnings INTERFACE)
if(MSVC)
    target_compile_options(quista_warnings INTERFACE /W4 /WX /permissive- /utf-8)
else()
    target_compile_options(quista_warnings INTERFACE
        -Wall -Wextra -Wpedantic -Werror
        -Wshadow -Wconversion -Wsign-conversion -Wold-style-cast -Wcast-qual -Wcast-align
        -Wnon-virtual-dtor -Woverloaded-virtual -Wundef -Wredundant-decls
        -Wduplicated-cond -Wduplicated-branches -Wlogical-op -Wextra-semi)
endif()
