add_library(zo_sanitizers INTERFACE)
if(ZO_SANITIZE)
  # float-cast-overflow is not part of "undefined".
  target_compile_options(zo_sanitizers INTERFACE -fsanitize=${ZO_SANITIZE},float-cast-overflow
                         -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(zo_sanitizers INTERFACE -fsanitize=${ZO_SANITIZE},float-cast-overflow)
endif()
