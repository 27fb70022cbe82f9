# Strict warnings, as errors, for every target of this project that links kvshare_warnings.
add_library(kvshare_warnings INTERFACE)
target_compile_options(kvshare_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Werror
  -Wconversion -Wsign-conversion -Wdouble-promotion -Wold-style-cast -Wcast-align -Wcast-qual
  -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Wformat=2 -Wimplicit-fallthrough
  -Wunused -Wundef -Wredundant-decls)

# g++ 12 sees overlaps and places out of bounds in every `"literal" + std::string` at -O3 (GCC bugs
# 105651, 105329).
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  target_compile_options(kvshare_warnings INTERFACE -Wno-restrict -Wno-stringop-overflow -Wno-array-bounds)
endif()
