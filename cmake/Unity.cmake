# With ZO_UNITY the sources of a folder are compiled as one: a whole build takes half the time. The release build does
# without, so that each source is known to stand alone.
option(ZO_UNITY "Compile the sources of each folder together" OFF)

# zo_unite(TARGET [SOURCE OR FOLDER ...]): those named are compiled alone; their names, or the system's macros, would clash.
function(zo_unite target)
  if(NOT ZO_UNITY)
    return()
  endif()
  set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_MODE GROUP)
  # To GCC a source that is included is a header, whose classes must not hold what an anonymous namespace has.
  target_compile_options(${target} PRIVATE $<$<CXX_COMPILER_ID:GNU>:-Wno-subobject-linkage>)
  get_target_property(sources ${target} SOURCES)
  list(FILTER sources INCLUDE REGEX "\\.cpp$")
  foreach(source ${sources})
    get_filename_component(name ${source} NAME_WE)
    get_filename_component(folder ${source} DIRECTORY)
    file(RELATIVE_PATH folder ${PROJECT_SOURCE_DIR} ${folder})
    if(NOT name IN_LIST ARGN AND NOT folder IN_LIST ARGN)
      string(MAKE_C_IDENTIFIER ${folder} group)
      set_source_files_properties(${source} PROPERTIES UNITY_GROUP ${group})
    endif()
  endforeach()
endfunction()
