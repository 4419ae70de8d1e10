# What every folder of the project shares: language level, warnings, the bundle, tests.

set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wconversion)
if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    # What C++20 allows and gcc says nothing about; Qt Test's and GoogleTest's macros need it.
    add_compile_options(-Wno-gnu-zero-variadic-macro-arguments)
endif()
if(VEXAWORD_WARNINGS_AS_ERRORS)
    add_compile_options(-Werror)
endif()
if(VEXAWORD_SANITIZE)
    add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
    add_link_options(-fsanitize=address,undefined)
else()
    # CIFs come from anywhere: what the compiler can do against an overrun buffer, it does.
    add_compile_options(-fstack-protector-strong -Wformat -Werror=format-security)
    add_compile_definitions($<$<NOT:$<CONFIG:Debug>>:_FORTIFY_SOURCE=2>)
    if(NOT APPLE)
        add_compile_options(-fstack-clash-protection)
        add_link_options(-Wl,-z,relro,-z,now)
    endif()
endif()
# Two builds in different folders give the same bytes.
add_compile_options("-ffile-prefix-map=${PROJECT_SOURCE_DIR}=." "-ffile-prefix-map=${CMAKE_BINARY_DIR}=./build")

set(VEXAWORD_CIF_COLLECTION "${PROJECT_SOURCE_DIR}/../shared/cif" CACHE PATH
    "CIFs to try the programs on; tests that want them say \"skipped\" where there is no such folder")

# The complete, runnable program is staged here; the folder can be copied anywhere.
set(VEXAWORD_BUNDLE_DIR "${CMAKE_BINARY_DIR}/bundle")

# vexa_add_executable(<name> <source>...)
# A program of the bundle.
function(vexa_add_executable name)
    add_executable(${name} ${ARGN})
    set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${VEXAWORD_BUNDLE_DIR}")
endfunction()

# vexa_add_library(<name> <source>...)
# A static library that others include as "<folder>/<header>.h".
function(vexa_add_library name)
    add_library(${name} STATIC ${ARGN})
    target_include_directories(${name} PUBLIC "$<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>")
endfunction()

# vexa_bundle_file(<source> [<folder below the bundle>])
# Copies one file into the bundle when it has changed.
function(vexa_bundle_file source)
    get_filename_component(source_path "${source}" ABSOLUTE)
    get_filename_component(name "${source}" NAME)
    set(target_dir "${VEXAWORD_BUNDLE_DIR}")
    if(ARGC GREATER 1)
        string(APPEND target_dir "/${ARGV1}")
    endif()
    add_custom_command(
        OUTPUT "${target_dir}/${name}"
        COMMAND ${CMAKE_COMMAND} -E make_directory "${target_dir}"
        COMMAND ${CMAKE_COMMAND} -E copy "${source_path}" "${target_dir}/${name}"
        DEPENDS "${source_path}"
        VERBATIM)
    string(MAKE_C_IDENTIFIER "bundle_${ARGV1}_${name}" target)
    add_custom_target(${target} ALL DEPENDS "${target_dir}/${name}")
endfunction()

# vexa_add_test(<name> LABELS <label>... [QT] [DISPLAY] [TIMEOUT <seconds>]
#               [SOURCES <source>...] [LIBRARIES <library>...] [DEPENDS <target>...])
# One test program, run by CTest. Its source is <name>.cpp unless SOURCES says otherwise.
# QT: it is a Qt Test program. DISPLAY: it gets an X server and a window manager of its own.
function(vexa_add_test name)
    cmake_parse_arguments(arg "QT;DISPLAY" "TIMEOUT" "LABELS;SOURCES;LIBRARIES;DEPENDS" ${ARGN})
    if(NOT arg_SOURCES)
        set(arg_SOURCES ${name}.cpp)
    endif()
    if(NOT arg_TIMEOUT)
        set(arg_TIMEOUT 120)
    endif()
    if(VEXAWORD_SANITIZE)
        math(EXPR arg_TIMEOUT "${arg_TIMEOUT} * 5")
    endif()
    add_executable(${name} ${arg_SOURCES})
    target_link_libraries(${name} PRIVATE ${arg_LIBRARIES})
    if(VEXAWORD_SANITIZE)
        target_sources(${name} PRIVATE "${PROJECT_SOURCE_DIR}/tests/support/keep_libraries.cpp")
        set_target_properties(${name} PROPERTIES ENABLE_EXPORTS ON)
    endif()
    target_compile_definitions(${name} PRIVATE
        VEXA_SOURCE_DIR="${PROJECT_SOURCE_DIR}"
        VEXA_BUNDLE_DIR="${VEXAWORD_BUNDLE_DIR}")
    if(arg_QT)
        set_target_properties(${name} PROPERTIES AUTOMOC ON)
    endif()
    if(arg_DEPENDS)
        add_dependencies(${name} ${arg_DEPENDS})
    endif()
    set(command $<TARGET_FILE:${name}>)
    if(arg_DISPLAY)
        list(PREPEND command "${PROJECT_SOURCE_DIR}/tools/with-display")
    endif()
    add_test(NAME ${name} COMMAND ${command})
    set_tests_properties(${name} PROPERTIES
        LABELS "${arg_LABELS}"
        TIMEOUT ${arg_TIMEOUT}
        ENVIRONMENT "VEXA_CIF_COLLECTION=${VEXAWORD_CIF_COLLECTION};LC_ALL=C.UTF-8;LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/lsan.supp:print_suppressions=0")
endfunction()
