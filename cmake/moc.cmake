# kelm_moc(target): one pass of moc over the files of a target that need it: headers, whose results are compiled as one
# file, and sources that include their own result as "<name>.moc". To be called in the target's folder when the target
# has all its sources. A file is read without what it includes, which is all that moc needs here and takes milliseconds;
# a class that becomes a QObject later is found in the next build.
function(kelm_moc target)
  set(folder ${PROJECT_BINARY_DIR}/moc/${target})
  get_target_property(files ${target} SOURCES)
  get_target_property(base ${target} SOURCE_DIR)
  list(FILTER files INCLUDE REGEX "\\.(h|cpp)$")
  list(TRANSFORM files PREPEND ${base}/ REGEX "^[^/]")
  string(JOIN "\n" text ${files})
  file(CONFIGURE OUTPUT ${folder}/files.txt CONTENT "${text}" @ONLY)
  add_custom_command(OUTPUT ${folder}/mocs.cpp
    COMMAND ${CMAKE_COMMAND} -D MOC=$<TARGET_FILE:Qt6::moc> -D FOLDER=${folder}
      -D ROOTS=${PROJECT_SOURCE_DIR}/src,${PROJECT_SOURCE_DIR}/tests -P ${PROJECT_SOURCE_DIR}/cmake/moc_pass.cmake
    DEPENDS ${folder}/files.txt ${PROJECT_SOURCE_DIR}/cmake/moc_pass.cmake ${files}
    COMMENT "moc for ${target}" VERBATIM)
  add_custom_target(${target}_moc DEPENDS ${folder}/mocs.cpp)
  target_sources(${target} PRIVATE ${folder}/mocs.cpp)
  target_include_directories(${target} PRIVATE ${folder})
  if(NOT TARGET kelm_moc)
    add_custom_target(kelm_moc)
  endif()
  add_dependencies(kelm_moc ${target}_moc)
endfunction()
