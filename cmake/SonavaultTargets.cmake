include(GoogleTest)

# sonavault_library(name LINK ...): one static library of all the sources in this folder of src/.
function(sonavault_library name)
    cmake_parse_arguments(ARG "" "" "LINK" ${ARGN})
    file(GLOB sources CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/*.cpp" "${CMAKE_CURRENT_SOURCE_DIR}/*.h")
    add_library(${name} STATIC ${sources})
    target_include_directories(${name} PUBLIC "${CMAKE_SOURCE_DIR}/src")
    target_link_libraries(${name} PUBLIC ${ARG_LINK})
endfunction()

# A network of its own lets a test have the machine's fixed ports beside others. Not every machine gives one.
execute_process(COMMAND "${CMAKE_SOURCE_DIR}/tests/support/own_network" true RESULT_VARIABLE ownNetworkRefused
                OUTPUT_QUIET ERROR_QUIET)

# sonavault_test(name LINK ... [SERIAL] [OWN_NETWORK] [TIMEOUT seconds]): one GoogleTest program of all the sources in
# this folder, each of its tests a CTest test. SERIAL keeps tests that use the machine's fixed ports or a sound server
# from running side by side; OWN_NETWORK lets them, where the machine can give them a network.
function(sonavault_test name)
    cmake_parse_arguments(ARG "SERIAL;OWN_NETWORK" "TIMEOUT" "LINK" ${ARGN})
    file(GLOB sources CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/*.cpp" "${CMAKE_CURRENT_SOURCE_DIR}/*.h")
    add_executable(${name} ${sources})
    target_include_directories(${name} PRIVATE "${CMAKE_SOURCE_DIR}/tests")
    target_link_libraries(${name} PRIVATE ${ARG_LINK} test_support)
    if(NOT ARG_TIMEOUT)
        set(ARG_TIMEOUT 300)
    endif()
    set(properties TIMEOUT ${ARG_TIMEOUT})
    if(ARG_OWN_NETWORK AND NOT ownNetworkRefused)
        set_target_properties(${name} PROPERTIES
            CROSSCOMPILING_EMULATOR "${CMAKE_SOURCE_DIR}/tests/support/own_network")
    elseif(ARG_SERIAL OR ARG_OWN_NETWORK)
        list(APPEND properties RESOURCE_LOCK station)
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
