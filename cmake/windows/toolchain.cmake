# Windows x86-64, cross-built on Debian with mingw-w64. Programs made while building run under Wine.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

# The flavour with POSIX threads: the other one's standard library has no std::thread.
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(ZO_MINGW_GXX x86_64-w64-mingw32-g++-posix)
set(CMAKE_CXX_COMPILER ${ZO_MINGW_GXX})
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/wine)

get_filename_component(ZO_WINDOWS_LIBRARIES ${CMAKE_CURRENT_LIST_DIR}/../../build/windows-libraries ABSOLUTE)
list(APPEND CMAKE_FIND_ROOT_PATH ${ZO_WINDOWS_LIBRARIES} /usr/x86_64-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(ZLIB_USE_STATIC_LIBS ON)
