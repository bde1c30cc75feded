# The target cctz::cctz: of cctz's own package where that is installed (CMAKE_PREFIX_PATH), otherwise made of
# the header and the library, as Debian has them.
find_package(cctz CONFIG QUIET)
if(NOT TARGET cctz::cctz)
  find_path(Cctz_INCLUDE_DIR cctz/time_zone.h)
  find_library(Cctz_LIBRARY cctz)
  mark_as_advanced(Cctz_INCLUDE_DIR Cctz_LIBRARY)
endif()

include(FindPackageHandleStandardArgs)
if(TARGET cctz::cctz)
  find_package_handle_standard_args(Cctz REQUIRED_VARS cctz_DIR)
else()
  find_package_handle_standard_args(Cctz REQUIRED_VARS Cctz_LIBRARY Cctz_INCLUDE_DIR)
  if(Cctz_FOUND)
    add_library(cctz::cctz UNKNOWN IMPORTED)
    set_target_properties(cctz::cctz PROPERTIES IMPORTED_LOCATION ${Cctz_LIBRARY}
                          INTERFACE_INCLUDE_DIRECTORIES ${Cctz_INCLUDE_DIR})
  endif()
endif()
