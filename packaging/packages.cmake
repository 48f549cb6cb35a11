# Packages: three of Debian's, and an archive with all. scripts/package makes them.
set(CPACK_PACKAGE_NAME ostrel)
set(CPACK_PACKAGE_VENDOR "the maintainers of ostrel")
set(CPACK_PACKAGE_CONTACT "The maintainers of ostrel <maintainers@ostrel.example>"
  CACHE STRING "Who answers for a package, with an address")
set(CPACK_PACKAGE_CHECKSUM SHA256)
set(CPACK_OUTPUT_FILE_PREFIX packages)
set(CPACK_GENERATOR DEB TGZ)
set(CPACK_PACKAGE_FILE_NAME ostrel-${PROJECT_VERSION}-${CMAKE_SYSTEM_PROCESSOR})
set(CPACK_INCLUDE_TOPLEVEL_DIRECTORY OFF)
# The files of a device are in /etc, which no other prefix leads to.
set(CPACK_SET_DESTDIR ON)
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
# What a package has beside what is installed.
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/finish_packages.cmake)
set(CPACK_FINISH_SOURCES ${CMAKE_CURRENT_LIST_DIR}/debian)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING ONE_PER_GROUP)
set(CPACK_COMPONENTS_ALL client daemon editors interfaces manual service tools)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_SECTION video)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

# The package of a group: its name and what its description says.
function(describe group package summary text)
  string(TOUPPER ${group} key)
  set(CPACK_DEBIAN_${key}_PACKAGE_NAME ${package} PARENT_SCOPE)
  set(CPACK_DEBIAN_${key}_DESCRIPTION "${summary}\n${text}" PARENT_SCOPE)
endfunction()

describe(device ostrel "parameter daemon of a broadcast-video device"
"ostrel keeps the parameters of a device. It reads a text that defines them,
and serves them to other programs over D-Bus. A commit corrects every value
that has left its range, and announces the changes.

With the daemon come ostrelctl, the client for people and scripts, and a
service for each user.")
set(CPACK_DEBIAN_DEVICE_PACKAGE_RECOMMENDS "dbus-user-session | dbus-session-bus")
set(CPACK_DEBIAN_DEVICE_PACKAGE_SUGGESTS "ostrel-manual, ostrel-tools")
set(CPACK_DEBIAN_DEVICE_PACKAGE_CONTROL_EXTRA
  ${CMAKE_CURRENT_LIST_DIR}/debian/conffiles ${CMAKE_CURRENT_LIST_DIR}/debian/postinst
  ${CMAKE_CURRENT_LIST_DIR}/debian/postrm ${CMAKE_CURRENT_LIST_DIR}/debian/prerm)

describe(authoring ostrel-tools "checks, plays and documents definition texts of ostrel"
"For the authors of definition texts: ostrel-check says what is wrong with one
and proves what it can, ostrel-play tests it with sessions and explores it,
ostrel-doc writes the documentation of the device, and ostrel-vidstd lists the
video standards.

Editors get the colours of definition texts.")
set(CPACK_DEBIAN_AUTHORING_PACKAGE_RECOMMENDS graphviz)
set(CPACK_DEBIAN_AUTHORING_PACKAGE_SUGGESTS "ostrel, ostrel-manual")

describe(reading ostrel-manual "manual and examples of the parameter daemon ostrel"
"The language of definition texts and that of sessions, the bus interfaces, and
a guide that begins with a first device; example devices, sessions and clients
in five languages; notes on design, reliability and performance.")
set(CPACK_DEBIAN_READING_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_READING_PACKAGE_SECTION doc)
set(CPACK_DEBIAN_READING_PACKAGE_SHLIBDEPS OFF)

include(CPack)
foreach(component client daemon interfaces service)
  cpack_add_component(${component} GROUP device)
endforeach()
foreach(component editors tools)
  cpack_add_component(${component} GROUP authoring)
endforeach()
cpack_add_component(manual GROUP reading)
