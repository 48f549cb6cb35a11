find_package(GTest REQUIRED)
include(GoogleTest)

# The test program `name` of one source with GoogleTest, linked with the libraries that follow; each
# of its cases is registered.
function(add_test_program name source)
  add_executable(${name} ${source})
  target_link_libraries(${name} PRIVATE ${ARGN} project_options GTest::gtest_main)
  gtest_discover_tests(${name} TEST_PREFIX "${name}." DISCOVERY_TIMEOUT 60)
endfunction()

# The test program of NAME.cpp.
function(add_unit_test name)
  add_test_program(${name} ${name}.cpp ${ARGN})
endfunction()
