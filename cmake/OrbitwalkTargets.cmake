# What every folder's CMakeLists.txt builds on: one interface target that carries the house's compiler
# settings, the external libraries, and the function that declares a test.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_VISIBILITY_PRESET hidden)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
    set(CMAKE_BUILD_TYPE Release)
endif()

# Where Debian's loader, compilers, pkg-config and CMake look below every prefix, so that the libraries of two machines
# stand side by side.
if(EXISTS /etc/debian_version AND CMAKE_LIBRARY_ARCHITECTURE AND NOT ANDROID)
    set(CMAKE_INSTALL_LIBDIR lib/${CMAKE_LIBRARY_ARCHITECTURE} CACHE PATH "Libraries, below the prefix")
endif()
set(CMAKE_INSTALL_DOCDIR share/doc/orbitwalk CACHE PATH "Docs, below the prefix")
include(GNUInstallDirs)

# The libraries and the tool stand side by side at the top of the build tree and find each other there.
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR})
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR})
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)

find_package(Threads REQUIRED)
find_package(OrbitwalkOpenCV REQUIRED COMPONENTS core imgproc video)

add_library(orbitwalk_settings INTERFACE)
# File sizes and directory entries beyond 32 bits on 32-bit machines too; without it their directories of large
# inodes cannot be read.
target_compile_definitions(orbitwalk_settings INTERFACE _FILE_OFFSET_BITS=64)
target_compile_features(orbitwalk_settings INTERFACE cxx_std_20)
# Contraction would fuse multiply and add on 64-bit ARM, and the record would differ between machines. The
# prefix keeps the paths of the machine that builds out of the errors that OpenCV reports.
target_compile_options(orbitwalk_settings INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wno-sign-conversion -Wformat=2 -Wnon-virtual-dtor
    -Woverloaded-virtual $<$<CXX_COMPILER_ID:Clang>:-Wthread-safety> -ffp-contract=off
    -ffile-prefix-map=${PROJECT_SOURCE_DIR}/=)
# The tests' compilers must not warn; an NDK's is another one.
if(NOT ANDROID)
    target_compile_options(orbitwalk_settings INTERFACE -Werror)
