# The short commit id of the tree as it is built: a header with COMMIT_ID, seven hexadecimal digits,
# or "0000000" where there is no git. As a script (cmake -P, with SOURCE_DIR and HEADER) it writes
# the header; included, it adds the target commit_id, which does that at every build.
if(NOT CMAKE_SCRIPT_MODE_FILE)
  set(header ${CMAKE_BINARY_DIR}/generated/commit_id.h)
  add_custom_target(commit_id_header
    COMMAND ${CMAKE_COMMAND} -DSOURCE_DIR=${CMAKE_SOURCE_DIR} -DHEADER=${header}
            -P ${CMAKE_CURRENT_LIST_FILE}
    BYPRODUCTS ${header}
    COMMENT "Asking git for the commit id"
    VERBATIM)
  add_library(commit_id INTERFACE)
  target_include_directories(commit_id INTERFACE ${CMAKE_BINARY_DIR}/generated)
  add_dependencies(commit_id commit_id_header)
  return()
endif()

# A repository further up, around an unpacked source archive, is not ours.
cmake_path(GET SOURCE_DIR PARENT_PATH above)
set(ENV{GIT_CEILING_DIRECTORIES} ${above})
execute_process(
  COMMAND git rev-parse HEAD
  WORKING_DIRECTORY ${SOURCE_DIR}
  OUTPUT_VARIABLE commit
  RESULT_VARIABLE result
  ERROR_QUIET)
if(NOT result EQUAL 0)
  set(commit 0000000)
endif()
string(SUBSTRING "${commit}" 0 7 commit)
# Only a changed header is written, so an unchanged commit compiles nothing anew.
file(CONFIGURE OUTPUT ${HEADER} CONTENT [[
// The short commit id, from the build.
#pragma once
#define COMMIT_ID "@commit@"
]] @ONLY)
