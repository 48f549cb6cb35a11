# embed_files(TARGET NAME FILE...) compiles files of the source tree into a library: for page.css the
# text PAGE_CSS, in the header generated/NAME.h. As a script (cmake -P, with HEADER and FILES) it
# writes the header.
if(NOT CMAKE_SCRIPT_MODE_FILE)
  set(EMBED_SCRIPT ${CMAKE_CURRENT_LIST_FILE})
  function(embed_files target name)
    set(header ${CMAKE_BINARY_DIR}/generated/${name}.h)
    list(TRANSFORM ARGN PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/ OUTPUT_VARIABLE files)
    add_custom_command(
      OUTPUT ${header}
      COMMAND ${CMAKE_COMMAND} -DHEADER=${header} "-DFILES=${files}" -P ${EMBED_SCRIPT}
      DEPENDS ${files} ${EMBED_SCRIPT}
      COMMENT "Embedding the files of ${name}"
      VERBATIM)
    target_sources(${target} PRIVATE ${header})
    target_include_directories(${target} PRIVATE ${CMAKE_BINARY_DIR}/generated)
  endfunction()
  return()
endif()

set(text "// Files of the source tree as texts, from the build.\n#pragma once\n#include <string_view>\n")
foreach(file IN LISTS FILES)
  cmake_path(GET file FILENAME name)
  string(MAKE_C_IDENTIFIER "${name}" name)
  string(TOUPPER "${name}" name)
  file(READ ${file} content)
  string(APPEND text
    "inline constexpr std::string_view ${name} = R\"embedded(${content})embedded\";\n")
endforeach()
file(WRITE ${HEADER} "${text}")
