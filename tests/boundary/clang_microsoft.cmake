# Runs clang on a source as a compiler for the platform's own C++ ABI would read it. The standard
# library's headers are stand-ins that declare what the public headers name.
function(clang_in_microsoft_mode result output source)
    execute_process(
        COMMAND ${CLANG} --target=x86_64-pc-windows-msvc -fms-compatibility -std=c++20 -nostdinc++
                -isystem ${STAND_IN_DIR} -I ${INCLUDE_DIR} ${ARGN} ${source}
        RESULT_VARIABLE status OUTPUT_VARIABLE text ERROR_VARIABLE text)
    set(${result} "${status}" PARENT_SCOPE)
    set(${output} "${text}" PARENT_SCOPE)
endfunction()
