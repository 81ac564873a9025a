# Unit tests lie beside what they test (src/<folder>/*_test.cpp): one program per top folder of src/, with its rooms.
# Tests of the whole library lie in tests/ and see include/kesu only. Shared doubles lie in testing/.
find_package(GTest REQUIRED)
find_package(Threads REQUIRED)

file(GLOB testing_sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/testing/*.cpp)
add_library(kesu_testing STATIC ${testing_sources})
target_link_libraries(kesu_testing PUBLIC kesu_build kesu_loopback GTest::gtest)

# Tests need not be fast themselves: what they test is compiled as it is shipped. One precompiled header serves all of
# them, made for this program that does nothing.
function(kesu_compile_as_test target)
  target_compile_options(${target} PRIVATE $<$<CONFIG:RelWithDebInfo>:-O0 -g1>)
  target_link_libraries(${target} PRIVATE kesu_testing GTest::gtest_main ${KESU_SYSTEM_LIBRARIES}
    ${KESU_DRAWING_LIBRARIES})
  target_link_options(${target} PRIVATE -fuse-ld=lld)
endfunction()
file(CONFIGURE OUTPUT ${CMAKE_BINARY_DIR}/generated/nothing.cpp CONTENT "int main() {}\n")
add_executable(kesu_test_headers ${CMAKE_BINARY_DIR}/generated/nothing.cpp)
kesu_compile_as_test(kesu_test_headers)
target_precompile_headers(kesu_test_headers PRIVATE <gtest/gtest.h> <functional> <memory> <string> <vector>)

# Adds a test program that links the objects of FOLDERS and of everything they reach.
function(kesu_add_test name)
  cmake_parse_arguments(arg "" "LABELS" "FOLDERS;SOURCES" ${ARGN})
  add_executable(${name} ${arg_SOURCES})
  kesu_compile_as_test(${name})
  target_precompile_headers(${name} REUSE_FROM kesu_test_headers)
  set_target_properties(${name} PROPERTIES UNITY_BUILD ON)  # Most of a test's compile time is spent in shared headers.
  kesu_link_folders(${name} ${arg_FOLDERS})
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES TIMEOUT 300)
  if(arg_LABELS)
    set_tests_properties(${name} PROPERTIES LABELS "${arg_LABELS}")
  endif()
endfunction()

# Top folders whose tests run several threads: the TSan build runs these (label "concurrent").
set(concurrent_folders platform lifecycle delivery messaging message_ui)

set(top_folders ${KESU_FOLDERS})
list(TRANSFORM top_folders REPLACE "/.*" "")
list(REMOVE_DUPLICATES top_folders)
foreach(top IN LISTS top_folders)
  if(KESU_SANITIZE STREQUAL "thread" AND NOT top IN_LIST concurrent_folders)
    continue()
  endif()
  set(rooms ${KESU_FOLDERS})
  list(FILTER rooms INCLUDE REGEX "^${top}(/|$)")
  file(GLOB_RECURSE test_sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/src/${top}/*_test.cpp)
  if(test_sources)
    set(labels "")
    if(top IN_LIST concurrent_folders)
      set(labels concurrent)
    endif()
    kesu_add_test(${top}_test FOLDERS ${rooms} LABELS "${labels}" SOURCES ${test_sources})
  endif()
endforeach()

file(GLOB system_sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/tests/*_test.cpp)
if(system_sources)
  kesu_add_test(system_test FOLDERS facade LABELS concurrent SOURCES ${system_sources})
endif()

# How the popup looks: pictures of the whole library's doing, which it writes beside itself.
file(GLOB popup_sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/tests/popup/*.cpp)
if(popup_sources AND NOT KESU_SANITIZE STREQUAL "thread")
  kesu_add_test(popup_test FOLDERS facade SOURCES ${popup_sources})
  target_compile_definitions(popup_test PRIVATE KESU_EXAMPLE_MESSAGES="${CMAKE_SOURCE_DIR}/examples/messages"
    KESU_GOLDEN_PICTURES="${CMAKE_SOURCE_DIR}/tests/golden")
endif()

# What survives kills and failing disks: tests, and a soak program (scripts/soak), that start a host of their own.
add_executable(kesu_test_host ${CMAKE_SOURCE_DIR}/tests/faults/host/main.cpp)
target_link_libraries(kesu_test_host PRIVATE kesu_warnings kesu::static ${KESU_SYSTEM_LIBRARIES})
function(kesu_use_test_host target)
  add_dependencies(${target} kesu_test_host)
  target_compile_definitions(${target} PRIVATE KESU_TEST_HOST="$<TARGET_FILE:kesu_test_host>")
endfunction()

file(GLOB fault_sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/tests/faults/*.cpp)
set(soak_sources ${fault_sources})
list(FILTER soak_sources EXCLUDE REGEX "_test\\.cpp$")
add_executable(kesu_soak EXCLUDE_FROM_ALL ${CMAKE_SOURCE_DIR}/tests/faults/soak/main.cpp ${soak_sources})
target_link_libraries(kesu_soak PRIVATE kesu_build kesu_loopback)
kesu_link_folders(kesu_soak foundation)
kesu_use_test_host(kesu_soak)

set(kill_rounds 50)
if(KESU_SANITIZE)
  list(FILTER fault_sources EXCLUDE REGEX "FailingDisk_test\\.cpp$")  # Sanitizers want to be the first library loaded.
  set(kill_rounds 8)  # Starts are slow.
endif()
kesu_add_test(fault_test FOLDERS foundation LABELS concurrent SOURCES ${fault_sources})
kesu_use_test_host(fault_test)
set_tests_properties(fault_test PROPERTIES TIMEOUT 3600)  # With KESU_LONG_TESTS it takes some 20 minutes.
target_compile_definitions(fault_test PRIVATE KESU_KILL_ROUNDS=${kill_rounds})
if(NOT KESU_SANITIZE)
  add_library(kesu_faulty_calls MODULE ${CMAKE_SOURCE_DIR}/tests/faults/preload/FaultyCalls.cpp)
  target_link_libraries(kesu_faulty_calls PRIVATE kesu_warnings ${CMAKE_DL_LIBS})
  set_target_properties(kesu_faulty_calls PROPERTIES CXX_VISIBILITY_PRESET default)
  add_dependencies(fault_test kesu_faulty_calls)
  target_compile_definitions(fault_test PRIVATE KESU_FAULTY_CALLS="$<TARGET_FILE:kesu_faulty_calls>")
endif()
