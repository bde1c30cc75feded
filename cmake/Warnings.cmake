add_library(zo_warnings INTERFACE)
target_compile_options(zo_warnings INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Werror)
