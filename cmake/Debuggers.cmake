# What shows debuggers the library's types; the units that quantities are kept in come from the table of units.
set(units public/include/ZoPrimitives/GrandezaUnits.h)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${units})
file(READ ${units} kept)
string(REGEX MATCHALL "UNIT\\([^\n]*AsIs, +AsIs" kept "${kept}")
set(ZO_STORAGE_UNITS_PYTHON)
set(ZO_STORAGE_UNITS_NATVIS)
set(quantities)
foreach(unit ${kept})
  string(REGEX MATCH "UNIT\\(([A-Za-z]+), *[A-Za-z0-9_]+, *\"([^\"]+)\"" unit "${unit}")
  set(quantity ${CMAKE_MATCH_1})
  if(NOT quantity IN_LIST quantities)
    list(APPEND quantities ${quantity})
    string(APPEND ZO_STORAGE_UNITS_PYTHON "    \"${quantity}\": \"${CMAKE_MATCH_2}\",\n")
    string(APPEND ZO_STORAGE_UNITS_NATVIS "  <Type Name=\"ZoPrimitives::${quantity}\">\n"
           "    <DisplayString>{valor,g} ${CMAKE_MATCH_2}</DisplayString>\n"
           "    <Expand><Item Name=\"${CMAKE_MATCH_2}\">valor</Item></Expand>\n  </Type>\n")
  endif()
endforeach()
configure_file(tools/debuggers/gdb.py.in debuggers/gdb.py @ONLY)
configure_file(tools/debuggers/ZoPrimitives.natvis.in debuggers/ZoPrimitives.natvis @ONLY)

if(MSVC) # which puts it into the library's debug information
  target_sources(ZoPrimitives PRIVATE ${PROJECT_BINARY_DIR}/debuggers/ZoPrimitives.natvis)
endif()
if(ZO_INSTALL)
  install(FILES ${PROJECT_BINARY_DIR}/debuggers/ZoPrimitives.natvis
          DESTINATION ${CMAKE_INSTALL_DATADIR}/ZoPrimitives COMPONENT development)
endif()
# gdb loads by itself what lies beside a library under its name.
if(ZO_INSTALL AND NOT WIN32)
  install(FILES ${PROJECT_BINARY_DIR}/debuggers/gdb.py DESTINATION ${CMAKE_INSTALL_LIBDIR}
          RENAME $<TARGET_FILE_NAME:ZoPrimitives>-gdb.py COMPONENT development)
endif()
