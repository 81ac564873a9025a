# One object library a row of tools/layers.txt, named kesu_<folder> with "/" written as "_".
# KESU_ALL_OBJECTS is what libkesu is made of; KESU_REACH_<folder> lists the folders whose objects a test of <folder> needs.

file(STRINGS ${CMAKE_SOURCE_DIR}/tools/layers.txt KESU_LAYER_ROWS REGEX "^[^#].*:")
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/tools/layers.txt)

# Folders whose time can be felt: a record on the caller's thread, a frame of the popup, a picture. The others wait for disk,
# network and people; written small they take half of the room. Only where the compiler optimises at all.
set(KESU_FAST_FOLDERS foundation support records device events delivery graphics uikit/render)
set(KESU_SMALL $<$<CONFIG:Release,RelWithDebInfo>:-Os>)

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
      if(NOT folder IN_LIST KESU_FAST_FOLDERS)
        target_compile_options(kesu_${name} PRIVATE ${KESU_SMALL})
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

# Adds the objects of a folder and of all that it reaches to a target.
function(kesu_link_folder target folder)
  foreach(reached IN LISTS KESU_REACH_${folder})
    string(REPLACE "/" "_" name ${reached})
    target_sources(${target} PRIVATE $<TARGET_OBJECTS:kesu_${name}>)
  endforeach()
  target_link_libraries(${target} PRIVATE ${KESU_SYSTEM_LIBRARIES})
endfunction()
