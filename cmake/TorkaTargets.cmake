# SPDX-License-Identifier: Apache-2.0
# One place for the compiler's rules and for how a folder becomes a library, a test or a fuzz target.

add_library(torka_options INTERFACE)
target_include_directories(torka_options INTERFACE ${CMAKE_SOURCE_DIR}/src ${CMAKE_SOURCE_DIR})
target_compile_options(torka_options INTERFACE
    -Wall -Wextra -Wpedantic $<$<BOOL:${TORKA_WERROR}>:-Werror> -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor
    -Wold-style-cast -Wcast-qual -Wformat=2 -Wundef -Wnull-dereference)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # g++ 12 reports null dereferences and buffer overreads in its own headers once they are inlined.
    target_compile_options(torka_options INTERFACE -Wno-null-dereference -Wno-restrict -Wno-stringop-overread)
elseif(CMAKE_CXX_COMPILER_VERSION VERSION_GREATER_EQUAL 15)
    # clang reports the deprecated buffer inside stable_sort of g++ 12's library as if we had called it. g++ and
    # clang 14 report what we call.
    target_compile_options(torka_options INTERFACE -Wno-deprecated-declarations)
endif()
# clang 17 and later take it that a class has one table of virtual functions in a process, and let dynamic_cast to a final
# class compare its address. Host and bundle each have their own.
if(CMAKE_CXX_COMPILER_ID MATCHES "Clang" AND CMAKE_CXX_COMPILER_VERSION VERSION_GREATER_EQUAL 17)
    target_compile_options(torka_options INTERFACE -fno-assume-unique-vtables)
