# kelm_test_room(name USES room... [LIBRARIES lib...]): makes <name>_tests, the one program that holds the test classes
# of the folders that are added from here on. It links the rooms, and sees what they see.
function(kelm_test_room name)
  cmake_parse_arguments(ARG "" "" "USES;LIBRARIES" ${ARGN})
  add_executable(${name}_tests)
  kelm_rooms(used ${ARG_USES})
  target_link_libraries(${name}_tests PRIVATE kelm_test_main ${used} ${ARG_LIBRARIES})
  target_precompile_headers(${name}_tests REUSE_FROM kelm_test_main)
  set_target_properties(${name}_tests PROPERTIES
    UNITY_BUILD ${KELM_UNITY_TESTS}
    UNITY_BUILD_BATCH_SIZE 5
    RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/tests)
  set(KELM_TEST_ROOM ${name}_tests PARENT_SCOPE)
  # When the folders below have told of their classes.
  cmake_language(EVAL CODE "cmake_language(DEFER CALL kelm_moc ${name}_tests)")
endfunction()

# kelm_test(name [OPTIMIZED] [DEFINITIONS NAME=value...] [NEEDS target...] [TIMEOUT seconds])
#
# Adds the class of <name>.cpp to the room's program. CTest runs it by itself, as <folder>/<name>. The definitions hold
# for that file, and the targets are built before it runs. OPTIMIZED is for a class whose own code runs for seconds.
function(kelm_test name)
  cmake_parse_arguments(ARG "OPTIMIZED" "TIMEOUT" "DEFINITIONS;NEEDS" ${ARGN})
  set(file ${CMAKE_CURRENT_SOURCE_DIR}/${name}.cpp)
  target_sources(${KELM_TEST_ROOM} PRIVATE ${file})
  if(ARG_DEFINITIONS)
    set_source_files_properties(${file} TARGET_DIRECTORY ${KELM_TEST_ROOM} PROPERTIES
      COMPILE_DEFINITIONS "${ARG_DEFINITIONS}")
  endif()
  if(ARG_OPTIMIZED)
    # The precompiled header is of another optimization.
    set_source_files_properties(${file} TARGET_DIRECTORY ${KELM_TEST_ROOM} PROPERTIES
      COMPILE_OPTIONS $<$<CONFIG:Release>:-O3>
      SKIP_PRECOMPILE_HEADERS ON)
  endif()
  if(ARG_NEEDS)
    add_dependencies(${KELM_TEST_ROOM} ${ARG_NEEDS})
  endif()
  kelm_add_test(${name} PROGRAM ${KELM_TEST_ROOM} ARGUMENTS ${name} TIMEOUT ${ARG_TIMEOUT})
endfunction()

# kelm_add_test(name PROGRAM target [ARGUMENTS argument...] [TIMEOUT seconds] [SCALE factor])
#
# Tells CTest of <folder>/<name>, labelled with the folder, in a home folder of its own.
function(kelm_add_test name)
  cmake_parse_arguments(ARG "" "PROGRAM;TIMEOUT;SCALE" "ARGUMENTS" ${ARGN})
  if(NOT ARG_TIMEOUT)
    set(ARG_TIMEOUT 120)
  endif()
  if(NOT ARG_SCALE)
    set(ARG_SCALE 1)
  endif()
  math(EXPR timeout "${ARG_TIMEOUT} * ${KELM_TEST_PATIENCE}")
  file(RELATIVE_PATH folder ${PROJECT_SOURCE_DIR}/tests ${CMAKE_CURRENT_SOURCE_DIR})
  add_test(NAME ${folder}/${name} COMMAND ${ARG_PROGRAM} ${ARG_ARGUMENTS})
  set(home ${PROJECT_BINARY_DIR}/tests/home/${folder}/${name})
  # LC_ALL only names the encoding: what sorts and compares by locale is set by the test that needs it. The Qt platform
  # without a window system stands in for the desktop, at a fixed scale.
  set(environment
    QT_QPA_PLATFORM=offscreen QT_SCALE_FACTOR=${ARG_SCALE} LC_ALL=C.UTF-8
    LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/support/lsan.supp
    TSAN_OPTIONS=ignore_noninstrumented_modules=1:history_size=4:die_after_fork=0
    XDG_CONFIG_HOME=${home}/config XDG_DATA_HOME=${home}/data
    XDG_CACHE_HOME=${home}/cache XDG_STATE_HOME=${home}/state)
  set_tests_properties(${folder}/${name} PROPERTIES
    LABELS ${folder}
    TIMEOUT ${timeout}
    ENVIRONMENT "${environment}")
  set_property(GLOBAL APPEND_STRING PROPERTY KELM_TEST_INDEX "${folder}/${name} ${ARG_PROGRAM}\n")
endfunction()

# kelm_bench(name [USES room...] [LIBRARIES lib...]): one Google Benchmark program, bench/<folder>/<name>.cpp.
function(kelm_bench name)
  cmake_parse_arguments(ARG "" "" "USES;LIBRARIES" ${ARGN})
  add_executable(${name} ${name}.cpp)
  kelm_rooms(used ${ARG_USES})
  target_link_libraries(${name} PRIVATE kelm_options ${used} ${ARG_LIBRARIES} benchmark::benchmark)
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/bench)
  target_compile_definitions(${name} PRIVATE KELM_SOURCE_ROOT="${PROJECT_SOURCE_DIR}")
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bench)
  set_property(GLOBAL APPEND PROPERTY KELM_BENCHES ${name})
endfunction()

# kelm_fuzz(name USES room...): tests/fuzz/<name>_fuzz.cpp, whose `LLVMFuzzerTestOneInput` ends the process when
# something is wrong. A test runs it over tests/fuzz/corpus/<name>; with KELM_FUZZ the program <name>_fuzz is built as
# well, which goes on from there with libFuzzer.
function(kelm_fuzz name)
  cmake_parse_arguments(ARG "" "" "USES" ${ARGN})
  kelm_rooms(used ${ARG_USES})
  add_executable(${name}_corpus_test ${name}_fuzz.cpp corpus_main.cpp)
  target_link_libraries(${name}_corpus_test PRIVATE ${used})
  target_include_directories(${name}_corpus_test PRIVATE ${PROJECT_SOURCE_DIR}/tests)
  set_target_properties(${name}_corpus_test PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/tests/fuzz)
  kelm_add_test(${name}_corpus_test
    PROGRAM ${name}_corpus_test ARGUMENTS ${CMAKE_CURRENT_SOURCE_DIR}/corpus/${name} TIMEOUT 60)
  if(KELM_FUZZ)
    add_executable(${name}_fuzz ${name}_fuzz.cpp)
    target_link_libraries(${name}_fuzz PRIVATE ${used})
    target_include_directories(${name}_fuzz PRIVATE ${PROJECT_SOURCE_DIR}/tests)
    target_link_options(${name}_fuzz PRIVATE -fsanitize=fuzzer)
    set_target_properties(${name}_fuzz PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/fuzz)
    add_dependencies(kelm_fuzz ${name}_fuzz)
  endif()
endfunction()