endif()
# Machines with pages of 16 KB load the libraries, too; elsewhere it costs some padding in the file. Both values: the
# first places the segments, the second ends what is made read-only after relocation at a page's end.
target_link_options(orbitwalk_settings INTERFACE LINKER:-z,max-page-size=16384 LINKER:-z,common-page-size=16384)
if(ORBITWALK_SANITIZE)
    # GCC's flow analysis calls members uninitialised that its instrumentation only hides, in <regex> for one.
    target_compile_options(orbitwalk_settings INTERFACE $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>
        -fsanitize=${ORBITWALK_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(orbitwalk_settings INTERFACE -fsanitize=${ORBITWALK_SANITIZE})
endif()

# What a program of a sanitizer build needs besides; nothing in the others.
add_library(orbitwalk_sanitized_program INTERFACE)
if(ORBITWALK_SANITIZE STREQUAL thread)
    # The code tells it of the order that it cannot see.
    target_compile_definitions(orbitwalk_settings INTERFACE ORBITWALK_THREAD_SANITIZER)
    add_library(thread_sanitized_opencv OBJECT ${PROJECT_SOURCE_DIR}/cmake/ThreadSanitizedOpenCV.cpp)
    target_link_libraries(thread_sanitized_opencv PRIVATE orbitwalk_settings OrbitwalkOpenCV::core)
    target_link_libraries(orbitwalk_sanitized_program INTERFACE OrbitwalkOpenCV::core)
    target_sources(orbitwalk_sanitized_program INTERFACE $<TARGET_OBJECTS:thread_sanitized_opencv>)
endif()

add_library(orbitwalk_headers INTERFACE)
target_include_directories(orbitwalk_headers INTERFACE
    ${PROJECT_SOURCE_DIR}/include
    ${PROJECT_SOURCE_DIR}/host/mp4writer/include)
# The log's and the properties' headers for hosts would hide those of an NDK.
if(NOT ANDROID)
    target_include_directories(orbitwalk_headers INTERFACE ${PROJECT_SOURCE_DIR}/host/platform/include)
endif()

# orbitwalk_engine_library(NAME EXPORTS SOURCE...)
# A shared library of the engine's objects and the sources, with the names that the version script EXPORTS lists.
function(orbitwalk_engine_library name exports)
    add_library(${name} SHARED ${ARGN})
    target_link_libraries(${name} PRIVATE orbitwalk_core PUBLIC $<BUILD_INTERFACE:orbitwalk_headers>)
    # Without them the five calls of docs/hosts.md are found where the library is loaded.
    if(ORBITWALK_BUILD_HOST)
        target_link_libraries(${name} PRIVATE OrbitwalkPlatform OrbitwalkMP4Writer)
    endif()
    # Calls inside the library stay inside it, whatever the loading program links first. The detached
    # post-processing thread may still be returning when a host calls dlclose, so the code stays mapped.
    target_link_options(${name} PRIVATE
        LINKER:-Bsymbolic-functions LINKER:-z,nodelete LINKER:--version-script=${exports})
    set_target_properties(${name} PROPERTIES LINK_DEPENDS ${exports})
endfunction()

# A test's program is linked in a quarter of the time by lld: the default linker also reads whatever each library needs in
# turn. It has nothing made read-only after relocation: lld 14 ends that on the larger pages' border, beyond what is mapped.
include(CheckLinkerFlag)
check_linker_flag(CXX -fuse-ld=lld ORBITWALK_LLD)

# orbitwalk_test(NAME [OWN_NEW] [ALONE] [ONE_THREAD] [THREADED filter] [NOT_SANITIZED] SOURCES file... [LIBRARIES lib...] [DEFINITIONS NAME=VALUE...]
#     [DEPENDS target...])
# Declares one GoogleTest program and registers its tests with CTest. A sanitizer build registers the program as one
# test: its processes take seconds to begin.
#   OWN_NEW        it replaces operator new; clang links its thread sanitizer's where it is asked to link C++.
#   ALONE          its files name things alike: each is compiled alone in a unity build too.
#   ONE_THREAD     what it tests has no threads of its own: the thread sanitizer's build does without it.
#   THREADED       the tests, as a filter, that the thread sanitizer's build runs: those of threads.
#   NOT_SANITIZED  what it tests is not this project's C++, or only as it is released: no sanitizer's build has it.
function(orbitwalk_test name)
    cmake_parse_arguments(ARG "OWN_NEW;ALONE;ONE_THREAD;NOT_SANITIZED" "THREADED" "SOURCES;LIBRARIES;DEFINITIONS;DEPENDS" ${ARGN})
    if((ARG_ONE_THREAD AND ORBITWALK_SANITIZE STREQUAL thread) OR (ARG_NOT_SANITIZED AND ORBITWALK_SANITIZE))
        return()
    endif()
    add_executable(${name} ${ARG_SOURCES})
    if(ARG_OWN_NEW AND ORBITWALK_SANITIZE STREQUAL thread)
        set_target_properties(${name} PROPERTIES LINKER_LANGUAGE C)
    endif()
    if(ARG_ALONE)
        set_target_properties(${name} PROPERTIES UNITY_BUILD OFF)
    endif()
    set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
    target_link_libraries(${name} PRIVATE orbitwalk_settings orbitwalk_sanitized_program ${ARG_LIBRARIES}
        GTest::gmock GTest::gtest_main)
    target_compile_definitions(${name} PRIVATE ${ARG_DEFINITIONS})
    if(ARG_DEPENDS)
        add_dependencies(${name} ${ARG_DEPENDS})
    endif()
    if(ORBITWALK_LLD)
        target_link_options(${name} PRIVATE -fuse-ld=lld LINKER:-z,norelro)
    endif()
    # Test code takes long to optimise and little to run.
    target_compile_options(${name} PRIVATE -O0)
    if(ORBITWALK_SANITIZE)
        if(ARG_THREADED AND ORBITWALK_SANITIZE STREQUAL thread)
            set(filter --gtest_filter=${ARG_THREADED})
        endif()
        add_test(NAME ${name} COMMAND ${name} ${filter})
        set_tests_properties(${name} PROPERTIES TIMEOUT 1800)
    else()
        gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 300)
    endif()
endfunction()
