add_library(zo_sanitizers INTERFACE)
if(ZO_SANITIZE)
  # float-cast-overflow is not part of "undefined".
  target_compile_options(zo_sanitizers INTERFACE -fsanitize=${ZO_SANITIZE},float-cast-overflow
                         -fno-sanitize-recover=all -fno-omit-frame-pointer
                         # g++ 12 finds them in the standard library's own code then.
                         $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
  target_link_options(zo_sanitizers INTERFACE -fsanitize=${ZO_SANITIZE},float-cast-overflow)
endif()
