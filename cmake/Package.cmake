# What `cpack` makes: Debian packages of the library, its headers and the tool; for Windows one .zip with everything.
# `./dev package` calls it.
set(ZO_MAINTAINER "The owner of ZoPrimitives <owner@zoprimitives.invalid>" CACHE STRING "Whom the packages name")

set(CPACK_PACKAGE_NAME zoprimitives)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "") # each package has its own
set(CPACK_PACKAGE_VENDOR "${ZO_COMPANY}")
set(CPACK_PACKAGE_CONTACT "${ZO_MAINTAINER}")
set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
set(CPACK_RESOURCE_FILE_README ${PROJECT_SOURCE_DIR}/README.md)
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_THREADS 0)
set(CPACK_COMPONENTS_ALL library development)
if(ZO_TOOLS)
  list(APPEND CPACK_COMPONENTS_ALL tool)
endif()

if(WIN32)
  set(CPACK_GENERATOR ZIP)
  set(CPACK_PACKAGE_FILE_NAME zoprimitives-${PROJECT_VERSION}-windows-x86-64)
else()
  set(CPACK_GENERATOR DEB)
  set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
  set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE
                                                  WORLD_READ WORLD_EXECUTE)
  set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/debian/arrange.cmake)

  set(CPACK_DEB_COMPONENT_INSTALL ON)
  set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
  set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
  set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
  set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
  set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
  set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)

  set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME libzoprimitives${PROJECT_VERSION_MAJOR})
  set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
  set(CPACK_DEBIAN_LIBRARY_PACKAGE_CONTROL_EXTRA ${PROJECT_SOURCE_DIR}/cmake/debian/triggers)
  set(CPACK_COMPONENT_LIBRARY_DESCRIPTION "foundation library of engineering design applications
Saves and opens graphs of objects, across versions of an application, with
every damage told; quantities with units, numbers within a tolerance, points
and paths.")

  set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libzoprimitives-dev)
  set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
  set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SHLIBDEPS OFF)
  set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS
      "libzoprimitives${PROJECT_VERSION_MAJOR} (= ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})")
  set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "headers of ZoPrimitives
The headers of the foundation library of engineering design applications, what
CMake and pkg-config find it by, and what shows gdb its types.")

  set(CPACK_DEBIAN_TOOL_PACKAGE_NAME zoprimitives-tools)
  set(CPACK_DEBIAN_TOOL_PACKAGE_SECTION utils)
  set(CPACK_COMPONENT_TOOL_DEPENDS library)
  set(CPACK_COMPONENT_TOOL_DESCRIPTION "look into files of objects that ZoPrimitives saved
zo lists, describes, checks and queries the objects of any such file; no
class of the application that saved it is needed.")

  # What debuggers need is parted from library and tool when the packages are made.
  list(APPEND CPACK_COMPONENTS_ALL symbols)
  install(FILES LICENSE DESTINATION ${CMAKE_INSTALL_DATADIR}/licenses/ZoPrimitives COMPONENT symbols EXCLUDE_FROM_ALL)
  set(CPACK_DEBIAN_SYMBOLS_PACKAGE_NAME libzoprimitives${PROJECT_VERSION_MAJOR}-dbgsym)
  set(CPACK_DEBIAN_SYMBOLS_PACKAGE_SECTION debug)
  set(CPACK_DEBIAN_SYMBOLS_PACKAGE_SHLIBDEPS OFF)
  set(CPACK_DEBIAN_SYMBOLS_PACKAGE_DEPENDS ${CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS})
  set(CPACK_COMPONENT_SYMBOLS_DESCRIPTION "debug information of ZoPrimitives
What debuggers need to show what the foundation library of engineering design
applications, and its tool zo, do and hold.")
endif()
include(CPack)
