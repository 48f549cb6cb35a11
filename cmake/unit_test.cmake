find_package(GTest REQUIRED)
include(GoogleTest)

# NAME.cpp with GoogleTest, linked with the libraries that follow; each of its cases is registered.
function(add_unit_test name)
  add_executable(${name} ${name}.cpp)
  target_link_libraries(${name} PRIVATE ${ARGN} project_options GTest::gtest_main)
  gtest_discover_tests(${name} TEST_PREFIX "${name}." DISCOVERY_TIMEOUT 60)
endfunction()
