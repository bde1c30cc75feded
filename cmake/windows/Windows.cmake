enable_language(RC)
# The oldest system that has all that the library calls: Windows 8, Windows Server 2012.
target_compile_definitions(zo_objects PRIVATE _WIN32_WINNT=0x0602)

configure_file(cmake/windows/version.rc.in version.rc @ONLY)
target_sources(ZoPrimitives PRIVATE ${CMAKE_BINARY_DIR}/version.rc)

if(MINGW)
  set_target_properties(ZoPrimitives PROPERTIES PREFIX "")

  # The compiler's own libraries are shared: an exception that is thrown in one module and caught in another is
  # then counted by one run-time library. They and TBB lie beside the DLL, where Windows looks for them.
  set(runtime $<TARGET_FILE:TBB::tbb>)
  foreach(library libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll)
    execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${library}
                    OUTPUT_VARIABLE path OUTPUT_STRIP_TRAILING_WHITESPACE)
    list(APPEND runtime ${path})
  endforeach()
  add_custom_command(TARGET ZoPrimitives POST_BUILD
                     COMMAND ${CMAKE_COMMAND} -E copy_if_different ${runtime} ${CMAKE_BINARY_DIR}/bin)
  install(FILES ${runtime} TYPE BIN)
endif()