endif()
if(TORKA_SANITIZE)
    set(torka_sanitizers -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_compile_options(torka_options INTERFACE ${torka_sanitizers})
    target_link_options(torka_options INTERFACE ${torka_sanitizers})
    if(TORKA_LIBFUZZER)
        target_compile_options(torka_options INTERFACE -fsanitize=fuzzer-no-link)
    endif()
endif()

# Hardening. The library's own checks of indexes and empty containers stay on in every build. The other flags are
# defaults. CMake writes a packager's flags in front of a target's, where ours would win: each is left out where the
# packager has one of its kind.
include(CheckCXXCompilerFlag)
include(CheckCXXSourceCompiles)
include(CheckPIESupported)
check_pie_supported(LANGUAGES C CXX)
set(given_flags "${CMAKE_CXX_FLAGS} ${CMAKE_EXE_LINKER_FLAGS} ${CMAKE_SHARED_LINKER_FLAGS} ${CMAKE_MODULE_LINKER_FLAGS}")
target_compile_definitions(torka_options INTERFACE _GLIBCXX_ASSERTIONS)
# A packager may give linker flags to one kind of target only; the other kinds keep ours.
set(flag_kinds EXE SHARED MODULE)
set(target_types EXECUTABLE SHARED_LIBRARY MODULE_LIBRARY)
foreach(kind type IN ZIP_LISTS flag_kinds target_types)
    set(given_to_linker "${CMAKE_CXX_FLAGS} ${CMAKE_${kind}_LINKER_FLAGS}")
    set(is_kind "$<STREQUAL:$<TARGET_PROPERTY:TYPE>,${type}>")
    if(NOT given_to_linker MATCHES "-z,(no)?relro")
        target_link_options(torka_options INTERFACE $<${is_kind}:-Wl,-z,relro>)
    endif()
    if(NOT given_to_linker MATCHES "-z,(now|lazy)")
        target_link_options(torka_options INTERFACE $<${is_kind}:-Wl,-z,now>)
    endif()
endforeach()
if(NOT TORKA_SANITIZE)
    if(NOT given_flags MATCHES "-f(no-)?stack-protector")
        target_compile_options(torka_options INTERFACE -fstack-protector-strong)
    endif()
    check_cxx_compiler_flag(-fstack-clash-protection TORKA_HAS_STACK_CLASH_PROTECTION)
    if(TORKA_HAS_STACK_CLASH_PROTECTION AND NOT given_flags MATCHES "-f(no-)?stack-clash-protection")
        target_compile_options(torka_options INTERFACE -fstack-clash-protection)
    endif()
    # A packager's flags, or the compiler itself, may have chosen a level: a second definition would be an error. Asked
    # at every configuration, since the flags may change.
    unset(TORKA_FORTIFY_IS_FREE CACHE)
    set(CMAKE_REQUIRED_FLAGS "${CMAKE_CXX_FLAGS_RELEASE}")
    set(CMAKE_REQUIRED_QUIET ON)
    check_cxx_source_compiles("
        #ifdef _FORTIFY_SOURCE
        #error
        #endif
        int main() { return 0; }" TORKA_FORTIFY_IS_FREE)
    unset(CMAKE_REQUIRED_FLAGS)
    unset(CMAKE_REQUIRED_QUIET)
    if(TORKA_FORTIFY_IS_FREE)
        target_compile_definitions(torka_options INTERFACE $<$<CONFIG:Release>:_FORTIFY_SOURCE=2>)
    endif()
endif()

# torka_library(NAME FOLDER... [LIBS lib...]): every .cpp directly in the folders becomes one static library.
function(torka_library name)
    cmake_parse_arguments(arg "" "" "LIBS" ${ARGN})
    set(sources)
    foreach(folder IN LISTS arg_UNPARSED_ARGUMENTS)
        file(GLOB found CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${folder}/*.cpp)
        list(APPEND sources ${found})
    endforeach()
    if(sources)
        add_library(${name} STATIC ${sources})
        target_link_libraries(${name} PUBLIC torka_options ${arg_LIBS})
    else()
        add_library(${name} INTERFACE)
        target_link_libraries(${name} INTERFACE torka_options ${arg_LIBS})
    endif()
endfunction()

# Several files make one unit, where most of a file's time goes into the headers that all of them share.
function(torka_unity target files)
    if(TORKA_UNITY)
        set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE ${files})
    endif()
endfunction()

# torka_tests(AREA [EACH [COST N]] lib...): tests/AREA/*.cpp becomes the program test_AREA. ctest runs it once, as
# unit.AREA; with EACH it runs every case on its own: for cases that wait for other programs, which others can run beside.
# ctest begins with the highest costs.
function(torka_tests area)
    cmake_parse_arguments(PARSE_ARGV 1 arg "EACH" "COST" "")
    if(NOT arg_COST)
        set(arg_COST 40)
    endif()
    file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${area}/*.cpp)
    if(NOT sources)
        return()
    endif()
    add_executable(test_${area} ${sources})
    target_link_libraries(test_${area} PRIVATE ${arg_UNPARSED_ARGUMENTS} torka_test_support GTest::gmock GTest::gtest_main)
    # Built far more often than run. Without optimisation the C library's own checks of lengths would only warn.
    target_compile_options(test_${area} PRIVATE -O0 -U_FORTIFY_SOURCE)
    torka_unity(test_${area} 6)
    target_compile_definitions(test_${area} PRIVATE
        TORKA_SOURCE_DIR="${CMAKE_SOURCE_DIR}" TORKA_BINARY_DIR="${CMAKE_BINARY_DIR}")
    if(arg_EACH)
        # The environment has the language of the texts that they expect.
        gtest_discover_tests(test_${area} DISCOVERY_MODE PRE_TEST PROPERTIES TIMEOUT 900 COST ${arg_COST}
            ENVIRONMENT LC_ALL=C.UTF-8)
    else()
        add_test(NAME unit.${area} COMMAND test_${area} --gtest_brief=1)
        # The cost lets ctest begin with them, since they take longest.
        set_tests_properties(unit.${area} PROPERTIES TIMEOUT 900 COST 60 ENVIRONMENT LC_ALL=C.UTF-8)
    endif()
endfunction()

# torka_fuzz(NAME lib...): fuzz/NAME.cpp. With libFuzzer a fuzzer; otherwise a program that replays the files and
# folders it is given, registered as a test over fuzz/corpus/NAME.
function(torka_fuzz name)
    add_executable(fuzz_${name} ${name}.cpp)
    target_link_libraries(fuzz_${name} PRIVATE ${ARGN})
    if(TORKA_LIBFUZZER)
        target_link_options(fuzz_${name} PRIVATE -fsanitize=fuzzer)
    else()
        target_sources(fuzz_${name} PRIVATE Replay.cpp)
        add_test(NAME fuzz.${name} COMMAND fuzz_${name} ${CMAKE_CURRENT_SOURCE_DIR}/corpus/${name})
        set_tests_properties(fuzz.${name} PROPERTIES TIMEOUT 300)
    endif()
endfunction()
