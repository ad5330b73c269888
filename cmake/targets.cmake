# kelm_test(name [LIBRARIES lib...] [SOURCES file...] [ARGUMENTS argument...] [TIMEOUT seconds])
#
# Builds tests/<folder>/<name>.cpp into one test program, registered with CTest under <folder>/<name> and labelled with
# the folder, and run with the arguments. It links kelm_core unless LIBRARIES names something else.
function(kelm_test name)
  cmake_parse_arguments(ARG "" "TIMEOUT" "LIBRARIES;SOURCES;ARGUMENTS" ${ARGN})
  if(NOT ARG_LIBRARIES)
    set(ARG_LIBRARIES kelm_core)
  endif()
  if(NOT ARG_TIMEOUT)
    set(ARG_TIMEOUT 120)
  endif()
  math(EXPR ARG_TIMEOUT "${ARG_TIMEOUT} * ${KELM_TEST_PATIENCE}")
  file(RELATIVE_PATH folder ${PROJECT_SOURCE_DIR}/tests ${CMAKE_CURRENT_SOURCE_DIR})
  add_executable(${name} ${name}.cpp ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE ${ARG_LIBRARIES} kelm_test_support Qt6::Test)
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
  target_compile_definitions(${name} PRIVATE KELM_TEST_DATA="${CMAKE_CURRENT_SOURCE_DIR}/data")
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/tests/${folder})
  add_test(NAME ${folder}/${name} COMMAND ${name} ${ARG_ARGUMENTS})
  set(home ${PROJECT_BINARY_DIR}/tests/home/${name})
  set(environment
    QT_QPA_PLATFORM=offscreen QT_SCALE_FACTOR=1 LC_ALL=C.UTF-8
    LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/support/lsan.supp
    XDG_CONFIG_HOME=${home}/config XDG_DATA_HOME=${home}/data
    XDG_CACHE_HOME=${home}/cache XDG_STATE_HOME=${home}/state)
  # LC_ALL only names the encoding: what sorts and compares by locale is set by the test that needs it. The Qt platform
  # without a window system stands in for the desktop, at a fixed scale.
  set_tests_properties(${folder}/${name} PROPERTIES
    LABELS ${folder}
    TIMEOUT ${ARG_TIMEOUT}
    ENVIRONMENT "${environment}")
endfunction()

# kelm_bench(name [LIBRARIES lib...]): one Google Benchmark program, bench/<folder>/<name>.cpp.
function(kelm_bench name)
  cmake_parse_arguments(ARG "" "" "LIBRARIES" ${ARGN})
  if(NOT ARG_LIBRARIES)
    set(ARG_LIBRARIES kelm_core)
  endif()
  add_executable(${name} ${name}.cpp)
  target_link_libraries(${name} PRIVATE ${ARG_LIBRARIES} benchmark::benchmark)
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/bench)
  target_compile_definitions(${name} PRIVATE KELM_SOURCE_ROOT="${PROJECT_SOURCE_DIR}")
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bench)
  set_property(GLOBAL APPEND PROPERTY KELM_BENCHES ${name})
endfunction()

# Runs moc again when files join or leave a target: its step depends on the files of its last run, not on the list.
# To be called when the target has all its sources.
function(kelm_track_moc_files target)
  get_target_property(sources ${target} SOURCES)
  set(list ${CMAKE_CURRENT_BINARY_DIR}/${target}_sources.txt)
  set(known "")
  if(EXISTS ${list})
    file(READ ${list} known)
  endif()
  if(NOT known STREQUAL "${sources}")
    file(WRITE ${list} "${sources}")
    file(REMOVE ${CMAKE_CURRENT_BINARY_DIR}/${target}_autogen/timestamp)
  endif()
endfunction()

# kelm_fuzz(name): tests/fuzz/<name>_fuzz.cpp, whose `LLVMFuzzerTestOneInput` ends the process when something is wrong.
# A test runs it over tests/fuzz/corpus/<name>; with KELM_FUZZ the program <name>_fuzz is built as well, which goes on
# from there with libFuzzer.
function(kelm_fuzz name)
  add_executable(${name}_corpus_test ${name}_fuzz.cpp corpus_main.cpp)
  target_link_libraries(${name}_corpus_test PRIVATE kelm_core)
  set_target_properties(${name}_corpus_test PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/tests/fuzz)
  add_test(NAME fuzz/${name}_corpus_test COMMAND ${name}_corpus_test ${CMAKE_CURRENT_SOURCE_DIR}/corpus/${name})
  set_tests_properties(fuzz/${name}_corpus_test PROPERTIES
    LABELS fuzz
    TIMEOUT 60
    ENVIRONMENT "LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/support/lsan.supp")
  if(KELM_FUZZ)
    add_executable(${name}_fuzz ${name}_fuzz.cpp)
    target_link_libraries(${name}_fuzz PRIVATE kelm_core)
    target_link_options(${name}_fuzz PRIVATE -fsanitize=fuzzer)
    set_target_properties(${name}_fuzz PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/fuzz)
    add_dependencies(kelm_fuzz ${name}_fuzz)
  endif()
endfunction()
