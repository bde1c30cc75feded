# For vcpkg: the run-time library and TBB as DLLs; what else the library needs goes into it.
set(VCPKG_TARGET_ARCHITECTURE x64)
set(VCPKG_CRT_LINKAGE dynamic)
set(VCPKG_LIBRARY_LINKAGE static)
if(PORT STREQUAL "tbb")
  set(VCPKG_LIBRARY_LINKAGE dynamic)
endif()
