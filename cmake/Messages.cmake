# zo_messages runs on the machine that builds.
set(sources ${CMAKE_CURRENT_SOURCE_DIR}/cmake/messages/messages.cpp)
set(headers ${CMAKE_CURRENT_SOURCE_DIR}/public/include)
if(CMAKE_CROSSCOMPILING)
  find_program(ZO_HOST_CXX NAMES c++ g++ clang++ REQUIRED DOC "A compiler for the machine that builds")
  set(ZO_MESSAGES ${CMAKE_BINARY_DIR}/messages/zo_messages)
  add_custom_command(OUTPUT ${ZO_MESSAGES} DEPENDS ${sources} ${headers}/ZoPrimitives/ZoUtf8.h
                     COMMAND ${ZO_HOST_CXX} -std=c++20 -I${headers} ${sources} -o ${ZO_MESSAGES} VERBATIM)
else()
  add_executable(zo_messages ${sources})
  target_include_directories(zo_messages PRIVATE ${headers})
  target_compile_definitions(zo_messages PRIVATE ZO_STATIC)
  target_link_libraries(zo_messages PRIVATE zo_warnings)
  set_target_properties(zo_messages PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/messages)
  set(ZO_MESSAGES zo_messages)
endif()

# zo_add_messages(TARGET NAME TABLE FOLDER): makes the header messages/NAME.h, found by all who link TARGET, with the
# texts of FOLDER/NAME.pot in every language, as an array of TZoText with the qualified name TABLE. A language
# without a .po file has the texts as the sources have them.
function(zo_add_messages target name table folder)
  set(header ${CMAKE_CURRENT_BINARY_DIR}/messages/${name}.h)
  set(files ${folder}/${name}.pot)
  set(needed ${files})
  foreach(language pt_BR en_US es_MX)
    if(EXISTS ${folder}/${language}.po)
      list(APPEND files ${folder}/${language}.po)
      list(APPEND needed ${folder}/${language}.po)
    else()
      list(APPEND files -)
    endif()
  endforeach()
  add_custom_command(OUTPUT ${header} DEPENDS ${ZO_MESSAGES} ${needed}
                     COMMAND ${ZO_MESSAGES} ${header} ${table} ${files} VERBATIM
                     COMMENT "Compiling the texts of ${name}")
  add_custom_target(${target}_made DEPENDS ${header})
  add_library(${target} INTERFACE)
  add_dependencies(${target} ${target}_made)
  target_include_directories(${target} INTERFACE ${CMAKE_CURRENT_BINARY_DIR})
endfunction()
