# CPack runs this on the trees that become packages: Debian has places and forms of its own for some files.
string(TIMESTAMP now "%a, %d %b %Y %H:%M:%S +0000" UTC)
set(trees ${CPACK_TEMPORARY_INSTALL_DIRECTORY})
set(parts_library mimalloc)
set(parts_tool CLI11 nlohmann-json)

function(call)
  execute_process(COMMAND ${ARGN} OUTPUT_VARIABLE told COMMAND_ERROR_IS_FATAL ANY)
  set(told "${told}" PARENT_SCOPE)
endfunction()

# Debug information goes where gdb looks for it, by the program's number.
function(part_symbols program)
  call(readelf -n ${program})
  string(REGEX MATCH "Build ID: (..)([0-9a-f]+)" told "${told}")
  set(folder ${trees}/symbols/usr/lib/debug/.build-id/${CMAKE_MATCH_1})
  set(symbols ${folder}/${CMAKE_MATCH_2}.debug)
  file(MAKE_DIRECTORY ${folder})
  call(objcopy --only-keep-debug --compress-debug-sections ${program} ${symbols})
  file(CHMOD ${symbols} PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
  call(strip --strip-unneeded --remove-section=.comment --remove-section=.note ${program})
endfunction()

foreach(component ${CPACK_COMPONENTS_ALL})
  set(tree ${trees}/${component}/usr)
  string(TOUPPER ${component} upper)
  set(documents ${tree}/share/doc/${CPACK_DEBIAN_${upper}_PACKAGE_NAME})
  file(MAKE_DIRECTORY ${documents})

  file(READ ${CPACK_RESOURCE_FILE_LICENSE} license)
  file(WRITE ${documents}/copyright "Copyright: the owner of ZoPrimitives\nLicense: not chosen yet\n\n${license}")
  foreach(part ${parts_${component}})
    file(READ ${CMAKE_CURRENT_LIST_DIR}/../../licenses/${part}.txt license)
    file(APPEND ${documents}/copyright "\n${part} is in it:\n\n${license}")
  endforeach()
  file(REMOVE_RECURSE ${tree}/share/licenses)

  file(WRITE ${documents}/changelog.Debian "zoprimitives (${CPACK_PACKAGE_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE}) unstable; \
urgency=medium\n\n  * Version ${CPACK_PACKAGE_VERSION}.\n\n -- ${CPACK_PACKAGE_CONTACT}  ${now}\n")
  if(EXISTS ${tree}/share/doc/ZoPrimitives)
    file(COPY ${tree}/share/doc/ZoPrimitives/ DESTINATION ${documents})
    file(REMOVE_RECURSE ${tree}/share/doc/ZoPrimitives)
    file(RENAME ${documents}/CHANGELOG.md ${documents}/changelog)
  endif()
  file(GLOB texts ${documents}/changelog* ${tree}/share/man/*/*[0-9])
  call(gzip -9n ${texts})

  # Where gdb trusts scripts.
  file(GLOB scripts ${tree}/lib/*-gdb.py)
  if(scripts)
    file(COPY ${scripts} DESTINATION ${tree}/share/gdb/auto-load/usr/lib)
    file(REMOVE ${scripts})
  endif()
endforeach()

file(GLOB library ${trees}/library/usr/lib/*.so.*.*.*)
part_symbols(${library})
set(zo ${trees}/tool/usr/bin/zo)
if(EXISTS ${zo})
  file(RPATH_REMOVE FILE ${zo}) # the library is where the system looks for it
  part_symbols(${zo})
endif()
