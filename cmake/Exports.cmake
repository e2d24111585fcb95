# The export list (exports.txt) and what is made of it: the module-definition file that gives each
# function its exported name, and the import library through which MinGW callers link.
set(QUISTA_EXPORT_LIST ${PROJECT_SOURCE_DIR}/exports.txt)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${QUISTA_EXPORT_LIST})

# Writes the module-definition file `path`. In `direction` DLL a decorated name stands for the
# compiler's symbol; in `direction` IMPORT it is the other way round.
function(quista_write_module_definition path direction)
    file(STRINGS ${QUISTA_EXPORT_LIST} lines REGEX "^[a-z]")
    set(text "LIBRARY quista.dll\nEXPORTS\n")
    foreach(line IN LISTS lines)
        string(REGEX REPLACE "[ \t]+" ";" fields "${line}")
        list(GET fields 1 exported)
        list(GET fields 2 symbol)
        if(exported STREQUAL symbol)
            string(APPEND text "    \"${exported}\"\n")
        elseif(direction STREQUAL "DLL")
            string(APPEND text "    \"${exported}\" = ${symbol}\n")
        else()
            string(APPEND text "    ${symbol} == \"${exported}\"\n")
        endif()
    endforeach()
    file(GENERATE OUTPUT ${path} CONTENT "${text}")
endfunction()

set(QUISTA_DLL_DEFINITION ${CMAKE_BINARY_DIR}/quista.def)
set(QUISTA_IMPORT_DEFINITION ${CMAKE_BINARY_DIR}/quista_import.def)
quista_write_module_definition(${QUISTA_DLL_DEFINITION} DLL)
quista_write_module_definition(${QUISTA_IMPORT_DEFINITION} IMPORT)

# Adds a quista.dll built from the library's objects for one brand, placed in `output_dir`.
function(quista_add_dll target brand output_dir)
    add_library(${target} SHARED $<TARGET_OBJECTS:quista_objects>)
    set_target_properties(${target} PROPERTIES
        OUTPUT_NAME quista PREFIX ""
        RUNTIME_OUTPUT_DIRECTORY ${output_dir}
        ARCHIVE_OUTPUT_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}/${target}-unused)
    if(NOT brand STREQUAL "none")
        quista_add_version_resource(${target} ${brand})
    endif()
    target_link_libraries(${target} PRIVATE quista_platform)
    if(MINGW)
        target_sources(${target} PRIVATE ${QUISTA_DLL_DEFINITION})
    endif()
endfunction()

# Adds the target that callers link: the import library in lib/ and the public headers.
function(quista_add_import_library)
    add_library(quista INTERFACE)
    target_include_directories(quista INTERFACE ${PROJECT_SOURCE_DIR}/include)
    if(NOT MINGW)
        target_link_libraries(quista INTERFACE quista_dll)
        return()
    endif()
    set(library ${CMAKE_ARCHIVE_OUTPUT_DIRECTORY}/libquista.dll.a)
    add_custom_command(OUTPUT ${library}
        COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_ARCHIVE_OUTPUT_DIRECTORY}
        COMMAND ${CMAKE_DLLTOOL} -d ${QUISTA_IMPORT_DEFINITION} -l ${library}
        DEPENDS ${QUISTA_IMPORT_DEFINITION}
        COMMENT "Making the import library of quista.dll" VERBATIM)
    add_custom_target(quista_import_library ALL DEPENDS ${library})
    target_link_libraries(quista INTERFACE ${library})
    add_dependencies(quista quista_import_library quista_dll)
endfunction()
