# Tests with GoogleTest. A build without GoogleTest has the programs alone, unless it asks for tests.
find_package(GTest QUIET)
option(BUILD_TESTING "Build the tests" ${GTest_FOUND})
if(BUILD_TESTING)
  find_package(GTest REQUIRED)
  include(GoogleTest)
  enable_testing()
else()
  message(STATUS "Building no tests (BUILD_TESTING)")
  # Then the test programs are targets that nobody builds, so what is said of them needs no condition.
  foreach(library GTest::gtest GTest::gtest_main)
    if(NOT TARGET ${library})
      add_library(${library} INTERFACE IMPORTED GLOBAL)
    endif()
  endforeach()
endif()

# The test program `name` of one source with GoogleTest, linked with the libraries that follow; each
# of its cases is registered.
function(add_test_program name source)
  add_executable(${name} ${source})
  target_link_libraries(${name} PRIVATE ${ARGN} project_options GTest::gtest_main)
  if(BUILD_TESTING)
    gtest_discover_tests(${name} TEST_PREFIX "${name}." DISCOVERY_TIMEOUT 60)
  else()
    set_target_properties(${name} PROPERTIES EXCLUDE_FROM_ALL TRUE)
  endif()
endfunction()

# The test program of NAME.cpp.
function(add_unit_test name)
  add_test_program(${name} ${name}.cpp ${ARGN})
endfunction()
