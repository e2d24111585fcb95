# Compares the names that a compiler with the platform's C++ ABI gives to the functions of
# quista/quista.h with the export list, both ways: every function is exported under its own name,
# and every export is declared.
# Arguments: CLANG, INCLUDE_DIR, STAND_IN_DIR, EXPORT_LIST.
cmake_minimum_required(VERSION 3.25)
include(${CMAKE_CURRENT_LIST_DIR}/clang_microsoft.cmake)

function(read_declared_names variable)
    clang_in_microsoft_mode(result output ${INCLUDE_DIR}/quista/quista.h
        -x c++ -fsyntax-only -Xclang -ast-dump=json)
    if(NOT result EQUAL 0)
        message(FATAL_ERROR "quista.h does not compile in Microsoft mode:\n${output}")
    endif()
    # Global functions: "?name@@Y...", and plain names where the linkage is C's.
    string(REGEX MATCHALL "\"mangledName\": \"(\\?[A-Za-z0-9_]+@@Y[^\"]*|[A-Za-z0-9_]+)\"" names
           "${output}")
    list(TRANSFORM names REPLACE "\"mangledName\": \"(.*)\"" "\\1")
    list(REMOVE_DUPLICATES names)
    set(${variable} "${names}" PARENT_SCOPE)
endfunction()

# A container's decorated name belongs to one standard library, so such a function is exported under
# the symbol of a MinGW build; here it is known by its own name alone.
function(bare_name variable symbol)
    string(REGEX MATCH "^_Z([0-9]+)" prefix ${symbol})
    set(length ${CMAKE_MATCH_1})
    string(LENGTH ${prefix} begin)
    string(SUBSTRING ${symbol} ${begin} ${length} name)
    set(${variable} ${name} PARENT_SCOPE)
endfunction()

read_declared_names(declared)
list(LENGTH declared count)
if(count EQUAL 0)
    message(FATAL_ERROR "no functions were found in quista.h")
endif()

set(problems)
file(STRINGS ${EXPORT_LIST} lines REGEX "^[a-z]")
foreach(line IN LISTS lines)
    string(REGEX REPLACE "[ \t]+" ";" fields "${line}")
    list(GET fields 1 exported)
    set(matches)
    if(exported MATCHES "^_Z")
        bare_name(name ${exported})
        set(matches ${declared})
        list(FILTER matches INCLUDE REGEX "^\\?${name}@@Y.*@std@@")
    elseif(exported IN_LIST declared)
        set(matches ${exported})
    endif()
    list(LENGTH matches found)
    if(found EQUAL 1)
        list(REMOVE_ITEM declared ${matches})
    else()
        list(APPEND problems "exported but not declared so: ${exported}")
    endif()
endforeach()
foreach(name IN LISTS declared)
    list(APPEND problems "declared but not exported: ${name}")
endforeach()

if(problems)
    list(JOIN problems "\n  " text)
    message(FATAL_ERROR "quista.h and the export list differ:\n  ${text}")
endif()
message("${count} functions have their exported names")
