# Libraries of the tools and tests. On Windows they come from the package manager. When
# cross-compiling they are header-only packages of the build machine, linked into the build folder
# so that none of the machine's other headers come into view.
if(NOT CMAKE_CROSSCOMPILING)
    find_package(CLI11 CONFIG REQUIRED)
    find_package(fmt CONFIG REQUIRED)
    find_package(nlohmann_json CONFIG REQUIRED)
    if(QUISTA_BUILD_TESTS)
        find_package(GTest CONFIG REQUIRED)
    endif()
    return()
endif()

function(quista_header_only_package target folder)
    set(include_dir ${CMAKE_BINARY_DIR}/third_party/${folder})
    file(MAKE_DIRECTORY ${include_dir})
    if(NOT EXISTS /usr/include/${folder})
        message(FATAL_ERROR "/usr/include/${folder} is missing; run scripts/setup")
    endif()
    file(CREATE_LINK /usr/include/${folder} ${include_dir}/${folder} SYMBOLIC)
    add_library(${target} INTERFACE IMPORTED GLOBAL)
    target_include_directories(${target} SYSTEM INTERFACE ${include_dir})
endfunction()

quista_header_only_package(CLI11::CLI11 CLI)
quista_header_only_package(nlohmann_json::nlohmann_json nlohmann)

# fmt's headers hold its definitions too; compiled once they halve the time that the tool takes.
quista_header_only_package(quista_fmt_headers fmt)
add_library(quista_fmt STATIC EXCLUDE_FROM_ALL ${CMAKE_CURRENT_LIST_DIR}/fmt.cpp)
target_compile_features(quista_fmt PUBLIC cxx_std_20)
target_link_libraries(quista_fmt PUBLIC quista_fmt_headers)
add_library(fmt::fmt ALIAS quista_fmt)

if(QUISTA_BUILD_TESTS)
    set(CMAKE_POLICY_DEFAULT_CMP0077 NEW)
    set(INSTALL_GTEST OFF)
    set(gtest_force_shared_crt ON)
    add_subdirectory(/usr/src/googletest ${CMAKE_BINARY_DIR}/third_party/googletest
                     EXCLUDE_FROM_ALL SYSTEM)
endif()
