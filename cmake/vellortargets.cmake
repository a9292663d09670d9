# How every library, plug-in, program and test of this project is made.
#
#   vellor_library(NAME [SHARED|MODULE] [QT] SOURCES ... [PUBLIC ...] [PRIVATE ...])
#   vellor_program(NAME [QT] SOURCES ... [PRIVATE ...])
#   vellor_test(NAME [QT] SOURCES ... [PRIVATE ...] [ENVIRONMENT ...])
#
# QT turns on moc and rcc. PUBLIC and PRIVATE name targets to link. Between the project's own
# libraries only the arrows of arrows.txt are allowed; anything else stops the configuration.

include_guard(GLOBAL)

set(VELLOR_OWN_LIBRARIES "")
file(STRINGS "${CMAKE_CURRENT_LIST_DIR}/arrows.txt" arrow_lines REGEX "^[a-z]")
foreach(line IN LISTS arrow_lines)
    string(REGEX REPLACE "[ \t]+" ";" fields "${line}")
    list(POP_FRONT fields own folder)
    list(APPEND VELLOR_OWN_LIBRARIES ${own})
    set(VELLOR_ARROWS_${own} ${fields})
endforeach()
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${CMAKE_CURRENT_LIST_DIR}/arrows.txt")

add_library(vellor_options INTERFACE)
target_compile_features(vellor_options INTERFACE cxx_std_17)
target_compile_options(vellor_options INTERFACE
    -Wall -Wextra -Wshadow=local -Wnon-virtual-dtor -fvisibility=hidden
    # Pictures are the same bytes on every machine: no contraction, no fast-math.
    -ffp-contract=off)
target_include_directories(vellor_options INTERFACE
    "${PROJECT_SOURCE_DIR}" "${PROJECT_SOURCE_DIR}/shared" "${PROJECT_SOURCE_DIR}/platform/include")
target_compile_definitions(vellor_options INTERFACE QT_DEPRECATED_WARNINGS)

# build/bin runs wherever it is moved to, and so does what is installed: shared libraries lie in lib/ beside the programs.
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)
set(CMAKE_INSTALL_RPATH "$ORIGIN/lib;$ORIGIN/../lib")

function(vellor_check_arrows name)
    foreach(used IN LISTS ARGN)
        if(used IN_LIST VELLOR_OWN_LIBRARIES AND NOT used IN_LIST VELLOR_ARROWS_${name})
            message(FATAL_ERROR "${name} may not use ${used}: see cmake/arrows.txt")
        endif()
    endforeach()
endfunction()

function(vellor_configure_target name)
    cmake_parse_arguments(arg "QT" "" "PUBLIC;PRIVATE" ${ARGN})
    target_link_libraries(${name} PRIVATE vellor_options PUBLIC ${arg_PUBLIC} PRIVATE ${arg_PRIVATE})
    set_target_properties(${name} PROPERTIES POSITION_INDEPENDENT_CODE ON)
    if(arg_QT)
        set_target_properties(${name} PROPERTIES AUTOMOC ON AUTORCC ON)
    endif()
endfunction()

function(vellor_library name)
    cmake_parse_arguments(arg "SHARED;MODULE;QT" "" "SOURCES;PUBLIC;PRIVATE" ${ARGN})
    if(NOT name IN_LIST VELLOR_OWN_LIBRARIES)
        message(FATAL_ERROR "${name} has no line in cmake/arrows.txt")
    endif()
    vellor_check_arrows(${name} ${arg_PUBLIC} ${arg_PRIVATE})
    set(kind STATIC)
    if(arg_SHARED)
        set(kind SHARED)
    elseif(arg_MODULE)
        set(kind MODULE)
    endif()
    set(qt "")
    if(arg_QT)
        set(qt QT)
    endif()
    add_library(${name} ${kind} ${arg_SOURCES})
    vellor_configure_target(${name} ${qt} PUBLIC ${arg_PUBLIC} PRIVATE ${arg_PRIVATE})
endfunction()

function(vellor_program name)
    cmake_parse_arguments(arg "QT" "" "SOURCES;PRIVATE" ${ARGN})
    set(qt "")
    if(arg_QT)
        set(qt QT)
    endif()
    add_executable(${name} ${arg_SOURCES})
    vellor_configure_target(${name} ${qt} PRIVATE ${arg_PRIVATE})
    set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/bin")
endfunction()

function(vellor_test name)
    if(NOT BUILD_TESTING)
        return()
    endif()
    cmake_parse_arguments(arg "QT" "" "SOURCES;PRIVATE;ENVIRONMENT" ${ARGN})
    set(qt "")
    if(arg_QT)
        set(qt QT)
    endif()
    add_executable(${name} ${arg_SOURCES})
    vellor_configure_target(${name} ${qt} PRIVATE ${arg_PRIVATE} GTest::gtest)
    set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/tests")
    add_test(NAME ${name} COMMAND ${name})
    set_tests_properties(${name} PROPERTIES TIMEOUT 300
        ENVIRONMENT
        "QT_QPA_PLATFORM=offscreen;LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/cmake/lsan.supp;${arg_ENVIRONMENT}")
endfunction()
