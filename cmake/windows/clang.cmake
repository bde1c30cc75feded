# Windows x86-64, cross-built with clang on mingw-w64's headers and libraries and the run-time library of its g++.
include(${CMAKE_CURRENT_LIST_DIR}/toolchain.cmake)
execute_process(COMMAND ${ZO_MINGW_GXX} -print-file-name=include/c++
                OUTPUT_VARIABLE ZO_MINGW_STANDARD OUTPUT_STRIP_TRAILING_WHITESPACE)
get_filename_component(ZO_MINGW_GCC ${ZO_MINGW_STANDARD}/../.. ABSOLUTE)

set(CMAKE_CXX_COMPILER clang++)
set(CMAKE_CXX_COMPILER_TARGET x86_64-w64-mingw32)
# Clang does not find them by itself: it takes Debian's folder of the flavour for no version of g++.
set(CMAKE_CXX_FLAGS_INIT "--start-no-unused-arguments -nostdlibinc -B${ZO_MINGW_GCC} --end-no-unused-arguments")
set(CMAKE_CXX_STANDARD_INCLUDE_DIRECTORIES
  ${ZO_MINGW_STANDARD} ${ZO_MINGW_STANDARD}/x86_64-w64-mingw32 ${ZO_MINGW_STANDARD}/backward /usr/x86_64-w64-mingw32/include)
foreach(kind EXE SHARED MODULE)
  set(CMAKE_${kind}_LINKER_FLAGS_INIT "-L${ZO_MINGW_GCC}")
endforeach()
set(CMAKE_CXX_STANDARD_LIBRARIES -lpthread) # g++ of this flavour adds it by itself
# LLVM's refuse the DLLs of g++.
find_program(CMAKE_STRIP x86_64-w64-mingw32-strip)
find_program(CMAKE_OBJCOPY x86_64-w64-mingw32-objcopy)
