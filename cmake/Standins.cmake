# What the platform's adapter libraries export, as far as the stand-ins have it.
set(HBA_FUNCTIONS
    HBA_LoadLibrary HBA_FreeLibrary HBA_GetNumberOfAdapters HBA_OpenAdapter HBA_CloseAdapter
    HBA_RefreshInformation HBA_GetAdapterName HBA_GetAdapterAttributes
    HBA_GetAdapterPortAttributes HBA_GetFcpTargetMapping HBA_GetPortAttributesByWWN
    HBA_SendScsiInquiry)
set(ISCSI_FUNCTIONS ReportActiveIScsiTargetMappingsW GetIScsiSessionListW)

# quista_add_standin(<target> <library> <folder> <functions>)
# Builds <folder>/<library>.dll from the objects of the stand-in <library>, with these exports.
function(quista_add_standin target library folder)
    list(JOIN ARGN "\n    " exports)
    set(definition ${CMAKE_CURRENT_BINARY_DIR}/${target}.def)
    file(CONFIGURE OUTPUT ${definition}
         CONTENT "LIBRARY ${library}.dll\nEXPORTS\n    ${exports}\n" @ONLY)
    add_library(${target} SHARED)
    # The empty expression keeps build types from adding folders of their own.
    set_target_properties(${target} PROPERTIES
        PREFIX "" OUTPUT_NAME ${library} RUNTIME_OUTPUT_DIRECTORY ${folder}$<0:>
        ARCHIVE_OUTPUT_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}/${target})
    target_link_libraries(${target} PRIVATE ${library}_objects quista_warnings)
    if(MSVC)
        target_link_options(${target} PRIVATE /DEF:${definition})
    else()
        target_sources(${target} PRIVATE ${definition})
    endif()
endfunction()
