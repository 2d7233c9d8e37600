# A room is one folder of the house: a static library of all its sources. It may include only what it links,
# so the list behind BELOW is the list of rooms that it may know.
function(norwen_room room)
  cmake_parse_arguments(ROOM "" "" "BELOW" ${ARGN})
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${room}/*.cpp ${CMAKE_CURRENT_SOURCE_DIR}/${room}/*.h)
  add_library(norwen_${room} STATIC ${sources})
  target_include_directories(norwen_${room} PUBLIC ${CMAKE_SOURCE_DIR}/src)
  foreach(below ${ROOM_BELOW})
    target_link_libraries(norwen_${room} PUBLIC norwen_${below})
  endforeach()
endfunction()

# Compiles several files at a time: with Qt's headers, reading them is most of the work. Not in the debug build, the one
# to develop in, where each file stands for itself.
function(norwen_joined target)
  if(CMAKE_BUILD_TYPE STREQUAL "Release" OR NORWEN_SANITIZE)
    set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 6)
  endif()
endfunction()

# One test executable a folder of tests/, labelled with the folder's name.
function(norwen_tests folder)
  cmake_parse_arguments(TESTS "OWN_MAIN" "" "LINK" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${folder}/*.cpp)
  if(NOT sources)
    return()
  endif()
  add_executable(test_${folder} ${sources})
  target_include_directories(test_${folder} PRIVATE ${CMAKE_SOURCE_DIR}/tests)
  target_compile_definitions(test_${folder} PRIVATE NORWEN_DATABASE="${CMAKE_BINARY_DIR}/Kolmar.mdb")
  # A test runs once: what it tests is optimised, the test is not.
  target_compile_options(test_${folder} PRIVATE -O0)
  target_link_libraries(test_${folder} PRIVATE ${TESTS_LINK} GTest::gmock $<IF:$<BOOL:${TESTS_OWN_MAIN}>,GTest::gtest,GTest::gtest_main>)
  target_precompile_headers(test_${folder} PRIVATE <gmock/gmock.h> <gtest/gtest.h>)
  add_dependencies(test_${folder} delivered_database)
  gtest_discover_tests(test_${folder} PROPERTIES LABELS ${folder} TIMEOUT 300 DISCOVERY_TIMEOUT 60)
endfunction()
