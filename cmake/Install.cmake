# What users of the library get, in components: `library` runs applications, `development` builds them, `tool` is zo.
# The tree can be moved as a whole: nothing in it names a folder outside.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(cmake_dir ${CMAKE_INSTALL_LIBDIR}/cmake/ZoPrimitives)
set(documents ${CMAKE_INSTALL_DATADIR}/doc/ZoPrimitives)

install(TARGETS ZoPrimitives EXPORT ZoPrimitivesTargets
        RUNTIME COMPONENT library
        LIBRARY COMPONENT library NAMELINK_COMPONENT development
        ARCHIVE COMPONENT development)
install(EXPORT ZoPrimitivesTargets NAMESPACE ZoPrimitives:: DESTINATION ${cmake_dir} COMPONENT development)
install(DIRECTORY public/include/ZoPrimitives TYPE INCLUDE COMPONENT development)

configure_package_config_file(cmake/ZoPrimitivesConfig.cmake.in ZoPrimitivesConfig.cmake
                              INSTALL_DESTINATION ${cmake_dir} NO_SET_AND_CHECK_MACRO)
# A major version breaks applications, a minor one does not (docs/abi.md).
write_basic_package_version_file(ZoPrimitivesConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/ZoPrimitivesConfig.cmake ${PROJECT_BINARY_DIR}/ZoPrimitivesConfigVersion.cmake
        DESTINATION ${cmake_dir} COMPONENT development)

file(RELATIVE_PATH prefix_from_pc /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
string(REGEX REPLACE "/$" "" prefix_from_pc ${prefix_from_pc})
configure_file(cmake/zoprimitives.pc.in zoprimitives.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/zoprimitives.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)

if(ZO_TOOLS)
  install(EXPORT ZoPrimitivesToolTargets NAMESPACE ZoPrimitives:: DESTINATION ${cmake_dir} COMPONENT tool)
endif()

install(FILES CHANGELOG.md README.md DESTINATION ${documents} COMPONENT development)
install(FILES LICENSE DESTINATION ${CMAKE_INSTALL_DATADIR}/licenses/ZoPrimitives COMPONENT library)
install(DIRECTORY licenses/ DESTINATION ${CMAKE_INSTALL_DATADIR}/licenses/ZoPrimitives COMPONENT library)
