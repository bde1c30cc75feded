enable_language(RC)
# The oldest system that has all that the library calls: Windows 8, Windows Server 2012.
target_compile_definitions(zo_objects PRIVATE _WIN32_WINNT=0x0602)

configure_file(cmake/windows/version.rc.in version.rc @ONLY)
target_sources(ZoPrimitives PRIVATE ${PROJECT_BINARY_DIR}/version.rc)

# What a debugger needs of ours lies in a file of its own, which the program or DLL names.
function(zo_part_debug_information target)
  if(MINGW)
    set(file $<TARGET_FILE:${target}>)
    add_custom_command(TARGET ${target} POST_BUILD
                       COMMAND ${CMAKE_OBJCOPY} --only-keep-debug ${file} ${file}.debug
                       COMMAND ${CMAKE_STRIP} --strip-debug ${file}
                       COMMAND ${CMAKE_OBJCOPY} --add-gnu-debuglink=${file}.debug ${file})
  endif()
endfunction()

if(MINGW)
  set_target_properties(ZoPrimitives PROPERTIES PREFIX "")

  # The compiler's own libraries are shared: an exception that is thrown in one module and caught in another is
  # then counted by one run-time library. They and TBB lie beside the DLL, where Windows looks for them.
  if(NOT ZO_MINGW_GXX)
    set(ZO_MINGW_GXX ${CMAKE_CXX_COMPILER})
  endif()
  set(runtime $<TARGET_FILE:TBB::tbb>)
  foreach(library libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll)
    execute_process(COMMAND ${ZO_MINGW_GXX} -print-file-name=${library}
                    OUTPUT_VARIABLE path OUTPUT_STRIP_TRAILING_WHITESPACE)
    list(APPEND runtime ${path})
  endforeach()
  # The compiler's carry debug information of ten times their size.
  set(bin $<TARGET_FILE_DIR:ZoPrimitives>)
  set(beside)
  foreach(library ${runtime})
    list(APPEND strip COMMAND ${CMAKE_STRIP} -o ${bin}/$<PATH:GET_FILENAME,${library}> ${library})
    list(APPEND beside ${bin}/$<PATH:GET_FILENAME,${library}>)
  endforeach()
  add_custom_command(TARGET ZoPrimitives PRE_LINK VERBATIM COMMAND_EXPAND_LISTS
                     COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/cmake/windows/unexport ${CMAKE_OBJCOPY}
                             ${CMAKE_CURRENT_SOURCE_DIR}/cmake/unexported.txt $<TARGET_OBJECTS:zo_objects>)
  add_custom_command(TARGET ZoPrimitives POST_BUILD ${strip})
  zo_part_debug_information(ZoPrimitives)
  if(ZO_INSTALL)
    install(FILES ${beside} TYPE BIN COMPONENT library)
    install(FILES $<TARGET_FILE:ZoPrimitives>.debug TYPE BIN COMPONENT development)
    set(licenses share/licenses/ZoPrimitives)
    install(FILES /usr/share/doc/gcc-mingw-w64-base/copyright DESTINATION ${licenses} RENAME gcc.txt COMPONENT library)
    install(FILES /usr/share/doc/mingw-w64-common/copyright DESTINATION ${licenses} RENAME mingw-w64.txt COMPONENT library)
  endif()
endif()
