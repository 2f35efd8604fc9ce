include(GoogleTest)

# sonavault_library(name LINK ...): one static library of all the sources in this folder of src/.
function(sonavault_library name)
    cmake_parse_arguments(ARG "" "" "LINK" ${ARGN})
    file(GLOB sources CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/*.cpp" "${CMAKE_CURRENT_SOURCE_DIR}/*.h")
    add_library(${name} STATIC ${sources})
    target_include_directories(${name} PUBLIC "${CMAKE_SOURCE_DIR}/src")
    target_link_libraries(${name} PUBLIC ${ARG_LINK})
endfunction()

# sonavault_test(name LINK ... [SERIAL]): one GoogleTest program of all the sources in this folder, each of its tests a
# CTest test. SERIAL keeps tests that use the machine's fixed ports or a sound server from running side by side.
function(sonavault_test name)
    cmake_parse_arguments(ARG "SERIAL" "" "LINK" ${ARGN})
    file(GLOB sources CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/*.cpp" "${CMAKE_CURRENT_SOURCE_DIR}/*.h")
    add_executable(${name} ${sources})
    target_include_directories(${name} PRIVATE "${CMAKE_SOURCE_DIR}/tests")
    target_link_libraries(${name} PRIVATE ${ARG_LINK} test_support)
    set(properties TIMEOUT 300)
    if(ARG_SERIAL)
        list(APPEND properties RUN_SERIAL TRUE)
    endif()
    gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60 PROPERTIES ${properties})
endfunction()

# sonavault_fuzzer(name LINK ...): the libFuzzer target fuzz/<name>.cpp for one parser. Without libFuzzer it is a program
# that replays its corpus, fuzz/corpus/<name>/, which is also a test.
function(sonavault_fuzzer name)
    cmake_parse_arguments(ARG "" "" "LINK" ${ARGN})
    if(SONAVAULT_LIBFUZZER)
        add_executable(fuzz_${name} ${name}.cpp)
        target_link_options(fuzz_${name} PRIVATE -fsanitize=fuzzer)
    else()
        add_executable(fuzz_${name} ${name}.cpp ReplayMain.cpp)
    endif()
    target_link_libraries(fuzz_${name} PRIVATE ${ARG_LINK})
    if(SONAVAULT_TESTS)
        add_test(NAME fuzz.${name}_replays_its_corpus
                 COMMAND fuzz_${name} "${CMAKE_SOURCE_DIR}/fuzz/corpus/${name}")
    endif()
endfunction()

# sonavault_benchmark(name LINK ...): the Google Benchmark program bench/<name>.cpp.
function(sonavault_benchmark name)
    cmake_parse_arguments(ARG "" "" "LINK" ${ARGN})
    add_executable(bench_${name} ${name}.cpp)
    target_link_libraries(bench_${name} PRIVATE ${ARG_LINK} benchmark::benchmark)
endfunction()
