# The version resource of quista.dll. Its CompanyName decides under which registry key the library
# looks for its log directory.
set(QUISTA_COMPANY_velmora "Velmora Storage")
set(QUISTA_COMPANY_pelmark "Pelmark Systems")

function(quista_add_version_resource target brand)
    if(DEFINED QUISTA_COMPANY_${brand})
        set(QUISTA_COMPANY_NAME ${QUISTA_COMPANY_${brand}})
    else()
        message(FATAL_ERROR "Unknown brand '${brand}': choose velmora or pelmark")
    endif()
    set(resource ${CMAKE_CURRENT_BINARY_DIR}/${target}.rc)
    configure_file(${PROJECT_SOURCE_DIR}/frame/quista.rc.in ${resource} @ONLY)
    target_sources(${target} PRIVATE ${resource})
endfunction()
