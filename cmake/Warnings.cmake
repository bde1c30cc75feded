add_library(zo_warnings INTERFACE)
if(MSVC)
  target_compile_options(zo_warnings INTERFACE /W4 /utf-8 /permissive- /Zc:__cplusplus)
else()
  target_compile_options(zo_warnings INTERFACE -Wall -Wextra -Wpedantic -Wconversion
                         $<$<BOOL:${PROJECT_IS_TOP_LEVEL}>:-Werror>)
endif()
