# Strict warnings, as errors, for every target of this project that links kvshare_warnings.
add_library(kvshare_warnings INTERFACE)
target_compile_options(kvshare_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Werror
  -Wconversion -Wsign-conversion -Wdouble-promotion -Wold-style-cast -Wcast-align -Wcast-qual
  -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Wformat=2 -Wimplicit-fallthrough
  -Wunused -Wundef -Wredundant-decls)
