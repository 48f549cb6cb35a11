# Brings the files of packages into their final form, before the packages are made of them.
#
# Times are those of the sources, where SOURCE_DATE_EPOCH tells them: the same sources make the same
# packages.

# Debian asks for pages and changelogs that are compressed, without a time of their own.
function(compress)
  execute_process(COMMAND gzip -9n ${ARGN} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

function(finish_debian root package)
  file(GLOB pages ${root}/usr/share/man/*/*)
  if(pages)
    compress(${pages})
  endif()
  set(documents ${root}/usr/share/doc/${package})
  file(COPY ${CPACK_FINISH_SOURCES}/copyright DESTINATION ${documents})
  file(COPY_FILE ${CPACK_FINISH_SOURCES}/changelog ${documents}/changelog.Debian)
  compress(${documents}/changelog.Debian)
  set(overrides ${root}/usr/share/lintian/overrides)
  file(MAKE_DIRECTORY ${overrides})
  file(COPY_FILE ${CPACK_FINISH_SOURCES}/lintian-overrides ${overrides}/${package})
endfunction()

if(CPACK_GENERATOR STREQUAL "DEB")
  foreach(group device authoring reading)
    string(TOUPPER ${group} key)
    finish_debian(${CPACK_TEMPORARY_INSTALL_DIRECTORY}/${group}
      ${CPACK_DEBIAN_${key}_PACKAGE_NAME})
  endforeach()
endif()

execute_process(
  COMMAND chmod -R u=rwX,go=rX ${CPACK_TEMPORARY_INSTALL_DIRECTORY} COMMAND_ERROR_IS_FATAL ANY)
if(DEFINED ENV{SOURCE_DATE_EPOCH})
  execute_process(
    COMMAND find ${CPACK_TEMPORARY_INSTALL_DIRECTORY} -exec touch -hd @$ENV{SOURCE_DATE_EPOCH} {} +
    COMMAND_ERROR_IS_FATAL ANY)
endif()
