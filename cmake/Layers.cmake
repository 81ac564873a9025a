# One object library per row of tools/layers.txt but those of tools/, named kesu_<folder> with "/" written as "_".
# KESU_ALL_OBJECTS is what libkesu is made of; KESU_REACH_<folder> lists the folders whose objects a test of <folder> needs.

file(STRINGS ${CMAKE_SOURCE_DIR}/tools/layers.txt KESU_LAYER_ROWS REGEX "^[^#].*:")
list(FILTER KESU_LAYER_ROWS EXCLUDE REGEX "^tools/")
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/tools/layers.txt)

# Folders whose time can be felt: a record on the caller's thread, a frame of the popup, a picture. The others wait for disk,
# network and people; built with -Os they take half the room. The sanitized builds optimise only the former: half of
# their compile time is the optimiser's, and the tests that wait for code wait for these folders.
set(KESU_FAST_FOLDERS foundation support records device events delivery graphics uikit/render
  platform/linux/outbox)
set(KESU_FAST_OPTIONS)
if(KESU_SANITIZE)
  set(KESU_FAST_OPTIONS -O1)
endif()
set(KESU_SMALL_OPTIONS $<$<CONFIG:Release,RelWithDebInfo>:-Os>)
# Threads of ours may outlive main(): no object that they use may be destroyed when the process ends.
set(KESU_LIBRARY_WARNINGS $<$<CXX_COMPILER_ID:Clang>:-Wexit-time-destructors>)

macro(kesu_add_layers)
  set(KESU_FOLDERS)
  set(KESU_ALL_OBJECTS)
  foreach(row IN LISTS KESU_LAYER_ROWS)
    string(REGEX MATCH "^([^:]+):(.*)$" ignored "${row}")
    set(folder ${CMAKE_MATCH_1})
    separate_arguments(uses UNIX_COMMAND "${CMAKE_MATCH_2}")
    file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/src/${folder}/*.cpp)
    list(FILTER sources EXCLUDE REGEX "_test\\.cpp$")
    if(sources)
      string(REPLACE "/" "_" name ${folder})
      add_library(kesu_${name} OBJECT ${sources})
      target_link_libraries(kesu_${name} PRIVATE kesu_build ${KESU_SYSTEM_LIBRARIES})
      target_compile_options(kesu_${name} PRIVATE ${KESU_LIBRARY_WARNINGS})
      if(folder IN_LIST KESU_FAST_FOLDERS)
        target_compile_options(kesu_${name} PRIVATE ${KESU_FAST_OPTIONS})
      else()
        target_compile_options(kesu_${name} PRIVATE ${KESU_SMALL_OPTIONS})
      endif()
      list(APPEND KESU_FOLDERS ${folder})
      list(APPEND KESU_ALL_OBJECTS $<TARGET_OBJECTS:kesu_${name}>)
      set(KESU_REACH_${folder} ${folder})
      foreach(used IN LISTS uses)
        list(APPEND KESU_REACH_${folder} ${KESU_REACH_${used}})
      endforeach()
      list(REMOVE_DUPLICATES KESU_REACH_${folder})
    endif()
  endforeach()
endmacro()

# Adds the objects of folders and of everything they reach to a target.
function(kesu_link_folders target)
  set(reached)
  foreach(folder IN LISTS ARGN)
    list(APPEND reached ${KESU_REACH_${folder}})
  endforeach()
  list(REMOVE_DUPLICATES reached)
  foreach(folder IN LISTS reached)
    string(REPLACE "/" "_" name ${folder})
    target_sources(${target} PRIVATE $<TARGET_OBJECTS:kesu_${name}>)
  endforeach()
  target_link_libraries(${target} PRIVATE ${KESU_SYSTEM_LIBRARIES})
endfunction()
