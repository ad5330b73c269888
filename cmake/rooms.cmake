# kelm_room(path ABOUT sentence [USES room...] [VIEW_USES room...] [LIBRARIES lib...] [VIEW_LIBRARIES lib...]
#   [ALONE file...])
#
# A room is a folder of src/ that is a link target of its own: kelm_<path> for the files in it, which know no widget,
# and kelm_<path>_view for those in its view/ folder. Files are found; a folder below is another room. USES names all
# rooms that the files include, VIEW_USES those that the views include beside their own engine; a view of another room
# is named as <path>/view.
#
# Sources are compiled in batches. What ALONE names is not: it has constants of the same names as others, or operators
# that hide those of others.
#
# A room sees the headers of what it uses and no others: they are reached through a folder of links for each target.
# What a room uses is seen by those that use it as well, since headers include headers; ./kelm lint names what is
# included without having been declared.
function(kelm_room path)
  cmake_parse_arguments(PARSE_ARGV 1 ARG "" "ABOUT" "USES;VIEW_USES;LIBRARIES;VIEW_LIBRARIES;ALONE")
  file(RELATIVE_PATH here ${PROJECT_SOURCE_DIR}/src ${CMAKE_CURRENT_SOURCE_DIR})
  if(NOT here STREQUAL path OR NOT ARG_ABOUT OR ARG_UNPARSED_ARGUMENTS)
    message(FATAL_ERROR "kelm_room(${path}) stands in src/${here}, or lacks its sentence")
  endif()
  kelm_room_part(${path} Gui "${ARG_ABOUT}" "${ARG_USES}" "${ARG_LIBRARIES}")
  set(engine ${path})
  if(NOT TARGET ${KELM_PART})
    set(engine "")
  endif()
  kelm_room_part(${path}/view Widgets "${ARG_ABOUT}" "${engine};${ARG_VIEW_USES}" "${ARG_VIEW_LIBRARIES}")
  if(ARG_ALONE)
    set_source_files_properties(${ARG_ALONE} TARGET_DIRECTORY ${KELM_PART} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
  endif()
endfunction()

# The target of one folder, if there are sources in it; KELM_PART is its name.
function(kelm_room_part folder toolkit about uses libraries)
  kelm_part_target(${folder} part)
  set(KELM_PART ${part} PARENT_SCOPE)
  file(GLOB headers CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/src/${folder}/*.h)
  file(GLOB sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/src/${folder}/*.cpp)
  if(NOT sources)
    return()
  endif()

  set(links ${PROJECT_BINARY_DIR}/rooms/${part})
  file(REMOVE_RECURSE ${links})
  file(MAKE_DIRECTORY ${links}/${folder})
  foreach(header IN LISTS headers)
    cmake_path(GET header FILENAME name)
    file(CREATE_LINK ${header} ${links}/${folder}/${name} SYMBOLIC)
  endforeach()

  add_library(${part} ${headers} ${sources})
  target_include_directories(${part} PUBLIC ${links})
  set_target_properties(${part} PROPERTIES UNITY_BUILD ${KELM_UNITY_SOURCES} UNITY_BUILD_BATCH_SIZE 10)
  target_precompile_headers(${part} REUSE_FROM kelm_headers_of_${toolkit})
  target_link_libraries(${part} PUBLIC kelm_options Qt6::${toolkit} PRIVATE ${libraries})
  # The headers that are compiled beforehand serve those only that are compiled as they were.
  set_target_properties(${part} PROPERTIES DEFINE_SYMBOL "")
  list(REMOVE_ITEM uses "")
  foreach(used IN LISTS uses)
    kelm_part_target(${used} target)
    target_link_libraries(${part} PUBLIC ${target})
  endforeach()
  kelm_moc(${part})

  set_property(GLOBAL APPEND PROPERTY KELM_ROOM_PARTS ${folder})
  set_property(GLOBAL PROPERTY KELM_ABOUT_${folder} "${about}")
  set_property(GLOBAL PROPERTY KELM_USES_${folder} "${uses}")
  set_property(GLOBAL PROPERTY KELM_HEADERS_${folder} "${headers}")
endfunction()

function(kelm_part_target folder result)
  string(REPLACE "/" "_" name kelm_${folder})
  set(${result} ${name} PARENT_SCOPE)
endfunction()

# The targets of the named rooms, for programs.
function(kelm_rooms result)
  set(targets)
  foreach(folder IN LISTS ARGN)
    kelm_part_target(${folder} target)
    list(APPEND targets ${target})
  endforeach()
  set(${result} ${targets} PARENT_SCOPE)
endfunction()

# kelm_check_rooms(): when all rooms are there: that none is missing, that arrows make no circle, and what each must not
# see. Writes rooms.txt, a line a part: its folder, what it uses, its sentence.
function(kelm_check_rooms)
  get_property(parts GLOBAL PROPERTY KELM_ROOM_PARTS)
  set(text "")
  foreach(part IN LISTS parts)
    get_property(uses GLOBAL PROPERTY KELM_USES_${part})
    get_property(about GLOBAL PROPERTY KELM_ABOUT_${part})
    foreach(used IN LISTS uses)
      if(NOT used IN_LIST parts)
        message(FATAL_ERROR " kelm: src/${part} uses ${used}, which is no room")
      endif()
    endforeach()
    string(REPLACE ";" " " uses "${uses}")
    string(APPEND text "${part}|${uses}|${about}\n")
  endforeach()
  file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/rooms.txt CONTENT "${text}" @ONLY)

  # Those whose uses are all behind us come next, until none is left.
  set(waiting ${parts})
  while(waiting)
    set(left)
    foreach(part IN LISTS waiting)
      get_property(uses GLOBAL PROPERTY KELM_USES_${part})
      set(seen ${uses})
      foreach(used IN LISTS uses)
        if(used IN_LIST waiting)
          list(APPEND left ${part})
          break()
        endif()
        list(APPEND seen ${seen_${used}})
      endforeach()
      list(REMOVE_DUPLICATES seen)
      set(seen_${part} ${seen})
    endforeach()
    if(left STREQUAL waiting)
      kelm_tell_circle(${left})
    endif()
    set(waiting ${left})
  endwhile()

  if(BUILD_SHARED_LIBS)
    foreach(part IN LISTS parts)
      kelm_forbid(${part} ${part} ${seen_${part}})
    endforeach()
  endif()
endfunction()

# Fails with the names of a circle, of parts of which each uses another of them.
function(kelm_tell_circle first)
  set(road)
  set(part ${first})
  while(NOT part IN_LIST road)
    list(APPEND road ${part})
    get_property(uses GLOBAL PROPERTY KELM_USES_${part})
    foreach(used IN LISTS uses)
      if(used IN_LIST ARGV)
        set(part ${used})
      endif()
    endforeach()
  endwhile()
  list(FIND road ${part} start)
  list(SUBLIST road ${start} -1 road)
  list(JOIN road " -> " text)
  message(FATAL_ERROR " kelm: rooms use each other in a circle: ${text} -> ${part}")
endfunction()

# A file in the target of the part that does not compile when a header can be included of a room that is not allowed, or
# cannot of one that is.
function(kelm_forbid part)
  get_property(parts GLOBAL PROPERTY KELM_ROOM_PARTS)
  kelm_part_target(${part} target)
  set(text "// Made by cmake/rooms.cmake: what src/${part} may include and what not.\n")
  foreach(other IN LISTS parts)
    get_property(headers GLOBAL PROPERTY KELM_HEADERS_${other})
    if(headers)
      list(GET headers 0 header)
      cmake_path(GET header FILENAME name)
      if(other IN_LIST ARGN)
        string(APPEND text "#if !__has_include(\"${other}/${name}\")\n"
          "#error \"src/${part} uses ${other} and does not see it\"\n#endif\n")
      else()
        string(APPEND text "#if __has_include(\"${other}/${name}\")\n"
          "#error \"src/${part} sees ${other} and does not use it\"\n#endif\n")
      endif()
    endif()
  endforeach()
  set(file ${PROJECT_BINARY_DIR}/rooms/${target}_sees.cpp)
  file(CONFIGURE OUTPUT ${file} CONTENT "${text}" @ONLY)
  target_sources(${target} PRIVATE ${file})
  set_source_files_properties(${file} TARGET_DIRECTORY ${target} PROPERTIES
    SKIP_UNITY_BUILD_INCLUSION ON SKIP_PRECOMPILE_HEADERS ON)
endfunction()

# What nearly every engine and nearly every view includes, compiled once for all rooms.
function(kelm_precompile toolkit header)
  set(name kelm_headers_of_${toolkit})
  set(source ${PROJECT_BINARY_DIR}/rooms/${name}.cpp)
  file(CONFIGURE OUTPUT ${source} CONTENT "// Made by cmake/rooms.cmake.\n" @ONLY)
  add_library(${name} STATIC ${source})
  target_link_libraries(${name} PRIVATE kelm_options Qt6::${toolkit})
  target_precompile_headers(${name} PRIVATE ${header})
endfunction()
